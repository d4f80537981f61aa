#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "app/QL_Global.h"

namespace quillon {

/// Command identifiers. An indexed entry of the menu takes its first identifier plus its index.
enum CommandId : int {
    mnuExit = 1000,
    mnuTabPath = 1010,
    mnuTabFile = 1020,
    mnuScaleX = 1100,
    mnuZoomX = 1120,
    mnuGoTo = 1130,
    mnuScaleY = 1200,
    mnuZoomY = 1230,
    mnuBaseLine = 1240,
    mnuChShow = 1250,
};

/// One line of the menu tree, in order. An entry of depth d belongs to the nearest popup of depth d-1 above it.
struct MenuEntry {
    enum class Kind { Popup, Command, Separator };
    Kind kind;
    int depth;
    int id = 0;     ///< first command; 0 for a popup
    int count = 1;  ///< entries of an array
    int captionId =
        0;  ///< string of the first entry, further ones follow; 0: captions are computed, see ComputedCaption
};

[[nodiscard]] std::span<const MenuEntry> MenuTree();

/// Caption of an entry whose captions are computed (the zoom and scale lists).
[[nodiscard]] std::u16string ComputedCaption(int id, char16_t separator);

/// Whether a command can do anything in the present state.
[[nodiscard]] bool IsEnabled(int id, const QL_Global& global);

/// Whether a command shows a check mark.
[[nodiscard]] bool IsChecked(int id, const QL_Global& global);

}  // namespace quillon
