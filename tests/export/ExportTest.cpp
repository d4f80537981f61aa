#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <sstream>

#include "RecordingWriters.h"
#include "base/Bilingual.h"
#include "base/DateTime.h"
#include "base/Text.h"
#include "export/EdfLimits.h"
#include "export/KVExport.h"
#include "norvik/BlockChecks.h"
#include "norvik/OutputFile.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"
#include "support/FakeRecording.h"
#include "support/MemoryFile.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;
using samples::Bytes;

/// Two channels of random codes; the start is Monday, 4 April 2011 12:57:02.
struct TestBlock : FakeBlock {
    TestBlock(std::size_t count, double samplesPerSecond) {
        start = DateFromCivil({2011, 4, 4, 12, 57, 2, 0});
        rate = samplesPerSecond;
        titles = {u"ЭЭГ Fp1", u"ECG"};
        scales = {0.25F, 0.0001234567F};
        samples.assign(2, Codes(count));
        std::mt19937 random(7);
        for (Codes& channel : samples)
            for (std::int16_t& code : channel) code = static_cast<std::int16_t>(random());
    }
    std::u16string DeviceName() const override { return u"Device 1"; }
    std::u16string BlockName() const override { return u"Сон"; }
    std::int16_t InputNumber(std::int16_t channel) const override { return channel == 1 ? 5 : 2; }
    std::u16string ChannelUnit(std::int16_t channel) const override { return channel == 1 ? u"µV" : u""; }
    float ChannelOffset(std::int16_t channel) const override { return channel == 1 ? offset : 0.0F; }
    float offset = 1.0F;
};

class ExportTest : public ::testing::Test {
  protected:
    bool Export(RecordingBlock* block, std::int32_t first, std::int32_t count, const std::u16string& name,
                std::int32_t type = 0) {
        return exporter.Export(block, name, first, count, type);
    }
    std::string bytes;
    std::vector<std::int32_t> progress;
    FakeServices services;
    KVExport exporter{services,
                      {[this] { return std::make_unique<MemoryFile>(bytes, 100000000); }, Utf8Within, 0,
                       [this](std::int32_t done, std::int32_t) { return progress.push_back(done), true; }}};
};

TEST_F(ExportTest, HeadersAreExactToTheByte) {
    TestBlock block(20, 10.0);
    const Codes& first = block.samples[0];
    const Codes& second = block.samples[1];
    Bytes tail;  // frames 16 to 20
    for (std::size_t at = 15; at < 20; ++at) tail.Codes({first[at], second[at]});

    ASSERT_TRUE(Export(&block, 16, 5, u"a.bin"));
    Bytes bin;
    bin.Text("ABIN").U16(3).U16(3);
    // Monday is day 2 where weeks begin on Sunday; 1.5 s later than the block, of which the milliseconds are not kept.
    for (const std::uint32_t part : {2011U, 4U, 2U, 4U, 12U, 57U, 3U, 0U}) bin.U16(part);
    bin.U32(0x41200000).U32(0).U16(2).Text("", 30, '\0').Text("Device 1", 16, '\0').Text("", 48, '\0');
    bin.Text("ADCh").U32(4).Text("ЭЭГ Fp1", 32, '\0').Text("µV", 24, '\0').Float(0.25F).Float(1.0F).U32(0).U32(0);
    bin.Text("ADCh").U32(1).Text("ECG", 32, '\0').Text("", 24, '\0').Float(0.0001234567F).Float(0.0F).U32(0).U32(0);
    bin.Text("data").U32(20).Text(tail.Get());
    EXPECT_EQ(bytes, bin.Get());

    ASSERT_TRUE(Export(&block, 16, 5, u"a.wav"));
    Bytes wav;
    wav.Text("RIFF").U32(56).Text("WAVEfmt ").U32(16).U16(1).U16(2).U32(10).U32(40).U16(4).U16(16);
    wav.Text("data").U32(20).Text(tail.Get());
    EXPECT_EQ(bytes, wav.Get());

    ASSERT_TRUE(Export(&block, 11, 0, u"a.edf"));
    Bytes edf;
    edf.Text("0", 8, ' ').Text("Kelvara Block: ???", 80, ' ').Text("ADC: Device 1", 80, ' ').Text("04.04.1112.57.02");
    edf.Text("768", 8, ' ').Text("", 44, ' ').Text("1", 8, ' ').Text("1", 8, ' ').Text("2", 4, ' ');
    edf.Text("??? Fp1", 16, ' ').Text("ECG", 16, ' ').Text("", 160, ' ').Text("?V", 8, ' ').Text("V", 8, ' ');
    edf.Text("-7999   -3.95061").Text("8001    3.950614").Text("-32000  -32000  32000   32000   ");
    edf.Text("", 160, ' ').Text("10      10      ").Text("", 64, ' ');
    edf.Codes({first.begin() + 10, first.end()}).Codes({second.begin() + 10, second.end()});
    EXPECT_EQ(bytes, edf.Get());
}

