#include "norvik/private/FlacReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "norvik/BlockChecks.h"
#include "norvik/FlacBuilder.h"
#include "norvik/private/FlacFrames.h"
#include "norvik/private/FrameBlock.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using namespace ::quillon::testing;

std::shared_ptr<ByteSource> Source(const std::string& bytes) {
    return std::make_shared<MemorySource>(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

/// Every sample of a file as it is stored; nothing for those that cannot be read.
using DecodedSamples = std::vector<std::vector<std::optional<std::int64_t>>>;
DecodedSamples AllSamples(const std::string& file, unsigned channels) {
    const std::shared_ptr<ByteSource> source = Source(file);
    FlacFrames frames(source, ReadFlacMetadata(*source));
    DecodedSamples read(channels);
    for (std::uint64_t at = 0; at < frames.Samples();) {
        const FlacFrames::Stretch stretch = frames.Find(at);
        EXPECT_EQ(stretch.first, at);
        for (; at < stretch.end; ++at) {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                read[channel].emplace_back();
                if (stretch.samples != nullptr)
                    read[channel].back() = stretch.samples->Channel(channel)[at - stretch.first];
            }
        }
    }
    return read;
}

/// A block of the same samples, stored as they are with 32 bits.
std::shared_ptr<FileBlock> StoredPlainly(const FlacBuilder& flac) {
    FileBytes bytes;
    FrameRecording recording;
    recording.layout = {SampleKind::Int32, 0, 4 * flac.channels, 0};
    recording.frameCount = flac.samples[0].size();
    recording.sampleRate = 44100;
    recording.channels.resize(flac.channels);
    for (std::size_t at = 0; at < flac.samples[0].size(); ++at) {
        for (const auto& channel : flac.samples) bytes.U32(static_cast<std::uint32_t>(channel[at]));
    }
    return MakeFrameBlocks(SourceOf(bytes), recording).at(0);
}

TEST(FlacReader, EveryCodingIsReadExactlyAndAlikeByEveryCall) {
    for (const unsigned depth : {4U, 8U, 12U, 16U, 17U, 20U, 24U, 31U, 32U}) {
        for (const unsigned channels : {1U, 2U, 3U, 8U}) {
            SCOPED_TRACE(::testing::Message() << depth << " bits, channels: " << channels);
            FlacBuilder flac{.channels = channels, .depth = depth};
            flac.random.seed(depth * 10 + channels);
            flac.variable = (depth + channels) % 2 == 0;
            flac.block = std::array{192U, 1024U, 33U}[channels % 3];
            flac.Record(channels == 2 ? 20000 : 3000);
            flac.Encode();
            const DecodedSamples read = AllSamples(flac.File(), channels);
            for (std::size_t channel = 0; channel < channels; ++channel)
                ASSERT_TRUE(std::ranges::equal(read[channel], flac.samples[channel])) << channel;
            const RecordingContent content = ReadFlac(Source(flac.File()));
            FileBlock& block = *content.blocks.at(0);
            const auto plain = StoredPlainly(flac);
            std::vector<Codes> codes;
            for (std::int16_t channel = 1; channel <= block.ChannelCount(); ++channel) {
                const auto at = static_cast<std::size_t>(channel - 1);
                const auto& samples = flac.samples[at];
                const Codes exact(samples.begin(), samples.end());
                codes.push_back(depth <= 16 ? exact : AllCodes(*plain, channel));
                EXPECT_EQ(AllCodes(block, channel), codes.back());
                const double unit = std::ldexp(1.0, 1 - static_cast<int>(depth));
                const float expected =
                    static_cast<float>(unit * (depth <= 16 ? 1.0 : static_cast<double>(plain->ChannelScale(channel))));
                EXPECT_EQ(block.ChannelScale(channel), expected);
                EXPECT_EQ(block.ChannelUnit(channel), u"FS");
            }
            ExpectReads(block, codes);
        }
    }
}

/// Bytes in memory; counts those that are read.
class ReadRanges final : public ByteSource {
  public:
    explicit ReadRanges(const std::string& bytes) : m_bytes(bytes) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_bytes.size(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        const std::size_t copied = m_bytes.copy(static_cast<char*>(buffer), count, static_cast<std::size_t>(offset));
        read += copied;
        return copied;
    }
    std::uint64_t read = 0;

  private:
    const std::string& m_bytes;
};

TEST(FlacReader, AnyPlaceIsFoundWithFewReadsWhateverTheSeekTableSays) {
    FlacBuilder flac{.channels = 2, .depth = 16, .block = 4096, .variable = true};
    flac.Record(1200000);
    // Hardly any bytes for a third of the samples.
    for (auto& channel : flac.samples) std::fill(channel.begin() + 100000, channel.begin() + 500000, 7);
    flac.Encode();
    BitWriter right;
    BitWriter wrong;
    std::uint64_t offset = 0;
    for (std::size_t at = 0; at < flac.frames.size(); offset += flac.frames[at++].size()) {
        if (at % 9 != 0) continue;
        right.Put(flac.firsts[at], 64).Put(offset, 64).Put(0, 16);
        wrong.Put(flac.firsts[at] / 2, 64).Put(offset, 64).Put(0, 16);
    }
    wrong.Put(~std::uint64_t{0}, 64).Put(0, 64).Put(0, 16).Put(99, 64).Put(~std::uint64_t{0}, 64);
    const std::string start = "fLaC" + FlacBuilder::Metadata(0, flac.StreamInformation(1200000));
    for (const std::string& table : {std::string(), right.bytes, wrong.bytes}) {
        const std::string file = start + FlacBuilder::Metadata(3, table, true) + flac.Body();
        ASSERT_GT(file.size(), 2000000U);
        const auto source = std::make_shared<ReadRanges>(file);
        const RecordingContent content = ReadFlac(source);
        EXPECT_LT(source->read, 200000U) << "opening";
        RecordingBlock& block = *content.blocks.at(0);
        block.Prepare();
        std::uint64_t all = 0;
        for (int round = 0; round < 40; ++round) {
            const auto first = static_cast<std::int32_t>(flac.random() % 1199000);
            std::vector<std::int16_t> codes(1000);
            source->read = 0;
            block.ReadCodes(2, first, 1000, codes.data());
            EXPECT_LT(source->read, table == right.bytes ? 300000U : 800000U);
            all += source->read;
            ASSERT_TRUE(std::equal(codes.begin(), codes.end(), flac.samples[1].begin() + first)) << first;
        }
        EXPECT_LT(all, 5000000U) << "all together";
    }
}

/// Forty frames of 100 samples, and one of 17.
struct Damage {
    Damage() {
        flac.Record(4017);
        flac.Encode();
    }
    /// `missing`: samples from the first one to before the second one cannot be read, nor is there any from `end` on.
    void Expect(const std::string& file, std::pair<std::size_t, std::size_t> missing, std::size_t end,
                const std::string& remark = {}) const {
        const RecordingContent content = ReadFlac(Source(file));
        RecordingBlock& block = *content.blocks.at(0);
        ASSERT_EQ(static_cast<std::size_t>(block.SampleCount()), end);
        const std::string info = "FLAC, 16 bit, 1 channel at 44100 Hz, " + std::to_string(end) + " samples";
        EXPECT_EQ(Utf8(content.info.english),
                  info + (remark.empty() ? "" : "; " + remark) + "; start taken from the file's time");
        block.Prepare();
        std::vector<std::size_t> order(end);
        for (std::size_t at = 0; at < end; ++at) order[at] = at;
        std::shuffle(order.begin(), order.end(), std::mt19937(1));
        for (const std::size_t at : order) {
            std::int16_t code = 0;
            try {
                block.ReadCodes(1, static_cast<std::int32_t>(at), 1, &code);
                ASSERT_TRUE(at < missing.first || at >= missing.second) << at;
                ASSERT_EQ(code, flac.samples[0][at]) << at;
            } catch (const ReadError& error) {
                ASSERT_TRUE(at >= missing.first && at < missing.second) << at;
                EXPECT_THAT(error.what(), HasSubstr("samples " + std::to_string(missing.first + 1) + " to " +
                                                    std::to_string(missing.second) + " are damaged (from byte "));
            }
        }
        EXPECT_EQ(AllSamples(file, 1)[0].size(), end);
    }
    /// The file without or with other frames from `first` on.
    [[nodiscard]] std::string With(std::size_t first, std::size_t count, const std::string& instead) const {
        std::string file = flac.Header();
        for (std::size_t at = 0; at < flac.frames.size(); ++at) {
            if (at == first) file += instead;
            if (at < first || at >= first + count) file += flac.frames[at];
        }
        return file;
    }
    [[nodiscard]] std::string Flipped(std::size_t frame, std::size_t byte) const {
        std::string changed = flac.frames[frame];
        changed.at(byte) = static_cast<char>(changed.at(byte) ^ 0x10);
        return With(frame, 1, changed);
    }
    FlacBuilder flac;
};

TEST(FlacReader, DamageCostsOnlyTheFramesItHits) {
    const Damage test;
    const std::vector<std::string>& frames = test.flac.frames;
    const std::pair<std::size_t, std::size_t> nothing{0, 0};
    test.Expect(test.flac.File(), nothing, 4017);
    for (const std::size_t frame : {1U, 20U, 39U}) {
        SCOPED_TRACE(frame);
        const std::pair lost{frame * 100, frame * 100 + 100};
        for (std::size_t byte = 0; byte < frames[frame].size(); byte += 7)
            test.Expect(test.Flipped(frame, byte), lost, 4017);
        test.Expect(test.With(frame, 1, ""), lost, 4017);
        test.Expect(test.With(frame, 1, frames[frame].substr(0, frames[frame].size() / 2)), lost, 4017);
        test.Expect(test.With(frame, 1, frames[frame] + frames[frame]), nothing, 4017);
        test.Expect(test.With(frame, 0, std::string(70000, '\xFF') + frames[0]), nothing, 4017);
    }
    // In the wrong order: the last one comes first and shuts the others out.
    test.Expect(test.With(10, 3, frames[12] + frames[11] + frames[10]), {1000, 1200}, 4017);
}

TEST(FlacReader, WhatLiesAroundTheFramesIsPassedOver) {
    const Damage test;
    const std::string file = test.flac.File();
    const std::string tag = std::string("ID3\4\0\0\0\0\1\2", 10) + std::string(130, 'x');
    test.Expect(tag + file, {0, 0}, 4017);
    test.Expect(file + "TAG" + std::string(125, ' '), {0, 0}, 4017);
    test.Expect(file + std::string(3000000, '\0'), {0, 0}, 4017);
    const std::string cut = "cut short: 4000 of 4017 samples";
    test.Expect(file.substr(0, file.size() - 1), {0, 0}, 4000, cut);
    test.Expect(test.Flipped(40, 9), {0, 0}, 4000, cut);
    test.Expect(test.Flipped(40, 9) + std::string(3000000, '\0'), {0, 0}, 4000, cut);
    test.Expect(test.Flipped(0, 9), {0, 100}, 4017);
    const auto headed = [&](std::uint64_t total, std::uint32_t least) {
        return "fLaC" + FlacBuilder::Metadata(0, test.flac.StreamInformation(total, least), true) + test.flac.Body();
    };
    test.Expect(headed(0, 0), {0, 0}, 4017, "length taken from the last frame");
    test.Expect(headed(5000, 0), {0, 0}, 4017, "cut short: 4017 of 5000 samples");
    test.Expect(headed(4017, 16), {0, 0}, 4017);
    FlacBuilder part = test.flac;
    part.firstNumber = 1000000;
    part.Encode();
    test.Expect(part.File(), {0, 0}, 4017);
}

TEST(FlacReader, MoreSamplesThanABlockHoldsFormFurtherBlocks) {
    FlacBuilder start{.block = 64, .variable = true};
    start.Record(200);
    start.Encode();
    FlacBuilder end = start;
    end.firstNumber = 3000000000;
    end.Encode();
    const std::string header = "fLaC" + FlacBuilder::Metadata(0, start.StreamInformation(0), true);
    const RecordingContent content = ReadFlac(Source(header + start.Body() + end.Body()));
    ASSERT_EQ(content.blocks.size(), 2U);
    EXPECT_EQ(content.blocks[0]->SampleCount(), 2147483647);
    RecordingBlock& block = *content.blocks[1];
    const std::int32_t first = 3000000000 - 2147483647;
    ASSERT_EQ(block.SampleCount(), first + 200);
    EXPECT_EQ(block.Title(), u"2/2");
    block.Prepare();
    Codes codes(200);
    block.ReadCodes(1, first, 200, codes.data());
    EXPECT_TRUE(std::ranges::equal(codes, end.samples[0]));
    EXPECT_THROW(block.ReadCodes(1, 0, 1, codes.data()), ReadError);
}

TEST(FlacReader, DamagedSamplesDoNotCountInTheScalesOfWideOnes) {
    FlacBuilder flac{.depth = 24};
    flac.samples = {FlacBuilder::Samples(1000, 5)};
    flac.samples[0][999] = 40000;
    flac.samples[0][450] = 4000000;
    flac.Encode();
    flac.frames[4].back() = static_cast<char>(flac.frames[4].back() ^ 1);
    const RecordingContent content = ReadFlac(Source(flac.File()));
    RecordingBlock& block = *content.blocks.at(0);
    block.Prepare();
    EXPECT_EQ(block.ChannelScale(1), std::ldexp(1.0F, -23)) << "kept exactly";
    EXPECT_EQ(block.ReadCodes(1, 0, 400, Codes(400).data()), 0);
    EXPECT_THROW(block.ReadCodes(1, 399, 2, Codes(2).data()), ReadError);
    EXPECT_EQ(block.ReadCodes(1, 500, 500, Codes(500).data()), 0);
}

TEST(FlacReader, CommentsAndCueSheetsBecomeTitleAndMarks) {
    FlacBuilder flac;
    flac.Record(500);
    flac.Encode();
    FileBytes comments = FileBytes().U32(3).Text("own").U32(3);
    for (const std::string_view text : {"ARTIST=A", "Title=\xD0\x9F\n1", "TITLE=late"})
        comments.U32(static_cast<std::uint32_t>(text.size())).Text(text);
    BitWriter cues;
    for (int at = 0; at < 49; ++at) cues.Put(0, 64);
    cues.Put(0, 24).Put(4, 8);
    const auto track = [&](std::uint64_t position, unsigned number, unsigned indexes, std::uint64_t index) {
        cues.Put(position, 64).Put(number, 8).Put(0, 64).Put(0, 64).Put(0, 64).Put(0, 16).Put(indexes, 8);
        for (unsigned at = 0; at < indexes; ++at) cues.Put(index + at, 64).Put(at, 8).Put(0, 24);
    };
    track(200, 2, 1, 10);
    track(0, 1, 2, 0);
    track(900, 3, 1, 0);
    track(500, 170, 0, 0);
    const std::string information = FlacBuilder::Metadata(0, flac.StreamInformation(500));
    const std::string file = "fLaC" + information + FlacBuilder::Metadata(4, comments.Get()) +
                             FlacBuilder::Metadata(6, std::string(999, '\xFF')) +
                             FlacBuilder::Metadata(5, cues.bytes, true) + flac.Body();
    const RecordingContent content = ReadFlac(Source(file));
    EXPECT_THAT(Utf8(content.info.english),
                ::testing::EndsWith("500 samples; start taken from the file's time; title: \u041F 1"));
    EXPECT_THAT(Marks(*content.blocks.at(0)), ElementsAre("0 1", "210 2"));
    const std::string empty = "fLaC" + FlacBuilder::Metadata(0, flac.StreamInformation(0), true);
    EXPECT_EQ(ReadFlac(Source(empty)).blocks.at(0)->SampleCount(), 0);
}

TEST(FlacReader, RefusalsNameWhatAndWhere) {
    FlacBuilder flac{.channels = 2};
    flac.Record(300);
    flac.Encode();
    const std::string good = flac.File();
    const auto patched = [&](std::size_t at, char byte) {
        std::string file = good;
        file.at(at) = byte;
        return file;
    };
    // A frame of few bytes that claims 131070 samples, with a wrong check sum.
    BitWriter vain;
    vain.Put(0xFFF8, 16).Put(7, 4).Put(0, 4).Put(1, 4).Put(0, 4).Put(0, 8).Put(65534, 16).Crc(7, 8).Put(0, 64);
    std::string many;
    for (int at = 0; at < 40; ++at) many += vain.bytes;
    const std::pair<std::string, std::string> files[] = {
        {flac.Header() + many + flac.Body(), "no whole frame from byte 42 on"},
        {"fLaX", "no \"fLaC\" at byte 0"},
        {std::string("ID3\4\0\0\0\0\0\1.fLa", 14), "no \"fLaC\" at byte 11"},
        {patched(4, 1), "the first metadata block at byte 4 is of type 1, not the stream information"},
        {good.substr(0, 7), "the metadata block at byte 4 reaches beyond the end of the file"},
        {good.substr(0, 41), "the metadata block at byte 4 reaches beyond"},
        {patched(7, 33), "stream information shorter than 34 bytes: 33 at byte 8"},
        {patched(20, 0x54), "channels, the stream information"},
        {flac.Header() + good.substr(60, 50), "no whole frame from byte 42 on"},
        {flac.Header() + std::string(5000, '\xFF'), "no whole frame from byte 42 on"}};
    for (const auto& [file, part] : files) ExpectRefusal(Source(file), u"a.FLAC", part);
    EXPECT_EQ(Refusal(Source(flac.Header() + many.substr(0, many.size() / 2) + flac.Body()), u"a"), "read");
    std::string silent = patched(18, 0);
    silent[19] = 0;
    silent[20] = static_cast<char>(silent[20] & 0x0F);
    ExpectRefusal(Source(silent), u"a.flac", "sample rate 0 at byte 18");
}

}  // namespace
}  // namespace quillon
