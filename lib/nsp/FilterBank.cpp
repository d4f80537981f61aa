#include "nsp/FilterBank.h"

#include <xmmintrin.h>

#include <algorithm>
#include <utility>

#include "nsp/kernels/Lanes16.h"
#include "nsp/kernels/SectionKernel.h"

namespace quillon::nsp {

namespace {

constexpr std::size_t kMostWidth = 4 * kMostVectors;
constexpr std::size_t kTimes = 128;  ///< of a group at a time, within the first-level cache

/// Numbers below the normal ones count as 0: states that die away would otherwise become very slow to compute with.
class TinyAsZero {
  public:
    TinyAsZero() : m_before(_mm_getcsr()) { _mm_setcsr(m_before | kFlushToZero | kDenormalsAreZero); }
    ~TinyAsZero() { _mm_setcsr(m_before); }
    TinyAsZero(const TinyAsZero&) = delete;
    TinyAsZero& operator=(const TinyAsZero&) = delete;

  private:
    static constexpr unsigned kFlushToZero = 0x8000;
    static constexpr unsigned kDenormalsAreZero = 0x0040;
    unsigned m_before;
};

std::size_t DoublesOf([[maybe_unused]] LaneCount lanes) {
#if QUILLON_SIXTEEN_LANES
    if (lanes == LaneCount::Sixteen) return 4;
#endif
    return 2;
}

}  // namespace

FilterBank::FilterBank(std::vector<FilterSection> sections, std::size_t channels, LaneCount lanes)
    : m_sections(std::move(sections)), m_lanes(lanes) {
    const std::size_t doubles = DoublesOf(lanes);
    for (std::size_t first = 0; first < channels;) {
        std::size_t vectors = kMostVectors;
        while (vectors > 1 && first + vectors / 2 * doubles >= channels) vectors /= 2;
        const std::size_t width = vectors * doubles;
        m_groups.push_back({first, std::min(width, channels - first), width, {}});
        m_groups.back().states.resize(2 * m_sections.size() * width);
        first += width;
    }
}

void FilterBank::Start(const CodeSamples& samples) {
    StartFrom(samples);
}

void FilterBank::Start(const FloatSamples& samples) {
    StartFrom(samples);
}

template <typename Sample>
void FilterBank::StartFrom(const ChannelSamples<Sample>& samples) {
    for (Group& group : m_groups) {
        for (std::size_t i = 0; i < group.channels; ++i) {
            auto constant = static_cast<double>(*samples.First(group.firstChannel + i));
            double* state = group.states.data() + i;
            for (const FilterSection& section : m_sections) {
                state[0] = section.firstOrder ? constant : 0.0;
                state[group.width] = section.firstOrder ? 0.0 : constant;
                state += 2 * group.width;
                constant *= section.GainOfConstant();
            }
        }
    }
}

void FilterBank::Feed(const CodeSamples& samples, std::size_t count, const FilteredSamples& out) {
    Run(samples, count, out);
}

void FilterBank::Feed(const FloatSamples& samples, std::size_t count, const FilteredSamples& out) {
    Run(samples, count, out);
}

template <typename Sample>
void FilterBank::Run(const ChannelSamples<Sample>& samples, std::size_t count, const FilteredSamples& out) {
    const TinyAsZero tinyAsZero;
    // Lanes without a channel run on what lies there, zeros or results of other channels.
    alignas(64) double work[kMostWidth * kTimes] = {};
    for (std::size_t done = 0; done < count; done += kTimes) {
        const std::size_t times = std::min(kTimes, count - done);
        const auto later = static_cast<std::ptrdiff_t>(done);
        for (Group& group : m_groups) {
            for (std::size_t i = 0; i < group.channels; ++i) {
                const Sample* from = samples.From(later).First(group.firstChannel + i);
                for (std::size_t t = 0; t < times; ++t)
                    work[t * group.width + i] =
                        static_cast<double>(from[static_cast<std::ptrdiff_t>(t) * samples.step]);
            }
            RunGroup(group, work, times);
            if (out.start.empty()) continue;
            for (std::size_t i = 0; i < group.channels; ++i) {
                float* to = out.From(later).First(group.firstChannel + i);
                for (std::size_t t = 0; t < times; ++t)
                    to[static_cast<std::ptrdiff_t>(t) * out.step] = static_cast<float>(work[t * group.width + i]);
            }
        }
    }
}

void FilterBank::RunGroup(Group& group, double* work, std::size_t count) const {
    const std::size_t vectors = group.width / DoublesOf(m_lanes);
#if QUILLON_SIXTEEN_LANES
    if (m_lanes == LaneCount::Sixteen) {
        RunSections<Doubles4>(m_sections.data(), m_sections.size(), vectors, group.states.data(), work, count);
        return;
    }
#endif
    RunSections<Doubles2>(m_sections.data(), m_sections.size(), vectors, group.states.data(), work, count);
}

}  // namespace quillon::nsp
