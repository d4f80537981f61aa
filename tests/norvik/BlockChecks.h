#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "base/Text.h"
#include "fuzz/Checks.h"
#include "norvik/TemporaryFolder.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/ReadRecording.h"

namespace quillon::testing {

using Codes = std::vector<std::int16_t>;

inline std::shared_ptr<ByteSource> SourceOf(const FileBytes& file) {
    return std::make_shared<MemorySource>(std::vector<std::uint8_t>(file.Get().begin(), file.Get().end()));
}

/// All codes of a channel (from 1) in one call; prepares the block.
inline Codes AllCodes(RecordingBlock& block, std::int16_t channel) {
    block.Prepare();
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

/// Every way of reading random ranges and the whole block gives what `codes`, one array per channel, holds.
inline void ExpectReads(RecordingBlock& block, const std::vector<Codes>& codes) {
    const std::int32_t samples = block.SampleCount();
    ASSERT_EQ(static_cast<std::size_t>(block.ChannelCount()), codes.size());
    for (std::size_t channel = 0; channel < codes.size(); ++channel)
        ASSERT_EQ(AllCodes(block, static_cast<std::int16_t>(channel + 1)), codes[channel])
            << "channel from 0 " << channel;
    std::mt19937 random(20240607);
    const auto below = [&](std::int32_t bound) { return static_cast<std::int32_t>(random() >> 1) % bound; };
    for (int round = 0; round < 12; ++round) {
        const std::int32_t first = below(samples + 1);
        const std::int32_t count = below(std::min(round % 2 == 0 ? samples : 700, samples - first) + 1);
        ASSERT_NO_THROW(fuzz::CheckRange(block, first, count, 1 + below(round % 3 == 0 ? samples + 1 : 97)));
        Codes read(static_cast<std::size_t>(count));
        block.ReadCodes(1, first, count, read.data());
        ASSERT_TRUE(std::equal(read.begin(), read.end(), codes[0].begin() + first)) << first;
    }
    ASSERT_NO_THROW(fuzz::CheckRange(block, 0, samples, 1000));
}

/// Why the file is refused, in English; there is a Russian text too, and no place is left open in either.
inline std::string Refusal(std::shared_ptr<ByteSource> source, std::u16string_view fileName) {
    try {
        static_cast<void>(ReadRecording({std::move(source), std::u16string(fileName)}));
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
