#include "norvik/win/Timer.h"

#include <system_error>
#include <utility>

#include "base/win/MessageWindow.h"

namespace quillon {

namespace {

/// Has a window of its own: the last tick of a timer without one could arrive after its end.
class Timer final : public TimerObject {
  public:
    explicit Timer(std::function<void()> tick)
        : m_tick(std::move(tick)), m_window([this](UINT message, WPARAM) { return OnMessage(message); }) {
        if (m_window.Handle() == nullptr) {
            throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), "Timer window");
        }
    }

    void PutEnabled(bool enabled) override {
        m_enabled = enabled;
        Restart();
    }

    void PutInterval(std::int32_t milliseconds) override {
        m_interval = milliseconds;
        Restart();
    }

  private:
    static constexpr UINT_PTR timerId = 1;

    [[nodiscard]] bool Runs() const { return m_enabled && m_interval > 0; }

    void Restart() const {
        // The system's own answer to an interval of 0 is its shortest one.
        if (Runs()) {
            ::SetTimer(m_window.Handle(), timerId, static_cast<UINT>(m_interval), nullptr);
        } else {
            ::KillTimer(m_window.Handle(), timerId);
        }
    }

    [[nodiscard]] bool OnMessage(UINT message) const {
        if (message != WM_TIMER) return false;
        // A tick that was queued before the timer was disabled still arrives.
        if (!Runs()) return true;
        // A copy, because the call may destroy the timer.
        const std::function<void()> tick = m_tick;
        tick();
        return true;
    }

    std::function<void()> m_tick;
    bool m_enabled = false;
    std::int32_t m_interval = 0;
    MessageWindow m_window;
};

}  // namespace

std::unique_ptr<TimerObject> MakeTimer(std::function<void()> tick) {
    return std::make_unique<Timer>(std::move(tick));
}

}  // namespace quillon
