#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "nsp/kernels/FrameColumns.h"
#include "nsp/kernels/FrameStretch.h"
#include "nsp/kernels/ResultRows.h"
#include "nsp/kernels/RunKernels.h"

namespace quillon::nsp {

/// Runs of frames of 3 or more channels, one lane per channel. Only the vectors that hold selected channels are
/// reduced. `Channels` as that of FrameStretch.
template <typename Lanes, std::size_t Channels>
class FrameRuns final : public FrameKernel {
  public:
    FrameRuns(std::size_t channels, std::span<const std::size_t> selected, std::size_t run,
              std::span<ExtremePair* const> out)
        : FrameRuns(channels, run, FrameColumns(channels, Lanes::kCount, selected, out)) {}
    void Feed(const std::int16_t* frames, std::size_t frameCount) override;
    void Finish() override {
        if (m_filled > 0) RunDone();
        m_rows.Write();
    }

  private:
    using Stretch = FrameStretch<Lanes, Channels>;
    /// Columns reduced together; the accumulators of more do not fit the sixteen vector registers.
    static constexpr std::size_t kTogether = 4;

    FrameRuns(std::size_t channels, std::size_t run, const FrameColumns& columns)
        : m_channels(channels),
          m_run(run),
          m_unreadable(channels < Lanes::kCount ? (Lanes::kCount - 1) / channels : 0),
          m_columns(columns.columns),
          m_extremes(m_columns.size()),
          m_rows(columns.out),
          m_unordered(ResultRows::kRuns * m_columns.size() + 1),
          m_stretch(channels) {}
    /// Samples per frame; a constant where that is known.
    [[nodiscard]] std::size_t Width() const { return Channels == 0 ? m_channels : Channels; }
    /// Whole runs from the start of a piece, as many as fit the rows of results. Gives their number.
    std::size_t FeedWholeRuns(const std::int16_t* frames, std::size_t frameCount);
    /// Adds frames to the run under way, at most those that it lacks.
    void AddSingly(const std::int16_t* frames, std::size_t count);
    template <std::size_t Count>
    void AddToColumns(std::size_t first, const std::int16_t* frames, std::size_t count);
    void RunDone() {
        ExtremePair* pairs = m_rows.Next(0);
        for (const StoredExtremes<Lanes>& extremes : m_extremes) {
            extremes.Load().StorePairs(pairs);
            pairs += Lanes::kCount;
        }
        m_rows.Added(1);
        m_filled = 0;
    }

    std::size_t m_channels;
    std::size_t m_run;
    std::size_t m_filled = 0;  ///< frames of the run under way
    std::size_t m_unreadable;  ///< frames at the end of a piece whose vectors would reach past it
    std::vector<FrameColumn> m_columns;
    std::vector<StoredExtremes<Lanes>> m_extremes;  ///< of the run under way, by column
    ResultRows m_rows;                              ///< a slot for each lane of each column
    std::vector<typename Stretch::Unordered> m_unordered;
    Stretch m_stretch;
};

template <typename Lanes, std::size_t Channels>
void FrameRuns<Lanes, Channels>::Feed(const std::int16_t* frames, std::size_t frameCount) {
    while (frameCount > 0) {
        if (const std::size_t runs = FeedWholeRuns(frames, frameCount); runs > 0) {
            frames += runs * m_run * Width();
            frameCount -= runs * m_run;
            continue;
        }
        const std::size_t part = std::min({frameCount, m_run - m_filled, m_stretch.MostFrames()});
        // Frames of the part whose vectors reach past the piece.
        const std::size_t last = std::min(part, m_unreadable - std::min(m_unreadable, frameCount - part));
        if (part - last >= Stretch::kLeastFrames) {
            m_stretch.Add(frames, part - last, m_columns, m_filled > 0, m_extremes.data());
            m_filled += part - last;
        } else {
            AddSingly(frames, part - last);
        }
        if (last > 0) {
            std::array<std::int16_t, 3 * Lanes::kCount> end{};
            std::copy_n(frames + (part - last) * Width(), last * Width(), end.begin());
            AddSingly(end.data(), last);
        }
        if (m_filled == m_run) RunDone();
        frames += part * Width();
        frameCount -= part;
    }
    m_rows.Write();
}

template <typename Lanes, std::size_t Channels>
std::size_t FrameRuns<Lanes, Channels>::FeedWholeRuns(const std::int16_t* frames, std::size_t frameCount) {
    if (m_filled > 0 || m_run < Stretch::kLeastFrames || m_run > m_stretch.MostFrames()) return 0;
    const std::size_t runs = std::min((frameCount - std::min(frameCount, m_unreadable)) / m_run, m_rows.Room());
    typename Stretch::Unordered* end = m_unordered.data();
    for (std::size_t run = 0; run < runs; ++run)
        m_stretch.AddRun(frames + run * m_run * Width(), m_run, m_columns, m_rows.Next(run), end);
    for (const auto* left = m_unordered.data(); left != end; ++left) m_stretch.Order(*left, m_run);
    m_rows.Added(runs);
    return runs;
}

template <typename Lanes, std::size_t Channels>
template <std::size_t Count>
void FrameRuns<Lanes, Channels>::AddToColumns(std::size_t first, const std::int16_t* frames, std::size_t count) {
    LaneExtremes<Lanes> state[Count];
    std::size_t places[Count];
    for (std::size_t i = 0; i < Count; ++i) {
        places[i] = m_columns[first + i].channel;
        state[i] =
            m_filled > 0 ? m_extremes[first + i].Load() : LaneExtremes<Lanes>::Of(Lanes::Load(frames + places[i]));
    }
    for (; count > 0; --count, frames += Width()) {
        PrefetchAhead(frames, Width());
        for (std::size_t i = 0; i < Count; ++i) state[i].Add(Lanes::Load(frames + places[i]));
    }
    for (std::size_t i = 0; i < Count; ++i) m_extremes[first + i].Store(state[i]);
}

template <typename Lanes, std::size_t Channels>
void FrameRuns<Lanes, Channels>::AddSingly(const std::int16_t* frames, std::size_t count) {
    if (count == 0) return;
    for (std::size_t first = 0; first < m_columns.size(); first += kTogether) {
        switch (m_columns.size() - first) {
            case 1: AddToColumns<1>(first, frames, count); break;
            case 2: AddToColumns<2>(first, frames, count); break;
            case 3: AddToColumns<3>(first, frames, count); break;
            default: AddToColumns<kTogether>(first, frames, count); break;
        }
    }
    m_filled += count;
}

}  // namespace quillon::nsp
