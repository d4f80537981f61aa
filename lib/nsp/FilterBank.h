#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "nsp/FilterDesign.h"
#include "nsp/RunReducer.h"

namespace quillon::nsp {

/// Samples of several channels: sample i of channel c is start[c][(at + i) * step]. A step of 1 is a row of each
/// channel, that of a frame's length is frames, and a negative one goes backward.
template <typename Sample>
struct ChannelSamples {
    std::span<Sample* const> start;
    std::ptrdiff_t step = 1;
    std::ptrdiff_t at = 0;
    [[nodiscard]] ChannelSamples From(std::ptrdiff_t later) const { return {start, step, at + later}; }
    [[nodiscard]] Sample* First(std::size_t channel) const { return start[channel] + at * step; }
};

using CodeSamples = ChannelSamples<const std::int16_t>;
using FloatSamples = ChannelSamples<const float>;
using FilteredSamples = ChannelSamples<float>;

/// Runs samples of several channels through the sections of a filter, in double precision and with the channels side
/// by side in vectors. A result depends on the samples of its channel since Start alone: not on how they are cut into
/// pieces, on the channels beside it or on `lanes`.
class FilterBank {
  public:
    /// `lanes` are of 16 bits: Eight are two doubles, Sixteen four.
    FilterBank(std::vector<FilterSection> sections, std::size_t channels, LaneCount lanes = MostLanes());

    /// As if each channel's first sample had lasted for ever before it.
    void Start(const CodeSamples& samples);
    void Start(const FloatSamples& samples);

    /// Filters the next `count` samples. `out` without channels drops the results; it may be where `samples` are.
    void Feed(const CodeSamples& samples, std::size_t count, const FilteredSamples& out);
    void Feed(const FloatSamples& samples, std::size_t count, const FilteredSamples& out);

  private:
    /// Channels that are run together. The states of a section are two rows of `width` numbers.
    struct Group {
        std::size_t firstChannel;
        std::size_t channels;
        std::size_t width;
        std::vector<double> states;
    };
    template <typename Sample>
    void StartFrom(const ChannelSamples<Sample>& samples);
    template <typename Sample>
    void Run(const ChannelSamples<Sample>& samples, std::size_t count, const FilteredSamples& out);
    void RunGroup(Group& group, double* work, std::size_t count) const;

    std::vector<FilterSection> m_sections;
    LaneCount m_lanes;
    std::vector<Group> m_groups;
};

}  // namespace quillon::nsp
