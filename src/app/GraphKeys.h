#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "data/UserServices.h"
#include "view/GraphGestures.h"

namespace quillon {

/// A virtual-key code; capital letters and digits are their own codes.
enum class Key : std::uint16_t {
    None = 0,
    Left = 256,
    Right,
    Up,
    Down,
    PageUp,
    PageDown,
    Home,
    End,
    Plus,
    Minus,
    Space,
    Enter,
    Escape,
    Backspace,
    Delete,
    F1,
    F2,
    F5,
    Comma,
    Point,
};

constexpr Key Letter(char letter) {
    return static_cast<Key>(letter);
}

/// Focus context in which a key is bound.
enum class KeyPlace { Everywhere, Graph, FolderList, FileList, ChannelList, MarkList };

struct KeyBinding {
    KeyPlace place;
    Key key;
    int command;
    bool control = false;
    bool shift = false;
    bool alt = false;
};

/// Every key of the main window and the command that it runs.
[[nodiscard]] std::span<const KeyBinding> KeyBindings();

/// Command bound to a key in that context; 0 if none.
[[nodiscard]] int CommandOf(KeyPlace place, Key key, bool control, bool shift, bool alt);

/// Whether a box in which something is typed uses a key itself; the others are commands there too.
[[nodiscard]] bool IsKeyOfBox(Key key, bool control, bool shift, bool alt);

/// Key context of the focused control of the main window; 0: the window itself.
[[nodiscard]] KeyPlace KeyPlaceOf(int control);

/// Whether a click on a control leaves the keyboard with the graph.
[[nodiscard]] bool ReturnsKeyboard(int control);

/// Wheel zone of a control; none for controls that do not belong to the graph.
[[nodiscard]] std::optional<GraphZone> WheelZoneOf(int control);

/// The key as a menu shows it, such as "Ctrl+Shift+E".
[[nodiscard]] std::u16string KeyText(const KeyBinding& binding, const UserServices& services);

/// Key text shown after the caption of a menu entry; empty without a key bound in the graph.
[[nodiscard]] std::u16string AcceleratorText(int command, const UserServices& services);

}  // namespace quillon
