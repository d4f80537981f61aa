#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "BenchData.h"
#include "view/GraphPicture.h"

namespace quillon::bench {

inline constexpr std::int32_t kWidth = 1500;
inline constexpr std::int32_t kHeight = 800;

/// A graph with a lane for every channel of a block.
struct LaneGraph {
    explicit LaneGraph(const std::shared_ptr<RecordingBlock>& source) : pixels(std::size_t{kWidth} * kHeight) {
        block.block = source;
        block.sampleCount = source->SampleCount();
        block.sampleRate = source->SampleRate();
        block.channelCount = source->ChannelCount();
        const std::int32_t rows = kHeight / block.channelCount;
        for (std::int16_t channel = 1; channel <= block.channelCount; ++channel) {
            block.channelNumbers.push_back(source->ChannelNumber(channel));
            block.invScale.push_back(1.0F / source->ChannelScale(channel));
            block.offsets.push_back(source->ChannelOffset(channel));
            Lane lane{.top = (channel - 1) * rows, .height = rows, .single = true, .channels = {channel}};
            lane.zeroRow = lane.top + rows / 2;
            const double span = 65536.0 * static_cast<double>(source->ChannelScale(channel));
            lane.unitsPerDivision = span * AmplitudeScale::kDivision / rows;
            lanes.push_back(lane);
        }
        picture.SetPixels(pixels.data(), kWidth, kHeight);
    }
    void Use(bool free) {
        axis = {};
        axis.SetWidth(kWidth);
        axis.SetBlock(block.sampleCount, block.sampleRate, free);
    }
    double Draw() {
        return Seconds([&] { picture.Draw({block, axis, lanes, extremes}); }) * 1e3;
    }
    ViewBlock block;
    TimeAxis axis;
    Lanes lanes;
    ExtremesCache extremes;
    std::vector<std::uint32_t> pixels;
    GraphPicture picture;
};

}  // namespace quillon::bench
