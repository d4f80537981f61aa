#include "app/LookCommands.h"

#include <algorithm>

namespace quillon {

void LookCommands::Restore() {
    // A stored width outside the menu's is kept, but not drawn.
    m_view.SetLook({m_remembered.darkGraph ? &kDarkColors : &kLightColors,
                    std::clamp(m_remembered.lineWidth, std::int32_t{1}, kMostLineWidth)});
}

void LookCommands::Change() {
    Restore();
    onChange();
}

void LookCommands::ToggleDark() {
    m_remembered.darkGraph = !m_remembered.darkGraph;
    Change();
}

void LookCommands::SetLineWidth(std::int32_t width) {
    m_remembered.lineWidth = width;
    Change();
}

}  // namespace quillon
