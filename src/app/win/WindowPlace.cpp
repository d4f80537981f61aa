#include "app/win/WindowPlace.h"

namespace quillon {

namespace {

/// Limit of stored positions and sizes, in pixels; anything larger is invalid.
constexpr std::int32_t kFarthest = 1 << 20;

}  // namespace

void RestoreWindowPlace(HWND window, const WindowPlace& kept, int& showCommand) {
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
        SetWindowPlacement(window, &placement);
        const bool minimized =
            showCommand == SW_SHOWMINIMIZED || showCommand == SW_MINIMIZE || showCommand == SW_SHOWMINNOACTIVE;
        if (kept.maximized && !minimized) showCommand = SW_SHOWMAXIMIZED;
    }
}

void KeepWindowPlace(HWND window, WindowPlace& kept) {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    if (!GetWindowPlacement(window, &placement)) return;
    const RECT& place = placement.rcNormalPosition;
    kept.left = static_cast<std::int32_t>(place.left);
    kept.top = static_cast<std::int32_t>(place.top);
    kept.width = static_cast<std::int32_t>(place.right - place.left);
    kept.height = static_cast<std::int32_t>(place.bottom - place.top);
    kept.maximized = IsZoomed(window) != FALSE || (IsIconic(window) && (placement.flags & WPF_RESTORETOMAXIMIZED) != 0);
}

}  // namespace quillon
