#include "norvik/win/Timer.h"

#include <system_error>
#include <utility>

#include "base/win/Win32.h"

namespace quillon {

namespace {

/// Owns a message-only window: WM_TIMER is delivered to the window, which stores a pointer to its timer. A timer
/// without a window has no place for that, and its last tick could arrive after its end; a window takes the ticks that
/// are still queued along when it goes.
class Timer final : public TimerObject {
  public:
    explicit Timer(std::function<void()> tick)
        : m_tick(std::move(tick)),
          m_window(::CreateWindowExW(0, ClassName(), L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                     ::GetModuleHandleW(nullptr), nullptr)) {
        if (m_window == nullptr) {
            throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), "Timer window");
        }
        ::SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }
    ~Timer() override { ::DestroyWindow(m_window); }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

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

    /// A class of its own: the system's first control would load the library of all of them.
    static const wchar_t* ClassName() {
        static constexpr const wchar_t* name = L"NorvikTimer";
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = ::DefWindowProcW;
        windowClass.hInstance = ::GetModuleHandleW(nullptr);
        windowClass.lpszClassName = name;
        ::RegisterClassW(&windowClass);  // fails harmlessly from the second timer on
        return name;
    }

    [[nodiscard]] bool Runs() const { return m_enabled && m_interval > 0; }

    void Restart() const {
        // The system's own answer to an interval of 0 is its shortest one.
        if (Runs()) {
            ::SetTimer(m_window, timerId, static_cast<UINT>(m_interval), OnTimer);
        } else {
            ::KillTimer(m_window, timerId);
        }
    }

    static void CALLBACK OnTimer(HWND window, UINT /*message*/, UINT_PTR /*id*/, DWORD /*time*/) noexcept {
        const auto* timer = reinterpret_cast<const Timer*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
        // A tick that was queued before the timer was disabled still arrives.
        if (timer == nullptr || !timer->Runs()) return;
        // A copy, because the call may destroy the timer.
        const std::function<void()> tick = timer->m_tick;
        tick();
    }

    std::function<void()> m_tick;
    HWND m_window;
    bool m_enabled = false;
    std::int32_t m_interval = 0;
};

}  // namespace

std::unique_ptr<TimerObject> MakeTimer(std::function<void()> tick) {
    return std::make_unique<Timer>(std::move(tick));
}

}  // namespace quillon
