#include "nsp/FilterStream.h"

#include <algorithm>
#include <stdexcept>

namespace quillon::nsp {

namespace {

/// `start` becomes the pointers to `later` samples into each row.
FilteredSamples RowsFrom(std::vector<std::vector<float>>& rows, std::size_t later, std::vector<float*>& start) {
    start.clear();
    for (std::vector<float>& row : rows) start.push_back(row.data() + later);
    return {start};
}

/// What the forward direction has to give for `wanted`.
SampleSpan AheadOf(const FilterDesign& design, SampleSpan wanted, std::int64_t blockEnd) {
    if (wanted.first < 0 || wanted.count < 1 || wanted.count > blockEnd - wanted.first)
        throw std::invalid_argument("samples of a block");
    if (!design.BothWays()) return wanted;
    const std::int64_t end = CellFilter::CellEndBehind(design.CellLength(), wanted.End() - 1) + design.Settling();
    return {wanted.first, static_cast<std::int32_t>(std::min(end, blockEnd) - wanted.first)};
}

}  // namespace

FilterStream::FilterStream(const FilterDesign& design, std::size_t channels, SampleSpan wanted,
                           std::int32_t blockSamples, LaneCount lanes)
    : m_wanted(wanted),
      m_blockEnd(blockSamples),
      m_settling(design.Settling()),
      m_cellLength(design.CellLength()),
      m_bothWays(design.BothWays()),
      m_ahead(AheadOf(design, wanted, blockSamples)),
      m_forward(design, channels, m_ahead, lanes),
      m_backward(design.Sections(), channels, lanes),
      m_ready{wanted.first, 0},
      m_rows(channels),
      m_history(channels),
      m_historyFirst(wanted.first) {
    const std::int32_t start = m_forward.Position();
    m_needed = {start, m_ahead.End() - start};
}

void FilterStream::GoOnFrom(const CellFilter& checkpoint) {
    if (m_bothWays || checkpoint.Position() > m_wanted.first) throw std::invalid_argument("no checkpoint of this");
    m_forward = checkpoint;
    m_needed = {checkpoint.Position(), m_ahead.End() - checkpoint.Position()};
}

void FilterStream::Feed(const CodeSamples& samples, std::size_t count) {
    Run(samples, count);
}

void FilterStream::Feed(const FloatSamples& samples, std::size_t count) {
    Run(samples, count);
}

template <typename Sample>
void FilterStream::Run(const ChannelSamples<Sample>& samples, std::size_t count) {
    if (static_cast<std::int64_t>(count) > m_needed.End() - m_forward.Position())
        throw std::invalid_argument("more samples than are needed");
    m_ready = {m_ready.End(), 0};
    m_skipped = 0;
    if (m_bothWays) {
        FeedBothWays(samples, count);
    } else {
        FeedForward(samples, count);
    }
}

template <typename Sample>
void FilterStream::FeedForward(const ChannelSamples<Sample>& samples, std::size_t count) {
    const std::int64_t before = m_forward.Position();
    for (auto& row : m_rows) row.resize(count);
    std::vector<float*> start;
    m_forward.Feed(samples, count, RowsFrom(m_rows, 0, start));
    const std::int64_t runUp = std::clamp<std::int64_t>(m_ahead.first - before, 0, static_cast<std::int64_t>(count));
    m_skipped = static_cast<std::size_t>(runUp);
    m_ready.count = static_cast<std::int32_t>(count - m_skipped);
}

template <typename Sample>
void FilterStream::FeedBothWays(const ChannelSamples<Sample>& samples, std::size_t count) {
    for (auto& row : m_rows) row.clear();
    const std::int64_t before = m_forward.Position();
    const std::size_t runUp =
        std::min(count, static_cast<std::size_t>(std::max<std::int64_t>(m_ahead.first - before, 0)));
    if (runUp > 0) m_forward.Feed(samples, runUp, {});
    const std::size_t rest = count - runUp;
    if (rest > 0) {
        const std::size_t known = m_history.empty() ? 0 : m_history[0].size();
        for (auto& row : m_history) row.resize(known + rest);
        std::vector<float*> start;
        m_forward.Feed(samples.From(static_cast<std::ptrdiff_t>(runUp)), rest, RowsFrom(m_history, known, start));
    }
    while (m_ready.End() < m_wanted.End()) {
        const std::int64_t cellEnd = CellFilter::CellEndBehind(m_cellLength, m_ready.End());
        const std::int64_t from = std::min(cellEnd + m_settling, m_blockEnd);
        if (m_forward.Position() < from) break;
        RunBackward(from, std::min<std::int64_t>(cellEnd, m_wanted.End()));
    }
}

/// From behind sample `from` to the first of the cell; what lies before `end` becomes ready.
void FilterStream::RunBackward(std::int64_t from, std::int64_t end) {
    const std::int64_t first = m_ready.End();
    std::vector<const float*> last;
    for (const auto& row : m_history) last.push_back(row.data() + (from - 1 - m_historyFirst));
    const FloatSamples backward{last, -1};
    m_backward.Start(backward);
    m_backward.Feed(backward, static_cast<std::size_t>(from - end), {});

    const auto size = static_cast<std::size_t>(end - first);
    const std::size_t ready = static_cast<std::size_t>(m_ready.count);
    std::vector<float*> to;
    for (auto& row : m_rows) {
        row.resize(ready + size);
        to.push_back(row.data() + ready + size - 1);
    }
    m_backward.Feed(backward.From(from - end), size, {to, -1});
    m_ready.count += static_cast<std::int32_t>(size);

    for (auto& row : m_history) row.erase(row.begin(), row.begin() + static_cast<std::ptrdiff_t>(size));
    m_historyFirst = end;
}

}  // namespace quillon::nsp
