#include "nsp/BothWaysFilter.h"

#include <algorithm>

namespace quillon::nsp {

namespace {

/// More of them would need more memory than what they save.
constexpr std::int64_t kMostChunks = 512;

/// What the forward direction is to be fed for `wanted` after its run-up.
SampleSpan AheadOf(const FilterDesign& design, SampleSpan wanted, std::int64_t blockEnd) {
    const std::int64_t end = CellFilter::CellEndBehind(design.CellLength(), wanted.End() - 1) + design.Settling();
    return {wanted.first, static_cast<std::int32_t>(std::min(end, blockEnd) - wanted.first)};
}

}  // namespace

BothWaysFilter::BothWaysFilter(const FilterDesign& design, std::size_t channels, SampleSpan wanted,
                               std::int64_t blockEnd, LaneCount lanes, std::int32_t codesAtOnce)
    : m_wanted(wanted),
      m_blockEnd(blockEnd),
      m_settling(design.Settling()),
      m_cellLength(design.CellLength()),
      m_chunkLength(std::max({codesAtOnce / static_cast<std::int64_t>(channels),
                              (std::int64_t{m_cellLength} + m_settling) / kMostChunks, std::int64_t{1}})),
      m_forward(design, channels, AheadOf(design, wanted, blockEnd), lanes),
      m_backward(design.Sections(), channels, lanes),
      m_ready{wanted.first, 0},
      m_rows(channels) {
    BeginCell();
}

void BothWaysFilter::BeginCell() {
    m_first = m_ready.End();
    const std::int64_t cellEnd = CellFilter::CellEndBehind(m_cellLength, m_first);
    m_end = std::min<std::int64_t>(cellEnd, m_wanted.End());
    m_from = std::min(cellEnd + m_settling, m_blockEnd);
    m_starts.clear();
    m_ends.clear();
    if (m_nextCell) m_forward = *m_nextCell;
    m_nextCell.reset();
    m_pass = Pass::Ahead;
    m_chunk = 0;
    FindNext();
}

void BothWaysFilter::FindNext() {
    const std::int64_t position = m_forward.Position();
    if (m_pass == Pass::Ahead && position == ChunkStart(m_chunk)) {
        m_starts.push_back(m_forward);
        if (m_chunk == LastChunk()) {
            m_pass = Pass::Back;
        } else {
            ++m_chunk;
        }
    }
    std::int64_t end = m_pass == Pass::Ahead ? ChunkStart(m_chunk) : std::min(ChunkStart(m_chunk + 1), m_from);
    // The state at the end of the cell is kept.
    if (position < m_end) end = std::min(end, m_end);
    m_next = {static_cast<std::int32_t>(position), static_cast<std::int32_t>(end - position)};
}

template <typename Sample>
void BothWaysFilter::Feed(const ChannelSamples<Sample>& samples, std::size_t count) {
    if (m_ready.count > 0) {
        for (auto& row : m_rows) row.clear();
        m_ready = {m_ready.End(), 0};
    }
    std::vector<float*> to;
    if (m_pass != Pass::Ahead) {
        const std::size_t known = m_rows.front().size();
        for (auto& row : m_rows) {
            row.resize(known + count);
            to.push_back(row.data() + known);
        }
    }
    m_forward.Feed(samples, count, {to});
    const std::int64_t position = m_forward.Position();
    if (position == m_end && m_end < m_wanted.End() && !m_nextCell) m_nextCell = m_forward;
    if (m_pass != Pass::Ahead && position == std::min(ChunkStart(m_chunk + 1), m_from)) return RunBackward(position);
    FindNext();
}

template void BothWaysFilter::Feed(const CodeSamples& samples, std::size_t count);
template void BothWaysFilter::Feed(const FloatSamples& samples, std::size_t count);

void BothWaysFilter::RunBackward(std::int64_t end) {
    const std::int64_t start = ChunkStart(m_chunk);
    const bool gives = m_pass == Pass::Give || m_chunk == 0;
    std::vector<float*> last;
    for (auto& row : m_rows) last.push_back(&row.back());
    const std::vector<const float*> lastForward(last.begin(), last.end());
    const FilteredSamples to{last, -1};
    const FloatSamples from{lastForward, -1};
    if (m_pass == Pass::Give) {
        m_backward = m_ends.back();
        m_ends.pop_back();
    } else if (end == m_from) {
        m_backward.Start(from);
    }
    if (!gives && start < m_end) m_ends.push_back(m_backward);
    const std::int64_t inside = std::clamp<std::int64_t>(m_end - start, 0, end - start);
    const std::int64_t beyond = end - start - inside;
    m_backward.Feed(from, static_cast<std::size_t>(beyond), {});
    m_backward.Feed(from.From(beyond), static_cast<std::size_t>(inside), gives ? to.From(beyond) : FilteredSamples{});
    if (!gives) return GoToChunk(m_chunk - 1, Pass::Back);
    m_ready = {static_cast<std::int32_t>(start), static_cast<std::int32_t>(inside)};
    if (end < m_end) return GoToChunk(m_chunk + 1, Pass::Give);
    if (m_end < m_wanted.End()) return BeginCell();
    m_next = {m_wanted.End(), 0};
}

void BothWaysFilter::GoToChunk(std::int64_t chunk, Pass pass) {
    m_chunk = chunk;
    m_pass = pass;
    m_forward = m_starts[static_cast<std::size_t>(chunk)];
    if (pass == Pass::Back)
        for (auto& row : m_rows) row.clear();
    FindNext();
}

}  // namespace quillon::nsp
