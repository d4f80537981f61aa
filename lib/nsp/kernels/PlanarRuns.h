#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "nsp/kernels/PackedRuns.h"
#include "nsp/kernels/RunKernels.h"

namespace quillon::nsp {

/// Runs of several channels that each lie together.
template <typename Lanes>
class PlanarRuns final : public PlanarKernel {
  public:
    PlanarRuns(std::size_t run, std::span<ExtremePair* const> out)
        : m_run(run),
          m_out(out.begin(), out.end()),
          m_extremes(out.size()),
          m_lanes((out.size() + Lanes::kCount - 1) / Lanes::kCount) {}
    void Feed(std::span<const std::int16_t* const> samples, std::size_t count) override;
    void Finish() override;

  private:
    using Reduce = SideBySide<Lanes, 1>;
    /// Runs of this length: those of one channel make up whole vectors soon enough, or are long enough.
    [[nodiscard]] bool IsSideBySide() const { return m_run >= 24 && m_run < kLongRunSamples; }
    /// Adds count >= 1 samples from `at` on to the run under way of every channel, at most those that it lacks.
    void AddPart(std::span<const std::int16_t* const> samples, std::size_t at, std::size_t count);
    /// Whole runs of all channels.
    void ReduceRuns(std::span<const std::int16_t* const> samples, std::size_t at, std::size_t runs);
    void WriteRun();

    std::size_t m_run;
    std::vector<ExtremePair*> m_out;
    // Of the run under way, the one or the other.
    std::vector<Extremes> m_extremes;            ///< by channel
    std::vector<StoredExtremes<Lanes>> m_lanes;  ///< a lane for each channel
    std::vector<const std::int16_t*> m_sources;  ///< where runs begin
    std::vector<ExtremePair> m_pairs;            ///< their results
    std::size_t m_filled = 0;                    ///< samples of the run under way, the same for all channels
};

template <typename Lanes>
void PlanarRuns<Lanes>::Feed(std::span<const std::int16_t* const> samples, std::size_t count) {
    if (!IsSideBySide()) {
        for (std::size_t channel = 0; channel < m_out.size(); ++channel) {
            std::size_t own = m_filled;
            PackedRuns<Lanes, 1>::Feed(samples[channel], count, m_run, own, {&m_extremes[channel], 1},
                                       {&m_out[channel], 1});
        }
        m_filled = (m_filled + count) % m_run;
        return;
    }
    std::size_t at = 0;
    if (m_filled > 0 && count > 0) {
        at = std::min(m_run - m_filled, count);
        AddPart(samples, 0, at);
    }
    const std::size_t runs = (count - at) / m_run;
    ReduceRuns(samples, at, runs);
    at += runs * m_run;
    if (at < count) AddPart(samples, at, count - at);
}

template <typename Lanes>
void PlanarRuns<Lanes>::AddPart(std::span<const std::int16_t* const> samples, std::size_t at, std::size_t count) {
    for (std::size_t first = 0; first < m_out.size(); first += Lanes::kCount) {
        const std::int16_t* sources[Lanes::kCount];
        const std::size_t lanes = std::min(Lanes::kCount, samples.size() - first);
        for (std::size_t lane = 0; lane < lanes; ++lane) sources[lane] = samples[first + lane] + at;
        std::fill(sources + lanes, sources + Lanes::kCount, sources[0]);
        StoredExtremes<Lanes>& stored = m_lanes[first / Lanes::kCount];
        LaneExtremes<Lanes> extremes = stored.Load();
        if (count < Reduce::kLeastFrames) {
            for (std::size_t i = 0; i < count; ++i) {
                std::int16_t gathered[Lanes::kCount];
                for (std::size_t lane = 0; lane < Lanes::kCount; ++lane) gathered[lane] = sources[lane][i];
                const auto vector = Lanes::Load(gathered);
                if (m_filled + i == 0) extremes = LaneExtremes<Lanes>::Of(vector);
                extremes.Add(vector);
            }
        } else if (m_filled == 0) {
            extremes = Reduce::Reduce(sources, count);
        } else {
            extremes.Add(Reduce::Reduce(sources, count));
        }
        stored.Store(extremes);
    }
    m_filled += count;
    if (m_filled == m_run) WriteRun();
}

template <typename Lanes>
void PlanarRuns<Lanes>::ReduceRuns(std::span<const std::int16_t* const> samples, std::size_t at, std::size_t runs) {
    if (runs == 0) return;
    // Channel after channel, whole vectors of runs; the last one holds some that are done already.
    const std::size_t all = m_out.size() * runs;
    const std::size_t rounded = std::max(all, Lanes::kCount);
    m_sources.resize(rounded);
    m_pairs.resize(std::max(m_pairs.size(), rounded));
    const std::int16_t** source = m_sources.data();
    for (const std::int16_t* channel : samples) {
        channel += at;
        for (std::size_t run = 0; run < runs; ++run, channel += m_run) *source++ = channel;
    }
    std::fill(source, m_sources.data() + rounded, m_sources[0]);
    for (std::size_t first = 0; first < all; first += Lanes::kCount) {
        const std::size_t from = std::min(first, rounded - Lanes::kCount);
        Reduce::Reduce(&m_sources[from], m_run).StorePairs(&m_pairs[from]);
    }
    const ExtremePair* pairs = m_pairs.data();
    for (ExtremePair*& out : m_out) {
        out = std::copy_n(pairs, runs, out);
        pairs += runs;
    }
}

template <typename Lanes>
void PlanarRuns<Lanes>::WriteRun() {
    m_pairs.resize(std::max(m_pairs.size(), m_lanes.size() * Lanes::kCount));
    ExtremePair* pairs = m_pairs.data();
    for (std::size_t group = 0; group < m_lanes.size(); ++group)
        m_lanes[group].Load().StorePairs(pairs + group * Lanes::kCount);
    for (ExtremePair*& out : m_out) *out++ = *pairs++;
    m_filled = 0;
}

template <typename Lanes>
void PlanarRuns<Lanes>::Finish() {
    if (m_filled == 0) return;
    if (IsSideBySide()) return WriteRun();
    for (std::size_t channel = 0; channel < m_out.size(); ++channel) *m_out[channel]++ = m_extremes[channel].Pair();
    m_filled = 0;
}

}  // namespace quillon::nsp
