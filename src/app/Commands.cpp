#include "app/Commands.h"

#include <array>

#include "base/StringIds.h"
#include "view/ScaleLabels.h"

namespace quillon {

namespace {

constexpr MenuEntry Popup(int depth, int captionId) {
    return {MenuEntry::Kind::Popup, depth, 0, 1, captionId};
}

constexpr MenuEntry Entry(int depth, int id, int captionId, int count = 1) {
    return {MenuEntry::Kind::Command, depth, id, count, captionId};
}

constexpr MenuEntry Separator(int depth) {
    return {MenuEntry::Kind::Separator, depth, 0, 1, 0};
}

constexpr std::array kTree{
    Popup(0, IDS_MENU_FILE),
    Entry(1, mnuExit, IDS_EXIT),
    Popup(0, IDS_MENU_VIEW),
    Entry(1, mnuTabPath, IDS_TABPATH_0, 2),
    Separator(1),
    Entry(1, mnuTabFile, IDS_TABFILE_0, 2),
    Separator(1),
    Popup(1, IDS_MENU_XZOOM),
    Entry(2, mnuScaleX, 0, TimeAxis::kMenuZoomCount),
    Entry(2, mnuZoomX, IDS_ZOOMX_0, 2),
    Separator(1),
    Entry(1, mnuGoTo, IDS_GOTO_0, 4),
    Popup(0, IDS_MENU_GRAPH),
    Popup(1, IDS_MENU_YSCALE),
    Entry(2, mnuScaleY, 0, AmplitudeScale::kScaleCount),
    Entry(1, mnuZoomY, IDS_ZOOMY_0, 2),
    Separator(1),
    Entry(1, mnuBaseLine, IDS_BASELINE_0, 2),
    Popup(0, IDS_MENU_CHANNELS),
    Entry(1, mnuChShow, IDS_CHSHOW_0, 3),
};

bool Within(int id, int first, int count) {
    return id >= first && id < first + count;
}

}  // namespace

std::span<const MenuEntry> MenuTree() {
    return kTree;
}

std::u16string ComputedCaption(int id, char16_t separator) {
    if (Within(id, mnuScaleX, TimeAxis::kMenuZoomCount)) return ZoomCaption(id - mnuScaleX);
    return ScaleCaption(id - mnuScaleY, separator);
}

bool IsEnabled(int id, const QL_Global& global) {
    if (id == mnuExit || Within(id, mnuTabPath, 2) || Within(id, mnuTabFile, 2)) return true;
    if (global.block.channelCount == 0) return false;
    if (id == mnuZoomX) return global.axis.ZoomIndex() < TimeAxis::kMenuZoomCount - 1;
    if (id == mnuZoomX + 1) return global.axis.ZoomIndex() > 0;
    if (id == mnuZoomY) return global.amplitude.Index() > 0;
    if (id == mnuZoomY + 1) return global.amplitude.Index() < AmplitudeScale::kScaleCount - 1;
    return true;
}

bool IsChecked(int id, const QL_Global& global) {
    if (Within(id, mnuScaleX, TimeAxis::kMenuZoomCount)) return id - mnuScaleX == global.axis.ZoomIndex();
    if (Within(id, mnuScaleY, AmplitudeScale::kScaleCount)) return id - mnuScaleY == global.amplitude.Index();
    return false;
}

}  // namespace quillon
