#include "app/LaneCommands.h"

#include <cmath>

namespace quillon {

void LaneCommands::Restore() {
    m_view.SetLanes(m_remembered.lanes);
    m_view.SetNegativeUp(m_remembered.negativeUp);
    m_view.SetClip(m_remembered.clipToLanes);
    if (std::isfinite(m_remembered.pageLength) && m_remembered.pageLength > 0.0F)
        m_view.SelectPage(static_cast<double>(m_remembered.pageLength));
}

void LaneCommands::Remember() {
    const LaneSettings& now = m_view.LanesOfChannels().Settings();
    m_remembered.lanes = now.on;
    m_remembered.negativeUp = now.negativeUp;
    m_remembered.clipToLanes = now.clip;
    if (const double page = m_view.Axis().ChosenPage(); page > 0.0) m_remembered.pageLength = static_cast<float>(page);
}

void LaneCommands::ToggleLanes() {
    onChange(m_view.SetLanes(!m_view.LanesOfChannels().Settings().on));
}

void LaneCommands::ToggleNegativeUp() {
    onChange(m_view.SetNegativeUp(!m_view.LanesOfChannels().Settings().negativeUp));
}

void LaneCommands::ToggleClip() {
    onChange(m_view.SetClip(!m_view.LanesOfChannels().Settings().clip));
}

bool LaneCommands::TakeHint() {
    if (m_hinted || m_view.UsesLanes() || !LanesWouldHelp(m_document)) return false;
    m_hinted = true;
    return true;
}

}  // namespace quillon
