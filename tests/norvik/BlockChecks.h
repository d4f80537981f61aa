#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "base/Text.h"
#include "norvik/FileBlock.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"

namespace quillon::testing {

using Codes = std::vector<std::int16_t>;

inline std::shared_ptr<ByteSource> SourceOf(const FileBytes& file) {
    return std::make_shared<MemorySource>(std::vector<std::uint8_t>(file.Get().begin(), file.Get().end()));
}

/// All codes of a channel (from 1) in one call.
inline Codes AllCodes(RecordingBlock& block, std::int16_t channel) {
    Codes codes(static_cast<std::size_t>(block.SampleCount()));
    block.ReadCodes(channel, 0, block.SampleCount(), codes.data());
    return codes;
}

/// "position text" of every mark.
inline std::vector<std::string> Marks(RecordingBlock& block) {
    std::vector<std::string> marks;
    for (std::int32_t mark = 1; mark <= block.MarkCount(); ++mark)
        marks.push_back(std::to_string(block.MarkPosition(mark)) + " " + Utf8(block.MarkText(mark)));
    return marks;
}

inline RunExtremes PlainExtremes(const std::int16_t* from, const std::int16_t* to) {
    const auto* maximum = std::max_element(from, to);
    const auto* minimum = std::min_element(from, to);
    return minimum < maximum ? RunExtremes{*minimum, *maximum} : RunExtremes{*maximum, *minimum};
}

/// Every way of reading samples first .. first+count-1 gives what `codes`, one array per channel, holds.
inline void ExpectRangeReads(RecordingBlock& block, const std::vector<Codes>& codes, std::int32_t first,
                             std::int32_t count, std::int32_t run) {
    const std::size_t channels = codes.size();
    const auto size = static_cast<std::size_t>(count);
    Codes frames(size * channels);
    block.ReadFrames(first, count, frames.data());
    Codes rows(frames.size());
    block.ReadRows(first, count, rows.data());
    const std::size_t runs = (size + static_cast<std::size_t>(run) - 1) / static_cast<std::size_t>(run);
    Codes numbers;
    std::vector<std::vector<RunExtremes>> extremes(channels, std::vector<RunExtremes>(runs));
    std::vector<RunExtremes*> out;
    for (std::size_t channel = channels; channel-- > 0;) {
        numbers.push_back(static_cast<std::int16_t>(channel + 1));
        out.push_back(extremes[channel].data());
    }
    const bool reduced = block.ColumnExtremes(numbers, first, count, run, out);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const auto number = static_cast<std::int16_t>(channel + 1);
        const Codes expected(codes[channel].begin() + first, codes[channel].begin() + first + count);
        Codes read(size);
        block.ReadCodes(number, first, count, read.data());
        ASSERT_EQ(read, expected) << "channel " << number << " from " << first;
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), rows.data() + channel * size));
        std::vector<float> values(size);
        block.ReadValues(number, first, count, values.data());
        const float scale = block.ChannelScale(number);
        const float offset = block.ChannelOffset(number);
        for (std::size_t at = 0; at < size; ++at) {
            ASSERT_EQ(frames[at * channels + channel], expected[at]) << "frame " << at << " from " << first;
            ASSERT_EQ(values[at], static_cast<float>(expected[at]) * scale + offset);
        }
        // One channel of many is read in a way of its own.
        std::vector<RunExtremes> alone(runs);
        RunExtremes* const only = alone.data();
        ASSERT_EQ(block.ColumnExtremes({&number, 1}, first, count, run, {&only, 1}), reduced);
        ASSERT_EQ(alone, extremes[channel]);
        for (std::size_t at = 0; reduced && at < runs; ++at) {
            const std::int16_t* const from = expected.data() + static_cast<std::ptrdiff_t>(at) * run;
            const std::int16_t* const end = expected.data() + size;
            ASSERT_EQ(alone[at], PlainExtremes(from, end - from > run ? from + run : end)) << "run " << at;
        }
    }
}

/// The same over random ranges and over the whole block.
inline void ExpectReads(RecordingBlock& block, const std::vector<Codes>& codes) {
    const std::int32_t samples = block.SampleCount();
    ASSERT_EQ(static_cast<std::size_t>(block.ChannelCount()), codes.size());
    for (const auto& channel : codes) ASSERT_EQ(std::ssize(channel), samples);
    std::mt19937 random(20240607);
    const auto below = [&](std::int32_t bound) { return static_cast<std::int32_t>(random() >> 1) % bound; };
    for (int round = 0; round < 12; ++round) {
        const std::int32_t first = below(samples + 1);
        const std::int32_t count = below(std::min(round % 2 == 0 ? samples : 700, samples - first) + 1);
        ExpectRangeReads(block, codes, first, count, 1 + below(round % 3 == 0 ? samples + 1 : 97));
    }
    ExpectRangeReads(block, codes, 0, samples, 1000);
}

/// Why the file is refused, in English; there is a Russian text too, and no place is left open in either.
inline std::string Refusal(std::shared_ptr<ByteSource> source, std::u16string_view fileName) {
    try {
        static_cast<void>(ReadRecording(std::move(source), fileName));
        return "read";
    } catch (const FormatError& error) {
        const Bilingual& reason = error.Reason();
        EXPECT_FALSE(reason.russian.empty());
        EXPECT_NE(reason.english, reason.russian);
        EXPECT_EQ((reason.english + reason.russian).find(u'%'), std::u16string::npos) << Utf8(reason.english);
        return Utf8(reason.english);
    }
}

inline void ExpectRefusal(std::shared_ptr<ByteSource> source, std::u16string_view fileName, const std::string& part) {
    EXPECT_THAT(Refusal(std::move(source), fileName), ::testing::HasSubstr(part));
}

}  // namespace quillon::testing
