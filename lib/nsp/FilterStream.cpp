#include "nsp/FilterStream.h"

#include <algorithm>
#include <stdexcept>

namespace quillon::nsp {

FilterStream::FilterStream(const FilterDesign& design, std::size_t channels, SampleSpan wanted,
                           std::int32_t blockSamples, LaneCount lanes, std::int32_t codesAtOnce)
    : m_wanted(wanted), m_forward(design, channels, wanted, lanes), m_ready{wanted.first, 0}, m_rows(channels) {
    if (wanted.first < 0 || wanted.count < 1 || wanted.count > blockSamples - wanted.first)
        throw std::invalid_argument("samples of a block");
    if (design.BothWays()) m_bothWays.emplace(design, channels, wanted, blockSamples, lanes, codesAtOnce);
}

SampleSpan FilterStream::Next() const {
    if (m_bothWays) return m_bothWays->Next();
    return {m_forward.Position(), m_wanted.End() - m_forward.Position()};
}

void FilterStream::GoOnFrom(const CellFilter& checkpoint) {
    if (m_bothWays || checkpoint.Position() > m_wanted.first) throw std::invalid_argument("no checkpoint of this");
    m_forward = checkpoint;
}

bool FilterStream::HasLongCells(const FilterDesign& design, std::size_t channels) {
    const std::int64_t held = kCodesAtOnce / static_cast<std::int64_t>(channels);
    return design.BothWays() && std::int64_t{design.CellLength()} + design.Settling() > held;
}

void FilterStream::Feed(const CodeSamples& samples, std::size_t count) {
    Run(samples, count);
}

void FilterStream::Feed(const FloatSamples& samples, std::size_t count) {
    Run(samples, count);
}

template <typename Sample>
void FilterStream::Run(const ChannelSamples<Sample>& samples, std::size_t count) {
    const SampleSpan next = Next();
    if (static_cast<std::int64_t>(count) > next.count) throw std::invalid_argument("more samples than are needed");
    if (m_bothWays) return m_bothWays->Feed(samples, count);
    std::vector<float*> start;
    for (auto& row : m_rows) {
        row.resize(count);
        start.push_back(row.data());
    }
    m_forward.Feed(samples, count, {start});
    m_skipped = std::min(static_cast<std::size_t>(std::max(m_wanted.first - next.first, 0)), count);
    m_ready = {m_ready.End(), static_cast<std::int32_t>(count - m_skipped)};
}

}  // namespace quillon::nsp
