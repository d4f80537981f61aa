#pragma once

#include <cstdint>

namespace quillon {

/// Keys that mean something to the graph.
enum class GraphKey { Left, Right, Up, Down, PageUp, PageDown, Home, End, Plus, Minus, B, D };

/// What a key does: a command of the menu, or a move by pixels; nothing when all are 0.
struct KeyAction {
    int command = 0;
    std::int32_t columns = 0;  ///< scrolls the view
    std::int32_t rows = 0;     ///< moves the base line, downwards positive
};

[[nodiscard]] KeyAction ActionOf(GraphKey key, bool control, bool shift);

}  // namespace quillon
