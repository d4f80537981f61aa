#include "app/win/WindowPlace.h"

namespace quillon {

namespace {

/// Limit of stored positions and sizes, in pixels; anything larger is invalid.
constexpr std::int32_t kFarthest = 1 << 20;

}  // namespace

void RestoreWindowPlace(HWND window, const WindowPlace& kept, const ScreenDensity& density, int& showCommand) {
    const auto sane = [](std::int32_t value) { return value > -kFarthest && value < kFarthest; };
    if (kept.width > 0 && kept.height > 0 && sane(kept.left) && sane(kept.top) && sane(kept.width) &&
        sane(kept.height)) {
        WINDOWPLACEMENT placement{};
        placement.length = sizeof placement;
        placement.showCmd = SW_HIDE;
        RECT& place = placement.rcNormalPosition;
        place = {kept.left, kept.top, kept.left + kept.width, kept.top + kept.height};
        // A place outside all monitors is moved onto the nearest one.
        MONITORINFO monitor{};
        monitor.cbSize = sizeof monitor;
        if (MonitorFromRect(&place, MONITOR_DEFAULTTONULL) == nullptr &&
            GetMonitorInfoW(MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST), &monitor)) {
            OffsetRect(&place, monitor.rcWork.left - place.left, monitor.rcWork.top - place.top);
        }
        // Versions that knew one density alone did not tell it.
        const int then = kept.dpi > 0 ? kept.dpi : ScreenDpi();
        if (then != density.Dpi()) {
            // Once it is there the window knows the density of the monitor.
            SetWindowPos(window, nullptr, static_cast<int>(place.left), static_cast<int>(place.top), 0, 0,
                         SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
            place.right = place.left + Converted(kept.width, then, density.Dpi());
            place.bottom = place.top + Converted(kept.height, then, density.Dpi());
        }
        SetWindowPlacement(window, &placement);
        const bool minimized =
            showCommand == SW_SHOWMINIMIZED || showCommand == SW_MINIMIZE || showCommand == SW_SHOWMINNOACTIVE;
        if (kept.maximized && !minimized) showCommand = SW_SHOWMAXIMIZED;
    }
}

void KeepWindowPlace(HWND window, const ScreenDensity& density, WindowPlace& kept) {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    if (!GetWindowPlacement(window, &placement)) return;
    const RECT& place = placement.rcNormalPosition;
    kept.left = static_cast<std::int32_t>(place.left);
    kept.top = static_cast<std::int32_t>(place.top);
    kept.width = static_cast<std::int32_t>(place.right - place.left);
    kept.height = static_cast<std::int32_t>(place.bottom - place.top);
    kept.dpi = density.Dpi();
    kept.maximized = IsZoomed(window) != FALSE || (IsIconic(window) && (placement.flags & WPF_RESTORETOMAXIMIZED) != 0);
}

}  // namespace quillon
