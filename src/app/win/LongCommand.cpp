#include "app/win/LongCommand.h"

#include <array>

#include "base/win/PendingMessages.h"

namespace quillon {

namespace {

constexpr ULONGLONG kPumpMilliseconds = 30;
/// How long a key that stopped the work may be held without doing anything else.
constexpr ULONGLONG kHeldMilliseconds = 2000;

/// Input by which the user closes or minimizes a window.
bool EndsOrMinimizes(const MSG& message) {
    if (message.message == WM_NCLBUTTONDOWN) return message.wParam == HTCLOSE || message.wParam == HTMINBUTTON;
    return message.message == WM_SYSKEYDOWN && message.wParam == VK_F4;
}

/// Without Alt, which makes the key one of the system.
bool IsEscape(const MSG& message) {
    constexpr LPARAM altIsDown = LPARAM{1} << 29;
    // Where nothing has the focus the active window gets this kind of message, without Alt too.
    const bool pressed =
        message.message == WM_KEYDOWN || (message.message == WM_SYSKEYDOWN && (message.lParam & altIsDown) == 0);
    return pressed && message.wParam == VK_ESCAPE;
}

}  // namespace

std::exception_ptr LongCommand::Run(const std::function<void()>& work) {
    m_busy = true;
    m_stopped = false;
    std::exception_ptr failure;
    try {
        work();
    } catch (const std::exception&) {
        failure = std::current_exception();
    }
    m_busy = false;
    return failure;
}

void LongCommand::RunWhole(const std::function<void()>& work) {
    const std::exception_ptr failure = Run(work);
    if (IsGone()) return;
    CloseIfAsked();
    onEnd();
    if (failure) std::rethrow_exception(failure);
}

void LongCommand::RunPart(const std::function<void()>& part) {
    m_stopped = false;
    m_lastPump = 0;
    try {
        part();
    } catch (...) {
        DropInput();
        throw;
    }
    DropInput();
}

void LongCommand::RunWaiting(const std::function<void()>& work) {
    const HCURSOR pointer = SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    RunWhole([&] { RunPart(work); });
    SetCursor(pointer);
}

bool LongCommand::StayAlive() {
    const ULONGLONG now = GetTickCount64();
    if (now - m_lastPump >= kPumpMilliseconds) {
        m_lastPump = now;
        Pump();
        if (m_closeAsked && !m_stopped && m_window != nullptr) {
            m_asking = true;
            m_stopped = m_closeAsked = onClose && onClose();
            m_asking = false;
        }
    }
    return m_window != nullptr && !m_stopped;
}

void LongCommand::Pump() {
    const auto drop = [this](const MSG& message) {
        if (IsEscape(message)) m_stopped = true;
        return IsInput(message.message) && !EndsOrMinimizes(message);
    };
    if (!RunPendingMessages(drop)) m_stopped = m_closeAsked = true;
}

void LongCommand::DropInput() {
    constexpr std::array<std::array<UINT, 2>, 2> inputs = {{{WM_KEYFIRST, WM_KEYLAST}, {WM_MOUSEFIRST, WM_MOUSELAST}}};
    const ULONGLONG start = GetTickCount64();
    bool held = false;
    do {
        if (held) Sleep(kPumpMilliseconds);
        for (const auto& [first, last] : inputs) {
            MSG message{};
            while (PeekMessageW(&message, nullptr, first, last, PM_REMOVE) != FALSE) {
                // Comes whatever the range.
                if (message.message == WM_QUIT) return PostQuitMessage(static_cast<int>(message.wParam));
                if (EndsOrMinimizes(message)) DispatchMessageW(&message);
            }
        }
        held = m_stopped && GetAsyncKeyState(VK_ESCAPE) < 0;
    } while (held && GetTickCount64() - start < kHeldMilliseconds);
}

bool LongCommand::RunPending() const {
    static_cast<void>(RunPendingMessages());
    return m_window != nullptr;
}

bool LongCommand::MayClose() {
    // While the question is shown its answer decides.
    if (!m_asking) m_closeAsked = !IsWindowEnabled(m_window) || m_busy;
    return !m_closeAsked && !m_asking;
}

void LongCommand::CloseIfAsked() {
    if (m_closeAsked && !m_busy && IsWindowEnabled(m_window)) PostMessageW(m_window, WM_CLOSE, 0, 0);
}

}  // namespace quillon