TEST_F(ExportTest, EdfRecordsSuitTheRate) {
    using Case = std::tuple<double, std::size_t, std::string>;  // rate, samples, records, seconds, samples per record
    for (const auto& [rate, count, expected] : {Case{5, 1000, "2 100 500"},
                                                {1000, 2500, "2 1 1000"},
                                                {1000, 300, "1 0.3 300"},
                                                {3, 1, "1 0.333333 1"},
                                                {44100, 4, "1 90703E-9 4"}}) {
        TestBlock block(count, rate);
        ASSERT_TRUE(Export(&block, 1, 0, u"a.edf"));
        std::istringstream fields(bytes.substr(236, 8) + ' ' + bytes.substr(244, 8) + ' ' + bytes.substr(688, 8));
        std::string records, seconds, samples;
        fields >> records >> seconds >> samples;
        EXPECT_EQ(records + ' ' + seconds + ' ' + samples, expected);
        EXPECT_EQ(bytes.size(), 768 + 4 * std::stoul(records) * std::stoul(samples)) << rate;
    }
    TestBlock block(0, 1000.0);
    EXPECT_FALSE(Export(&block, 0, 0, u"a.edf")) << "a record of nothing";
    block = TestBlock(10, 1000.0);
    block.scales[1] = 3e38F;
    EXPECT_FALSE(Export(&block, 1, 0, u"a.edf"));
    EXPECT_EQ(exporter.LastError(), u"The channel's scale is too large for EDF: ECG");
    FakeBlock wide;
    for (const std::size_t channels : {126U, 127U}) {
        wide.samples.resize(channels, Codes(10));
        EXPECT_EQ(Export(&wide, 1, 0, u"a.edf"), channels == 126) << "the header's size is a signed 16-bit number";
    }
}

TEST_F(ExportTest, RangesAreNormalisedAndFailuresReported) {
    TestBlock block(2500, 100.0);
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    using Case = std::array<std::int32_t, 3>;  // first, count, frames written
    for (const auto& [first, count, frames] :
         {Case{1, 0, 2500}, {-5, 10, 10}, {2500, 1, 1}, {2000, 502, 501}, {2000, -1, 501}, {2, most, 2499}}) {
        ASSERT_TRUE(Export(&block, first, count, u"a.wav"));
        EXPECT_EQ(bytes.size(), 44U + 4U * static_cast<std::size_t>(frames)) << first << ' ' << count;
    }
    progress.clear();
    ASSERT_TRUE(Export(&block, 1, 0, u"A.EDF", 1)) << "the type goes before the extension";
    EXPECT_EQ(bytes.substr(0, 4), "ABIN");
    EXPECT_EQ(progress, (std::vector<std::int32_t>{1024, 2048, 2500}));
    EXPECT_FALSE(Export(nullptr, 1, 0, u"a.bin"));
    EXPECT_FALSE(Export(&block, 1, 0, u"A.EDF"));
    bytes.clear();
    for (const char16_t* name : {u"a.edf", u"a.bin", u"a.wav"}) EXPECT_FALSE(Export(&block, 2501, 0, name));
    EXPECT_EQ(bytes, "");
    struct LongBlock : FakeBlock {
        std::int32_t SampleCount() const override { return most; }
        std::int32_t ReadFrames(std::int32_t, std::int32_t, std::int16_t*) override { throw std::runtime_error(""); }
    } gigabytes;
    for (const std::size_t channels : {1U, 2U}) {
        gigabytes.samples.resize(channels);
        EXPECT_FALSE(Export(&gigabytes, 1, 0, u"a.bin"));
    }
    EXPECT_EQ(services.messages,
              (std::vector<std::u16string>{u"Block is nothing!", u"File type is unknown!", u"Data start is out!",
                                           u"Data start is out!", u"Data start is out!",
                                           u"Error of file export!",  // without a reason
                                           u"Error of file export!\n\nthe data are too large for the format"}));
    EXPECT_EQ(exporter.LastError(), u"Error of file export!");
}

