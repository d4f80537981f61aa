#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "norvik/FileBlock.h"

namespace quillon::testing {

/// All codes of a channel (from 1) in one call.
inline std::vector<std::int16_t> AllCodes(RecordingBlock& block, std::int16_t channel) {
    std::vector<std::int16_t> codes(static_cast<std::size_t>(block.SampleCount()));
    block.ReadCodes(channel, 0, block.SampleCount(), codes.data());
    return codes;
}

inline RunExtremes PlainExtremes(const std::int16_t* from, const std::int16_t* to) {
    const auto* maximum = std::max_element(from, to);
    const auto* minimum = std::min_element(from, to);
    return minimum < maximum ? RunExtremes{*minimum, *maximum} : RunExtremes{*maximum, *minimum};
}

/// Every way of reading samples first .. first+count-1 gives what `codes`, one array per channel, holds.
inline void ExpectRangeReads(RecordingBlock& block, const std::vector<std::vector<std::int16_t>>& codes,
                             std::int32_t first, std::int32_t count, std::int32_t run) {
    const std::size_t channels = codes.size();
    const auto size = static_cast<std::size_t>(count);
    const auto begin = static_cast<std::size_t>(first);
    std::vector<std::int16_t> frames(size * channels);
    block.ReadFrames(first, count, frames.data());
    const std::size_t runs = (size + static_cast<std::size_t>(run) - 1) / static_cast<std::size_t>(run);
    std::vector<std::int16_t> numbers;
    std::vector<std::vector<RunExtremes>> extremes(channels, std::vector<RunExtremes>(runs));
    std::vector<RunExtremes*> out;
    for (std::size_t channel = channels; channel-- > 0;) {
        numbers.push_back(static_cast<std::int16_t>(channel + 1));
        out.push_back(extremes[channel].data());
    }
    const bool reduced = block.ColumnExtremes(numbers, first, count, run, out);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const auto number = static_cast<std::int16_t>(channel + 1);
        const std::vector<std::int16_t> expected(codes[channel].begin() + first,
                                                 codes[channel].begin() + first + count);
        std::vector<std::int16_t> read(size);
        block.ReadCodes(number, first, count, read.data());
        ASSERT_EQ(read, expected) << "channel " << number << " from " << first;
        std::vector<float> values(size);
        block.ReadValues(number, first, count, values.data());
        const float scale = block.ChannelScale(number);
        const float offset = block.ChannelOffset(number);
        for (std::size_t at = 0; at < size; ++at) {
            ASSERT_EQ(frames[at * channels + channel], expected[at]) << "frame " << begin + at;
            ASSERT_EQ(values[at], static_cast<float>(expected[at]) * scale + offset);
        }
        for (std::size_t at = 0; reduced && at < runs; ++at) {
            const std::size_t from = at * static_cast<std::size_t>(run);
            const std::size_t to = std::min(from + static_cast<std::size_t>(run), size);
            ASSERT_EQ(extremes[channel][at], PlainExtremes(expected.data() + from, expected.data() + to))
                << "run " << at;
        }
    }
}

/// The same over random ranges and over the whole block.
inline void ExpectReads(RecordingBlock& block, const std::vector<std::vector<std::int16_t>>& codes) {
    ASSERT_EQ(static_cast<std::size_t>(block.ChannelCount()), codes.size());
    const std::int32_t samples = block.SampleCount();
    for (const auto& channel : codes) ASSERT_EQ(channel.size(), static_cast<std::size_t>(samples));
    std::mt19937 random(20240607);
    for (int round = 0; round < 8; ++round) {
        const auto first = std::uniform_int_distribution<std::int32_t>(0, samples)(random);
        const auto count = std::min(std::uniform_int_distribution<std::int32_t>(0, 700)(random), samples - first);
        const auto run = std::uniform_int_distribution<std::int32_t>(1, 97)(random);
        ExpectRangeReads(block, codes, first, count, run);
    }
    ExpectRangeReads(block, codes, 0, samples, 1000);
}

}  // namespace quillon::testing
