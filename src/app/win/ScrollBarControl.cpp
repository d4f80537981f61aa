#include "app/win/ScrollBarControl.h"

namespace quillon {

int TrackPosition(HWND scrollBar) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    GetScrollInfo(scrollBar, SB_CTL, &info);
    return info.nTrackPos;
}

void ShowBar(HWND scrollBar, const ScrollBarValues& values, bool enabled) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    info.nMin = values.least;
    info.nPage = static_cast<UINT>(values.page);
    // A scroll bar stops one page before its maximum.
    info.nMax = values.most + values.page - 1;
    info.nPos = values.position;
    SCROLLINFO before = info;
    const bool isKnown = GetScrollInfo(scrollBar, SB_CTL, &before) != 0;
    // Setting it draws it even where nothing differs.
    if (!isKnown || before.nMin != info.nMin || before.nMax != info.nMax || before.nPage != info.nPage ||
        before.nPos != info.nPos)
        SetScrollInfo(scrollBar, SB_CTL, &info, TRUE);
    EnableWindow(scrollBar, enabled);
}

}  // namespace quillon
