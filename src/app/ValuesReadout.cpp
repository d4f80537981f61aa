#include "app/ValuesReadout.h"

#include "data/ChannelSelection.h"

namespace quillon {

ReadoutSource ValuesReadout::Source() const {
    return {m_document.Block(), m_document.Slots(), m_format,
            m_view.RawCodes(),  &m_view.Extremes(), m_view.UsesLanes()};
}

ValuesReadout::Basis ValuesReadout::PresentBasis() const {
    return {ShownChannels(m_document.Block(), m_document.Slots()),
            m_format,
            m_view.RawCodes(),
            m_settings.spectrum,
            m_document.CurrentChannel(),
            m_settings.window.spectrogramShown,
            m_view.UsesLanes()};
}

void ValuesReadout::Tell(Kind kind, const std::u16string& text) {
    m_kind = kind;
    m_basis = PresentBasis();
    onText(text);
}

void ValuesReadout::TellHover(std::int32_t sample, const std::u16string& mark) {
    m_hoverSample = sample;
    m_hoverMark = mark;
    Tell(Kind::Hover, (mark.empty() ? mark : mark + u"\r\n") + HoverReadout(Source(), sample));
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
    if (m_kind != Kind::Details && PresentBasis() != m_basis) BlockChanged();
}

void ValuesReadout::BlockChanged() {
    switch (m_kind) {
        case Kind::Hover: return TellHover(m_hoverSample, m_hoverMark);
        case Kind::Range: return TellRange();
        default: return TellDetails();
    }
}

}  // namespace quillon
