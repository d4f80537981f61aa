#include "app/ValuesReadout.h"

#include "app/StringIds.h"
#include "base/Text.h"

namespace quillon {

ReadoutSource ValuesReadout::Source() const {
    ReadoutSource source{m_document.Block(), m_document.Slots(), m_format,
                         m_view.RawCodes(),  &m_view.Extremes(), m_view.UsesLanes()};
    if (m_view.UsesLanes()) source.document = &m_document;
    source.others = m_view.OtherBlocks();
    return source;
}

ValuesReadout::Basis ValuesReadout::PresentBasis() const {
    Basis basis{{},
                m_format,
                m_view.RawCodes(),
                m_settings.spectrum,
                m_document.CurrentChannel(),
                m_settings.window.spectrogramShown,
                m_view.UsesLanes()};
    const std::int16_t count = m_view.UsesLanes() ? m_document.SignalCount() : m_document.Block().channelCount;
    for (std::int16_t signal = 1; signal <= count; ++signal) {
        if (m_document.IsShown(signal)) basis.signals.push_back(signal);
    }
    return basis;
}

void ValuesReadout::Tell(Kind kind, const std::u16string& text) {
    m_kind = kind;
    m_basis = PresentBasis();
    onText(text);
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
    Tell(Kind::Hover, (mark.empty() ? mark : mark + u"\r\n") + HoverReadout(Source(), sample, place));
}

void ValuesReadout::TellRange() {
    bool complete = true;
    const std::u16string text = RangeReadout(Source(), m_view.Selected(), &complete);
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
    const bool hovers = m_kind == Kind::Hover || m_kind == Kind::Spectrum;
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
