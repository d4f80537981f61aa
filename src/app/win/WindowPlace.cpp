#include "app/win/WindowPlace.h"

namespace quillon {

namespace {

/// No window lies further away or is larger, in pixels.
constexpr std::int32_t kFarthest = 1 << 20;

}  // namespace

void RestoreWindowPlace(HWND window, const Settings& settings, int& showCommand) {
    const auto sane = [](std::int32_t value) { return value > -kFarthest && value < kFarthest; };
    if (settings.windowWidth > 0 && settings.windowHeight > 0 && sane(settings.windowLeft) &&
        sane(settings.windowTop) && sane(settings.windowWidth) && sane(settings.windowHeight)) {
        WINDOWPLACEMENT placement{};
        placement.length = sizeof placement;
        placement.showCmd = SW_HIDE;
        RECT& place = placement.rcNormalPosition;
        place = {settings.windowLeft, settings.windowTop, settings.windowLeft + settings.windowWidth,
                 settings.windowTop + settings.windowHeight};
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
        if (settings.windowMaximized && !minimized) showCommand = SW_SHOWMAXIMIZED;
    }
}

void KeepWindowPlace(HWND window, Settings& settings) {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    if (!GetWindowPlacement(window, &placement)) return;
    const RECT& place = placement.rcNormalPosition;
    settings.windowLeft = static_cast<std::int32_t>(place.left);
    settings.windowTop = static_cast<std::int32_t>(place.top);
    settings.windowWidth = static_cast<std::int32_t>(place.right - place.left);
    settings.windowHeight = static_cast<std::int32_t>(place.bottom - place.top);
    settings.windowMaximized =
        IsZoomed(window) != FALSE || (IsIconic(window) && (placement.flags & WPF_RESTORETOMAXIMIZED) != 0);
}

}  // namespace quillon
