#include "nsp/CellFilter.h"

#include <algorithm>
#include <utility>

namespace quillon::nsp {

CellFilter::CellFilter(const FilterDesign& design, std::size_t channels, SampleSpan wanted, LaneCount lanes)
    : m_settling(design.Settling()),
      m_cellLength(design.CellLength()),
      m_position(StartFor(design, wanted.first)),
      m_cellEnd(CellEndBehind(m_cellLength, wanted.first)),
      m_end(wanted.End()),
      m_current(design.Sections(), channels, lanes),
      m_next(m_current) {}

std::int32_t CellFilter::StartFor(const FilterDesign& design, std::int32_t first) {
    return std::max(first / design.CellLength() * design.CellLength() - design.Settling(), 0);
}

std::int64_t CellFilter::CellEndBehind(std::int64_t cellLength, std::int64_t sample) {
    return (sample / cellLength + 1) * cellLength;
}

void CellFilter::Feed(CodeSamples samples, std::size_t count, FilteredSamples out) {
    Run(samples, count, out);
}

void CellFilter::Feed(FloatSamples samples, std::size_t count, FilteredSamples out) {
    Run(samples, count, out);
}

template <typename Sample>
void CellFilter::Run(ChannelSamples<Sample> samples, std::size_t count, FilteredSamples out) {
    if (!m_started && count > 0) m_current.Start(samples);
    m_started = m_started || count > 0;
    while (count > 0) {
        const bool another = m_cellEnd < m_end;
        const std::int64_t runUp = another ? m_cellEnd - m_settling : m_cellEnd;
        if (another && m_position == runUp) m_next.Start(samples);
        if (m_position == m_cellEnd) {
            std::swap(m_current, m_next);
            m_cellEnd += m_cellLength;
            continue;
        }
        const std::int64_t until = m_position < runUp ? runUp : m_cellEnd;
        const auto part = static_cast<std::ptrdiff_t>(std::min(until - m_position, static_cast<std::int64_t>(count)));
        const auto size = static_cast<std::size_t>(part);
        if (m_position >= runUp) m_next.Feed(samples, size, {});
        m_current.Feed(samples, size, out);
        samples = samples.From(part);
        out = out.From(part);
        m_position += static_cast<std::int32_t>(part);
        count -= size;
    }
}

}  // namespace quillon::nsp