/// How far values that a reader computes from the header of an EDF file are from code x scale + offset, in codes, at
/// the most: what is linear in the code is most at the ends. Our own reader must have the same line, in single
/// precision.
double EdfMiss(const std::string& file, RecordingBlock& read, std::int16_t channel, float scale, float offset) {
    const auto channels = static_cast<std::size_t>(read.ChannelCount());
    const auto number = [&](std::size_t before) {
        return std::stod(file.substr(256 + before * channels + 8 * (static_cast<std::size_t>(channel) - 1), 8));
    };
    const double low = number(104), high = number(112), first = number(120), last = number(128);
    read.Prepare();
    EXPECT_TRUE(first >= -32768 && first < last && last <= 32767) << first << ' ' << last;
    const double k = (high - low) / (last - first);
    const double b = low - k * first;
    EXPECT_EQ(read.ChannelScale(channel), static_cast<float>(k));
    EXPECT_EQ(read.ChannelOffset(channel), static_cast<float>(b));
    const auto miss = [&](double code) {
        const double value = code * static_cast<double>(scale) + static_cast<double>(offset);
        return std::abs((k * code + b - value) / static_cast<double>(scale));
    };
    return std::max(miss(-32768), miss(32767));
}

/// Exports blocks and reads them back.
struct ReadBackTest : ::testing::Test {
    TemporaryFolder folder;
    FakeServices services;
    KVExport exporter{services, {MakeOutputFile}};
    std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
};

TEST_F(ReadBackTest, EveryFormatHoldsTheBlockFromAnySampleOn) {
    TestBlock block(70000, 250.0);  // more than the output file gathers
    constexpr std::int32_t first = 252;
    for (const std::u16string name : {u"запись.bin", u"a.wav", u"a.edf"}) {
        const std::u16string path = folder.File(name).u16string();
        ASSERT_TRUE(exporter.Export(&block, path, first, 0, 0)) << Utf8(exporter.LastError());
        std::shared_ptr<Recording> recording;
        ASSERT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
        const auto read = recording->GetBlock(1);
        // EDF keeps no samples beyond the last whole record.
        const bool edf = name == u"a.edf";
        ASSERT_EQ(read->SampleCount(), edf ? 69500 : 69749);
        ASSERT_EQ(read->ChannelCount(), 2);
        for (std::int16_t channel = 1; channel <= 2; ++channel) {
            const Codes all = AllCodes(block, channel);
            const auto from = all.begin() + first - 1;
            ASSERT_EQ(AllCodes(*read, channel), Codes(from, from + read->SampleCount())) << "channel " << channel;
            const float scale = block.ChannelScale(channel);
            const float offset = block.ChannelOffset(channel);
            EXPECT_LE(edf ? EdfMiss(Contents(path), *read, channel, scale, offset) : 0.0, 0.5) << "channel " << channel;
            if (!name.ends_with(u".bin")) continue;
            EXPECT_EQ(std::pair(read->ChannelScale(channel), read->ChannelOffset(channel)), std::pair(scale, offset));
            EXPECT_EQ(read->ChannelUnit(channel), block.ChannelUnit(channel));
            EXPECT_EQ(read->SampleRate(), 250.0);
        }
        if (name == u"a.wav") continue;
        const double skipped = edf ? 0.0 : (first - 1) / block.SampleRate();
        EXPECT_NEAR(read->StartTime(), block.StartTime() + skipped / 86400.0, 1.0 / 86400.0);
    }
}

