#include "norvik/BinReader.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "base/DateTime.h"
#include "norvik/BlockChecks.h"
#include "norvik/FileBytes.h"
#include "norvik/Refusal.h"

namespace quillon {
namespace {

using testing::ExpectReads;
using testing::ExpectRefusal;
using testing::FileBytes;

struct BinFile {
    std::vector<std::uint32_t> inputs{0};
    std::size_t frames = 4;
    float rate = 250.0F;
    float scale = 0.5F;
    std::vector<std::vector<std::int16_t>> codes{};  ///< one array per channel, filled by Build

    FileBytes Build() {
        const std::size_t channels = inputs.size();
        FileBytes file;
        file.Text("ABIN").U16(3).U16(3);
        for (const int field : {2011, 4, 1, 4, 12, 57, 2, 500}) file.U16(static_cast<std::uint16_t>(field));
        file.F32(rate).U32(0).U16(static_cast<std::uint16_t>(channels)).Zeros(30).Text("Board 7", 16).Zeros(48);
        for (const std::uint32_t input : inputs) {
            file.Text("ADCh").U32(input).Text(" Fp1 ", 32).Text("\xB5V", 24).F32(scale).F32(-1.0F).Zeros(8);
        }
        file.Text("data").U32(static_cast<std::uint32_t>(channels * frames * 2));
        std::mt19937 random(1);
        codes.assign(channels, {});
        for (std::size_t frame = 0; frame < frames; ++frame) {
            for (auto& channel : codes) {
                channel.push_back(static_cast<std::int16_t>(random() & 0xFFFF));
                file.U16(static_cast<std::uint16_t>(channel.back()));
            }
        }
        return file;
    }
    [[nodiscard]] std::size_t DataSizeOffset() const { return 128 + 80 * inputs.size() + 4; }
};

TEST(BinReader, DescribesWhatTheHeaderSays) {
    BinFile bin{.inputs = {4, 2, 31}};
    const RecordingContent content = ReadBin(bin.Build().Source());
    ASSERT_EQ(content.blocks.size(), 1U);
    RecordingBlock& block = *content.blocks[0];
    EXPECT_EQ(block.Title(), u"");
    EXPECT_EQ(block.DeviceName(), u"Board 7");
    EXPECT_EQ(Iso8601(block.StartTime()), "2011-04-04T12:57:02.500");
    EXPECT_EQ(block.SampleRate(), 250.0);
    EXPECT_EQ(block.ChannelTitle(1), u"Fp1");
    EXPECT_EQ(block.ChannelUnit(1), u"\u00B5V");
    EXPECT_EQ(block.ChannelNumber(1), 4);
    EXPECT_EQ(block.InputNumber(1), 5);
    EXPECT_EQ(block.ChannelNumber(3), 31);
    EXPECT_EQ(block.ChannelScale(2), 0.5F);
    EXPECT_EQ(block.ChannelOffset(2), -1.0F);
    EXPECT_EQ(content.info.english, u"BIN, 3 channels at 250 Hz, 4 samples");
    ExpectReads(block, bin.codes);
}

TEST(BinReader, InputNumbersThatAreNoAcquisitionNumbersGiveWayToThePosition) {
    const std::vector<std::uint32_t> repeated{5, 5}, beyond{0, 32}, senseless{0xFFFFFFFF, 32};
    for (const auto& inputs : {repeated, beyond, senseless}) {
        const auto block = ReadBin(BinFile{.inputs = inputs}.Build().Source()).blocks.at(0);
        EXPECT_EQ(block->ChannelNumber(1), 0);
        EXPECT_EQ(block->ChannelNumber(2), 1);
        EXPECT_EQ(block->InputNumber(1), inputs[0] == 5 ? 6 : 1);
        EXPECT_EQ(block->InputNumber(2), inputs[1] == 5 ? 6 : 33);
    }
}

TEST(BinReader, FurtherChannelsFormFurtherBlocks) {
    BinFile bin{.inputs = std::vector<std::uint32_t>(70), .frames = 9000};
    for (std::size_t at = 0; at < bin.inputs.size(); ++at) bin.inputs[at] = static_cast<std::uint32_t>(at);
    const RecordingContent content = ReadBin(bin.Build().Source());
    ASSERT_EQ(content.blocks.size(), 3U);
    const std::vector<std::u16string> titles{u"1-32", u"33-64", u"65-70"};
    for (std::size_t at = 0; at < 3; ++at) {
        RecordingBlock& block = *content.blocks[at];
        EXPECT_EQ(block.Title(), titles[at]);
        EXPECT_EQ(block.ChannelNumber(6), 5);
        EXPECT_EQ(block.InputNumber(6), static_cast<int>(32 * at + 6));
        const auto first = bin.codes.begin() + static_cast<std::ptrdiff_t>(32 * at);
        ExpectReads(block, {first, first + block.ChannelCount()});
    }
}

TEST(BinReader, TheDataSizeIsBelievedAsFarAsTheDataReach) {
    BinFile bin{.inputs = {0, 1}, .frames = 100};
    const FileBytes whole = bin.Build();
    const std::string told = "BIN, 2 channels at 250 Hz, ";
    const std::tuple<std::uint32_t, std::size_t, std::string> cases[] = {
        {400, 0, "100 samples"}, {399, 0, "99 samples"},  {40, 0, "10 samples"},
        {0, 0, "100 samples"},   {400, 400, "0 samples"}, {400, 201, "49 samples; cut short: 49 of 100 samples"},
        {~0U, 1, "99 samples"}};
    for (const auto& [declared, cut, samples] : cases) {
        FileBytes file = whole;
        file.Patch(bin.DataSizeOffset(), declared, 4).CutTo(whole.Size() - cut);
        const RecordingContent content = ReadBin(file.Source());
        EXPECT_THAT(Utf8(content.info.english), ::testing::StartsWith(told + samples));
        EXPECT_EQ(content.blocks.at(0)->SampleCount(), std::stoi(samples));
    }
}

TEST(BinReader, UnusableScalesAndDatesAreReplacedAndTold) {
    for (const float scale : {0.0F, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        BinFile bin{.scale = scale};
        const RecordingContent content = ReadBin(bin.Build().Patch(10, 13, 2).Source());
        EXPECT_EQ(content.blocks[0]->ChannelScale(1), 1.0F);
        EXPECT_EQ(content.blocks[0]->StartTime(), 0.0);
        EXPECT_THAT(Utf8(content.info.english), ::testing::HasSubstr("unusable scales"));
        EXPECT_THAT(Utf8(content.info.english), ::testing::HasSubstr("file's time"));
    }
}

TEST(BinReader, RefusalsNameThePlace) {
    BinFile bin{.inputs = {0, 1}};
    const FileBytes good = bin.Build();
    const std::pair<FileBytes, std::string> cases[] = {
        {FileBytes(good).Patch(0, 'x', 1), "no \"ABIN\" at byte 0"},
        {FileBytes(good).Patch(32, 0, 2), "channel count 0 at byte 32"},
        {FileBytes(good).Patch(24, 0, 4), "sample rate 0 at byte 24"},
        {FileBytes(good).Patch(24, 0xBF800000, 4), "sample rate -1 at byte 24"},
        {FileBytes(good).Patch(24, 0x7F800000, 4), "sample rate inf at byte 24"},
        {FileBytes(good).Patch(208, 0, 1), "no \"ADCh\" at byte 208"},
        {FileBytes(good).Patch(288, 0, 1), "no \"data\" at byte 288"},
        {FileBytes(good).Patch(32, 0xFFFF, 2), "the header ends at byte 312 of 5242936"},
        {FileBytes(good).CutTo(5), "the header ends at byte 5 of"},
        {FileBytes(good).CutTo(127), "the header ends at byte 127 of"},
        {FileBytes(good).CutTo(295), "the header ends at byte 295 of"}};
    for (const auto& [file, part] : cases) ExpectRefusal(file.Source(), u"a.bin", part);
}

}  // namespace
}  // namespace quillon
