#include "app/ValuesReadout.h"

#include <algorithm>

#include "app/ShownTexts.h"
#include "app/StringIds.h"
#include "base/Text.h"
#include "data/ChannelSelection.h"

namespace quillon {

ReadoutSource ValuesReadout::Source() const {
    ReadoutSource source{m_document.Block(), m_document.Slots(), m_format,
                         m_view.RawCodes(),  &m_view.Extremes(), m_view.UsesLanes()};
    if (m_view.UsesLanes()) source.document = &m_document;
    if (m_view.UsesLanes()) source.signals = ShownSignals();
    source.others = m_view.OtherBlocks();
    return source;
}

std::vector<std::int16_t> ValuesReadout::ShownSignals() const {
    if (!m_view.UsesLanes()) return ShownChannels(m_document.Block(), m_document.Slots());
    std::vector<std::int16_t> signals = m_document.SignalOrder();
    std::erase_if(signals, [this](std::int16_t signal) { return !m_document.IsShown(signal); });
    const std::vector<std::int16_t> visible = ChannelsOf(m_view.GetLanes());
    std::stable_partition(signals.begin(), signals.end(), [&](std::int16_t signal) {
        return std::find(visible.begin(), visible.end(), signal) != visible.end();
    });
    return signals;
}

ValuesReadout::Basis ValuesReadout::PresentBasis() const {
    return {ShownSignals(),
            m_format,
            m_view.RawCodes(),
            m_settings.spectrum,
            m_document.CurrentChannel(),
            m_settings.window.spectrogramShown,
            m_view.UsesLanes(),
            m_view.Pinned()};
}

void ValuesReadout::Tell(Kind kind, const std::u16string& text) {
    m_kind = kind;
    m_basis = PresentBasis();
    onText(text);
}

std::u16string ValuesReadout::Heading() const {
    const std::u16string text = TextOfShown(m_document, m_language, m_format.decimalSeparator);
    return text.empty() ? text : text + u"\r\n";
}

void ValuesReadout::TellDetails() {
    std::u16string text = m_document.File().fileInfo;
    const int signals = m_document.StretchSignals();
    if (signals > m_document.SignalCount()) {
        text += u"\r\n" +
                FillPlaces(m_services.Text(IDS_OTHER_SIGNALS), {Decimal(m_document.SignalCount()), Decimal(signals)});
    }
    Tell(Kind::Details, text);
}

void ValuesReadout::TellHover(std::int32_t sample, const std::u16string& mark, std::optional<double> place) {
    m_hoverSample = sample;
    m_hoverPlace = place;
    m_hoverMark = mark;
    const std::u16string values = m_view.Pinned() != 0 ? PinnedReadout(Source(), m_view.Pinned(), sample, place)
                                                       : HoverReadout(Source(), sample, place);
    Tell(Kind::Hover, Heading() + (mark.empty() ? mark : mark + u"\r\n") + values);
}

std::optional<Measurement> ValuesReadout::Measured() const {
    return MeasurementOf(m_view, Source(), m_kind == Kind::Hover ? m_hoverSample : 0, m_hoverPlace);
}

void ValuesReadout::TellRange() {
    bool complete = true;
    const std::u16string text = Heading() + RangeReadout(Source(), m_view.Selected(), &complete);
    m_incomplete = !complete;
    Tell(Kind::Range, text);
}

void ValuesReadout::MoreKnown() {
    if (IsIncomplete() && m_view.Selected().active) TellRange();
}

void ValuesReadout::SelectionChanged(bool moved) {
    if (m_view.Selected().active) {
        if (moved) TellRange();
    } else if (m_kind == Kind::Range) {
        TellDetails();
    }
}

void ValuesReadout::SelectionStarted() {
    if (m_kind == Kind::Range) TellHover(m_view.Selected().start, {});
}

void ValuesReadout::KeepTrue() {
    const SampleSpan seen = m_view.Axis().Visible();
    const bool hovers = (m_kind == Kind::Hover && m_view.Pinned() == 0) || m_kind == Kind::Spectrum;
    if (hovers && (m_hoverSample <= seen.first || m_hoverSample > seen.End())) return TellDetails();
    if (m_kind != Kind::Details && PresentBasis() != m_basis) BlockChanged();
}

void ValuesReadout::BlockChanged() {
    switch (m_kind) {
        case Kind::Hover: return TellHover(m_hoverSample, m_hoverMark, m_hoverPlace);
        case Kind::Range: return TellRange();
        default: return TellDetails();
    }
}

}  // namespace quillon