TEST_F(ReadBackTest, EdfHoldsTheValuesOfAnyScaleOrRefusesTheChannel) {
    struct ScaledBlock : TestBlock {
        ScaledBlock() : TestBlock(300, 100.0) {}
        float ChannelOffset(std::int16_t) const override { return offset; }
    } block;
    std::mt19937 random(3);
    std::uniform_real_distribution<float> mantissa(1.0F, 10.0F), exponent(-6.0F, 6.0F), spread(-1.0F, 7.0F);
    int refused = 0;
    for (int run = 0; run < 80; ++run) {
        const float scale = mantissa(random) * std::pow(10.0F, std::floor(exponent(random)));
        const float ratio = std::pow(10.0F, spread(random));
        block.scales.assign(2, run % 2 == 0 ? scale : -scale);
        block.offset = run % 3 == 0 ? -scale * ratio : scale * ratio;
        SCOPED_TRACE(std::to_string(scale) + ' ' + std::to_string(block.offset));
        const std::u16string path = folder.File(u"a.edf").u16string();
        if (!exporter.Export(&block, path, 1, 0, 0)) {
            ++refused;
            EXPECT_EQ(exporter.LastError(), u"The channel's scale is too fine for EDF: ЭЭГ Fp1");
            EXPECT_GT(ratio, 1e5F) << "room for the digits";
            continue;
        }
        std::shared_ptr<Recording> recording;
        ASSERT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
        EXPECT_LE(EdfMiss(Contents(path), *recording->GetBlock(1), 1, block.scales[0], block.offset), 0.5);
    }
    EXPECT_LT(refused, 20);
    // An offset that leaves one digit to the scale; codes beyond the usual limits; what no limits hold.
    for (const auto& [scale, offset] : {std::pair{1e-5F, 1e6F}, {3e-4F, 99999.0F}, {0.25F, 4e6F}})
        EXPECT_TRUE(FindEdfLimits(scale, offset)) << scale << ' ' << offset;
    for (const auto& [scale, offset] :
         {std::pair{1e-9F, 101325.0F}, {1e-5F, -1e6F}, {0.0F, 1.0F}, {HUGE_VALF, 0.0F}, {1.0F, NAN}})
        EXPECT_FALSE(FindEdfLimits(scale, offset)) << scale << ' ' << offset;
    EXPECT_EQ(FindEdfLimits(0.1F, 0.0F)->digitalMinimum, -32000) << "the family's limits where they do";
}

TEST_F(ReadBackTest, WhatReadersRefuseIsRefusedAndAnUnknownDateStaysUnknown) {
    TestBlock block(300, 100.0);
    const std::u16string path = folder.File(u"a.edf").u16string();
    for (const auto& [rate, type] : {std::pair{0.5, 2}, {1e-46, 1}, {1e300, 1}, {1e-12, 3}, {1e12, 3}}) {
        block.rate = rate;
        EXPECT_FALSE(exporter.Export(&block, path, 1, 0, type)) << rate;
        EXPECT_NE(exporter.Reason().find(u" Hz"), std::u16string::npos) << Utf8(exporter.Reason());
    }
    block.rate = 100.0;
    for (const auto& [start, read] : {std::pair{0.0, 0.0}, {45000.5, 45000.5}, {25000.0, 0.0}, {25000.5, 31048.5}}) {
        block.start = start;
        ASSERT_TRUE(exporter.Export(&block, path, 1, 0, 0));
        std::shared_ptr<Recording> recording;
        ASSERT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
        EXPECT_EQ(recording->GetBlock(1)->StartTime(), read);
        EXPECT_EQ(DescribeLoss(exporter.Outcome(), Language::English).empty(), start == read) << "reported";
    }
}

}  // namespace
}  // namespace quillon
