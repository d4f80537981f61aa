#include "app/LaneCommands.h"

#include <cmath>

namespace quillon {

void LaneCommands::Restore() {
    m_view.SetLanes(m_remembered.lanes);
    m_view.SetNegativeUp(m_remembered.negativeUp);
    m_view.SetClip(m_remembered.clipToLanes);
    m_document.SetPairs(m_remembered.lanes);
    m_document.SetAllSignals(m_remembered.allSignals && m_remembered.lanes);
    if (std::isfinite(m_remembered.pageLength) && m_remembered.pageLength > 0.0F)
        m_view.SelectPage(static_cast<double>(m_remembered.pageLength));
}

void LaneCommands::Remember() {
    const LaneSettings& now = m_view.LanesOfChannels().Settings();
    m_remembered.lanes = now.on;
    m_remembered.negativeUp = now.negativeUp;
    m_remembered.clipToLanes = now.clip;
    // Lanes may have been turned on or off.
    ChooseSignals();
    if (const double page = m_view.Axis().ChosenPage(); page > 0.0) m_remembered.pageLength = static_cast<float>(page);
}

void LaneCommands::ToggleLanes() {
    onChange(m_view.SetLanes(!m_view.LanesOfChannels().Settings().on));
}

ViewChange LaneCommands::ChooseSignals() {
    const bool lanes = m_view.LanesOfChannels().Settings().on;
    const bool all = m_remembered.allSignals && lanes;
    m_document.SetPairs(lanes);
    if (all == m_document.AllSignals() && !m_document.Reshow()) return {};
    m_document.SetAllSignals(all);
    const ViewChange change = m_view.SignalsChanged();
    onSignals();
    return change;
}

void LaneCommands::SignalsFound() {
    const ViewChange change = m_view.SignalsChanged();
    onSignals();
    onChange(change);
}

void LaneCommands::ToggleAllSignals() {
    const bool lanes = m_view.LanesOfChannels().Settings().on;
    m_remembered.allSignals = !lanes || !m_remembered.allSignals;
    lanes ? onChange(ChooseSignals()) : ToggleLanes();
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
