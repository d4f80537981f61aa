#include "app/win/StatusTexts.h"

#include "app/ShownTexts.h"
#include "app/StatusPanels.h"
#include "app/StringIds.h"
#include "app/win/GraphPane.h"
#include "app/win/SpectrogramPane.h"
#include "base/FilePath.h"
#include "base/SystemText.h"
#include "dialogs/DialogTexts.h"
#include "view/Readout.h"

namespace quillon {

void StatusTexts::ShowPanels() {
    const WaveformView& view = m_parts.view;
    const Document& document = m_parts.document;
    PanelFacts facts{document.Block(), document.Slots(), view.Axis(), m_parts.format, view.ScaleY(), view.RawCodes()};
    facts.shown = TextOfCurrent(document, m_parts.language, m_parts.format.decimalSeparator);
    if (view.UsesLanes()) {
        // The scale of a lane that is shown, if any.
        std::int16_t signal = document.CurrentChannel();
        const std::vector<std::int16_t> visible = ChannelsOf(view.GetLanes());
        if (!document.IsShown(signal) && !visible.empty()) signal = visible.front();
        facts.laneScale = LaneScaleText(view.LanesOfChannels(), signal, document.GetSignal(signal).unit, facts);
    }
    m_status.ShowPanels(BlockPanels(facts, m_parts.services));
}

void StatusTexts::ShowPosition(std::int32_t sample) {
    if (sample == 0) return m_status.Retract(StatusBar::Topic::Sound);
    // Do not replace the outcome of an export or an error.
    m_status.Offer(StatusBar::Topic::Sound, m_parts.services.Text(IDS_PLAYING) + u' ' +
                                                PositionText(m_parts.document.Block(), sample, u" ", m_parts.format));
}

void StatusTexts::TellUnreadable(bool wholeView) {
    std::string inView = m_graph.Failure();
    if (inView.empty()) inView = m_spectrogram.Failure();
    const auto text = m_unreadable.Tell(
        {FileNameOf(m_parts.document.File().fileName), inView, m_parts.view.Ranges().Failure(), wholeView},
        m_parts.services);
    if (!text) return;
    if (text->empty()) return m_status.Retract(StatusBar::Topic::Unreadable);
    m_status.Tell(StatusBar::Topic::Unreadable, *text);
}

void StatusTexts::TellReload(bool loaded, const std::u16string& text) {
    // A successful reload does not replace a message of another topic; a failed one does.
    loaded ? m_status.Offer(StatusBar::Topic::Reload, text) : m_status.Tell(StatusBar::Topic::Reload, text);
}

void StatusTexts::TellOfLanes() {
    m_status.Offer(StatusBar::Topic::Hint, m_parts.services.Text(IDS_LANES_HINT));
}

void StatusTexts::BlockLeft() {
    m_unreadable = {};
    using Topic = StatusBar::Topic;
    for (const Topic topic : {Topic::Unreadable, Topic::Refusal, Topic::Choice, Topic::Reload, Topic::Hint})
        m_status.Retract(topic);
}

void StatusTexts::Failed(const std::exception& error) noexcept {
    try {
        m_status.Tell(StatusBar::Topic::Outcome,
                      m_parts.services.Text(IDS_COMMAND_FAILED) + u": " + WordsOf(error, m_parts.language));
    } catch (const std::exception&) {
        // Out of memory even for the message.
    }
}

}  // namespace quillon
