#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "data/UserServices.h"
#include "view/GraphGestures.h"

namespace quillon {

/// A key: a capital letter or a digit is its own code, as on every keyboard.
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
};

constexpr Key Letter(char letter) {
    return static_cast<Key>(letter);
}

/// Where a key means something: what has the focus.
enum class KeyPlace { Everywhere, Graph, FolderList, FileList, ChannelList };

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

/// Command of a key; 0 where it has none at that place.
[[nodiscard]] int CommandOf(KeyPlace place, Key key, bool control, bool shift, bool alt);

/// What the keys mean where a control of the main window has the focus; 0: the window itself.
[[nodiscard]] KeyPlace KeyPlaceOf(int control);

/// What the wheel turns over a control; nothing of the graph over others.
[[nodiscard]] std::optional<GraphZone> WheelZoneOf(int control);

/// The key as a menu shows it, such as "Ctrl+Shift+E".
[[nodiscard]] std::u16string KeyText(const KeyBinding& binding, const UserServices& services);

/// What the menu entry of a command shows behind its caption; empty without a key of the graph.
[[nodiscard]] std::u16string AcceleratorText(int command, const UserServices& services);

}  // namespace quillon
