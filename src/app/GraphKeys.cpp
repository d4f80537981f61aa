#include "app/GraphKeys.h"

#include "app/Commands.h"

namespace quillon {

KeyAction ActionOf(GraphKey key, bool control, bool shift) {
    const std::int32_t columns = shift ? 1 : control ? 100 : 20;
    const std::int32_t rows = shift ? 1 : control ? 40 : 20;
    switch (key) {
        case GraphKey::Left: return {0, -columns, 0};
        case GraphKey::Right: return {0, columns, 0};
        case GraphKey::Up: return {0, 0, -rows};
        case GraphKey::Down: return {0, 0, rows};
        case GraphKey::Home: return {mnuGoTo, 0, 0};
        case GraphKey::PageUp: return {mnuGoTo + 1, 0, 0};
        case GraphKey::PageDown: return {mnuGoTo + 2, 0, 0};
        case GraphKey::End: return {mnuGoTo + 3, 0, 0};
        case GraphKey::Minus: return {control ? mnuZoomX : mnuZoomY, 0, 0};
        case GraphKey::Plus: return {(control ? mnuZoomX : mnuZoomY) + 1, 0, 0};
        case GraphKey::B: return {control || shift ? 0 : mnuBaseLine, 0, 0};
        case GraphKey::D: return {control || shift ? 0 : mnuBaseLine + 1, 0, 0};
    }
    return {};
}

}  // namespace quillon
