#include "app/win/LongCommand.h"

#include "base/win/PendingMessages.h"

namespace quillon {

namespace {

constexpr ULONGLONG kPumpMilliseconds = 30;

}  // namespace

std::exception_ptr LongCommand::Run(const std::function<void()>& work) {
    m_busy = true;
    std::exception_ptr failure;
    try {
        work();
    } catch (const std::exception&) {
        failure = std::current_exception();
    }
    m_busy = false;
    return failure;
}

bool LongCommand::StayAlive() {
    const ULONGLONG now = GetTickCount64();
    if (now - m_lastPump < kPumpMilliseconds) return m_window != nullptr;
    m_lastPump = now;
    return RunPending();
}

bool LongCommand::RunPending() const {
    RunPendingMessages(nullptr, m_busy ? PendingInput::Dropped : PendingInput::Handled);
    return m_window != nullptr;
}

bool LongCommand::MayClose() {
    m_closeAsked = !IsWindowEnabled(m_window) || m_busy;
    return !m_closeAsked;
}

void LongCommand::CloseIfAsked() {
    if (m_closeAsked && !m_busy && IsWindowEnabled(m_window)) PostMessageW(m_window, WM_CLOSE, 0, 0);
}

}  // namespace quillon
