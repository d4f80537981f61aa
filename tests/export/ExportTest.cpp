#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <sstream>

#include "RecordingWriters.h"
#include "base/DateTime.h"
#include "base/Text.h"
#include "cli/Cli.h"
#include "export/EdfText.h"
#include "export/KVExport.h"
#include "export/QL_Export.h"
#include "norvik/BlockChecks.h"
#include "norvik/OutputFile.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"
#include "support/FakeRecording.h"
#include "support/MemoryFile.h"

namespace quillon {
namespace {

using quillon::testing::Codes;
using quillon::testing::MemoryFile;
using samples::Bytes;

/// A block in memory, one array of codes per channel.
class MemoryBlock final : public FileBlock {
  public:
    MemoryBlock(BlockDescription description, std::vector<Codes> codes)
        : FileBlock(std::move(description)), m_codes(std::move(codes)) {}
    [[nodiscard]] bool FramesAreCheap() const override { return false; }
    std::int32_t failsAt = -1;

  private:
    void FetchCodes(std::size_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) override {
        std::copy_n(m_codes[channel].begin() + first, count, buffer);
    }
    void FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) override {
        if (failsAt >= first && failsAt < first + count) throw std::runtime_error("pulled out");
        for (std::int32_t at = first; at < first + count; ++at)
            for (const Codes& channel : m_codes) *buffer++ = channel[static_cast<std::size_t>(at)];
    }
    void FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) override {
        for (const Codes& channel : m_codes) buffer = std::copy_n(channel.begin() + first, count, buffer);
    }
    bool FetchExtremes(std::span<const std::size_t>, std::int32_t, std::int32_t, std::int32_t,
                       std::span<RunExtremes* const>) override {
        return false;
    }
    std::vector<Codes> m_codes;
};

/// Two channels of random codes; the start is Monday, 4 April 2011 12:57:02.
std::shared_ptr<MemoryBlock> MakeBlock(std::int32_t count, double rate) {
    BlockDescription block{u"", u"Device 1", u"Сон", DateFromCivil({2011, 4, 4, 12, 57, 2, 0}), rate, count, {}, {}};
    block.channels = {{4, 5, u"ЭЭГ Fp1", u"µV", 0.25F, 1.0F}, {1, 2, u"ECG", u"", 0.0001234567F, 0.0F}};
    std::mt19937 random(7);
    std::vector<Codes> codes(2, Codes(static_cast<std::size_t>(count)));
    for (Codes& channel : codes)
        for (std::int16_t& code : channel) code = static_cast<std::int16_t>(random());
    return std::make_shared<MemoryBlock>(block, std::move(codes));
}

class ExportTest : public ::testing::Test {
  protected:
    bool Export(RecordingBlock* block, std::int32_t first, std::int32_t count, const std::u16string& name,
                std::int32_t type = 0) {
        return exporter.Export(block, name, first, count, type);
    }
    std::string bytes;
    std::size_t room = 100000000;
    std::vector<std::int32_t> progress;
    quillon::testing::FakeServices services;
    KVExport exporter{services,
                      {[this] { return std::make_unique<MemoryFile>(bytes, room); }, Utf8Within, 0,
                       [this](std::int32_t done, std::int32_t) { progress.push_back(done); }}};
};

TEST_F(ExportTest, HeadersAreExactToTheByte) {
    const auto block = MakeBlock(20, 10.0);
    const Codes first = quillon::testing::AllCodes(*block, 1);
    const Codes second = quillon::testing::AllCodes(*block, 2);
    Bytes tail;  // frames 16 to 20
    for (std::size_t at = 15; at < 20; ++at) tail.Codes({first[at], second[at]});

    ASSERT_TRUE(Export(block.get(), 16, 5, u"a.bin"));
    Bytes bin;
    bin.Text("ABIN").U16(3).U16(3);
    // Monday is day 2 where weeks begin on Sunday; 1.5 s later than the block, of which the milliseconds are not kept.
    for (const std::uint32_t part : {2011U, 4U, 2U, 4U, 12U, 57U, 3U, 0U}) bin.U16(part);
    bin.U32(0x41200000).U32(0).U16(2).Text("", 30, '\0').Text("Device 1", 16, '\0').Text("", 48, '\0');
    bin.Text("ADCh").U32(4).Text("ЭЭГ Fp1", 32, '\0').Text("µV", 24, '\0').Float(0.25F).Float(1.0F).U32(0).U32(0);
    bin.Text("ADCh").U32(1).Text("ECG", 32, '\0').Text("", 24, '\0').Float(0.0001234567F).Float(0.0F).U32(0).U32(0);
    bin.Text("data").U32(20).Text(tail.Get());
    EXPECT_EQ(bytes, bin.Get());

    ASSERT_TRUE(Export(block.get(), 16, 5, u"a.wav"));
    Bytes wav;
    wav.Text("RIFF").U32(56).Text("WAVEfmt ").U32(16).U16(1).U16(2).U32(10).U32(40).U16(4).U16(16);
    wav.Text("data").U32(20).Text(tail.Get());
    EXPECT_EQ(bytes, wav.Get());

    ASSERT_TRUE(Export(block.get(), 11, 0, u"a.edf"));
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
    using Case = std::tuple<double, std::int32_t, std::string>;  // rate, samples, "records seconds samples-per-record"
    for (const auto& [rate, count, told] :
         {Case{5, 1000, "2 100 500"}, {1000, 2500, "2 1 1000"}, {1000, 300, "1 0.3 300"}, {3, 1, "1 0.333333 1"}}) {
        ASSERT_TRUE(Export(MakeBlock(count, rate).get(), 1, 0, u"a.edf"));
        std::istringstream fields(bytes.substr(236, 8) + ' ' + bytes.substr(244, 8) + ' ' +
                                  bytes.substr(256 + 2 * 216, 8));
        std::string records, seconds, samples;
        fields >> records >> seconds >> samples;
        EXPECT_EQ(records + ' ' + seconds + ' ' + samples, told);
        EXPECT_EQ(bytes.size(), 768 + 4 * std::stoul(records) * std::stoul(samples)) << rate;
    }
    EXPECT_FALSE(Export(MakeBlock(0, 1000.0).get(), 0, 0, u"a.edf")) << "a record of nothing";
    BlockDescription fine;
    fine.sampleRate = fine.sampleCount = 10;
    fine.channels = {{0, 1, u"A", u"V", 1e-4F, 101325.0F}, {1, 2, u"B", u"V", 1e-9F, 101325.0F}};
    bytes = "kept";
    MemoryBlock pressure(fine, {Codes(10), Codes(10)});
    EXPECT_FALSE(Export(&pressure, 1, 0, u"a.edf")) << "no reader could tell its codes apart";
    EXPECT_EQ(exporter.LastError(), u"The channel's scale is too fine for EDF: B");
    EXPECT_EQ(bytes, "kept");
    BlockDescription wide;
    wide.sampleRate = wide.sampleCount = 10;
    for (const std::size_t channels : {126U, 127U}) {
        wide.channels.assign(channels, {});
        MemoryBlock block(wide, std::vector<Codes>(channels, Codes(10)));
        EXPECT_EQ(Export(&block, 1, 0, u"a.edf"), channels == 126) << "the header's size is a signed 16-bit number";
    }
}

TEST(EdfTextTest, NumbersAreNeverCutAndTextsArePrintable) {
    using Case = std::pair<double, const char*>;
    for (const auto& [number, text] : {Case{-0.9765625, "-0.97656"},
                                       {-0.0, "0"},
                                       {1e-7, "1E-7"},
                                       {-1.23456e-12, "-1.2E-12"},
                                       {123456789012.0, "1.235E11"},
                                       {99999999.6, "1E8"},
                                       {0.0012345678, "0.001235"},
                                       {-1234567.8, "-1234568"}}) {
        EXPECT_EQ(EdfNumber(number, 8), text);
    }
    EXPECT_EQ(EdfNumber(0.1F, 8), "0.1");
    EXPECT_THROW(static_cast<void>(EdfNumber(std::nan(""), 8)), std::length_error);
    EXPECT_THROW(static_cast<void>(EdfCount(123456789, 8)), std::length_error);
    EXPECT_EQ(EdfText(u"a\tж~\u007F", 7), "a??~?  ");
    EXPECT_EQ(EdfText(u"longer", 3), "longer");
}

TEST_F(ExportTest, RangesAreNormalisedAndFailuresAreTold) {
    const auto block = MakeBlock(2500, 100.0);
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    using Case = std::array<std::int32_t, 3>;  // first, count, frames written
    for (const auto& [first, count, frames] :
         {Case{1, 0, 2500}, {-5, 10, 10}, {2500, 1, 1}, {2000, 502, 501}, {2000, -1, 501}, {2, most, 2499}}) {
        ASSERT_TRUE(Export(block.get(), first, count, u"a.wav"));
        EXPECT_EQ(bytes.size(), 44U + 4U * static_cast<std::size_t>(frames)) << first << ' ' << count;
    }
    progress.clear();
    ASSERT_TRUE(Export(block.get(), 1, 0, u"A.EDF", 1)) << "the type goes before the extension";
    EXPECT_EQ(bytes.substr(0, 4), "ABIN");
    EXPECT_EQ(progress, (std::vector<std::int32_t>{1024, 2048, 2500}));
    EXPECT_TRUE(services.messages.empty());

    EXPECT_FALSE(Export(nullptr, 1, 0, u"a.bin"));
    EXPECT_FALSE(Export(block.get(), 1, 0, u"A.EDF"));
    EXPECT_FALSE(Export(block.get(), 2501, 0, u"a.edf"));
    EXPECT_FALSE(Export(block.get(), 1, 0, u"no.bin"));
    block->failsAt = 1500;
    EXPECT_FALSE(Export(block.get(), 1, 0, u"a.bin"));
    EXPECT_EQ(services.messages,
              (std::vector<std::u16string>{u"Block is nothing!", u"File type is unknown!", u"Data start is out!",
                                           u"write-protected", u"Error of file export! pulled out"}));
    struct LongBlock : quillon::testing::FakeBlock {
        std::int32_t SampleCount() const override { return most; }
        std::int32_t ReadFrames(std::int32_t, std::int32_t, std::int16_t*) override { throw std::runtime_error(""); }
    } gigabytes;
    gigabytes.samples.resize(1);
    EXPECT_FALSE(Export(&gigabytes, 1, 0, u"a.bin"));
    EXPECT_EQ(exporter.LastError(), u"Error of file export!") << "nothing to say";
    gigabytes.samples.resize(2);
    EXPECT_FALSE(Export(&gigabytes, 1, 0, u"a.bin"));
    EXPECT_EQ(exporter.LastError(), u"Error of file export! the data are too large for the format");
    room = 296 + 4096;  // the header and the first chunk
    EXPECT_TRUE(Export(block.get(), 1, 1400, u"a.bin"));
    EXPECT_EQ(exporter.FailedWrites(), 1U);
    EXPECT_EQ(exporter.LastError(), u"");
}

TEST_F(ExportTest, OurReadersReadBackWhatIsWritten) {
    const quillon::testing::TemporaryFolder folder;
    const auto block = MakeBlock(70000, 250.0);  // more than the output file gathers
    KVExport toDisk(services, {MakeOutputFile});
    for (const std::u16string name : {u"запись.bin", u"a.wav", u"a.edf"}) {
        const std::u16string path = folder.File(name).u16string();
        std::ofstream(folder.File(name)) << std::string(1000000, 'x');  // replaced, also where it is longer
        ASSERT_TRUE(toDisk.Export(block.get(), path, 251, 0, 0));
        EXPECT_EQ(toDisk.FailedWrites(), 0U);
        const auto library = MakeRecordingLibrary(Language::English);
        std::shared_ptr<Recording> recording;
        ASSERT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
        const auto read = recording->GetBlock(1);
        EXPECT_EQ(read->SampleRate(), 250.0);
        ASSERT_EQ(read->SampleCount(), 69750);
        for (std::int16_t channel = 1; channel <= 2; ++channel) {
            const Codes all = quillon::testing::AllCodes(*block, channel);
            EXPECT_EQ(quillon::testing::AllCodes(*read, channel), Codes(all.begin() + 250, all.end()));
            if (name == u"a.wav") continue;
            const float scale = block->ChannelScale(channel);
            EXPECT_NEAR(read->ChannelScale(channel), scale, scale * 1e-5F);
            EXPECT_NEAR(read->ChannelOffset(channel), block->ChannelOffset(channel), scale);
        }
        if (name == u"a.wav") continue;
        EXPECT_EQ(read->ChannelUnit(1), name == u"a.edf" ? u"?V" : u"µV");
        EXPECT_EQ(read->DeviceName(), u"Device 1");
        EXPECT_EQ(Iso8601(read->StartTime()), name == u"a.edf" ? "2011-04-04T12:57:02.000" : "2011-04-04T12:57:03.000");
    }
    EXPECT_FALSE(toDisk.Export(block.get(), folder.File(u"none").u16string() + u"/a.bin", 1, 0, 0));
    EXPECT_FALSE(services.messages.back().empty());
}

TEST(ExportCommandTest, WritesAStretchAndNeverTheSource) {
    const quillon::testing::TemporaryFolder folder;
    const std::filesystem::path source = folder.File(u"a.bin");
    const std::filesystem::path out = folder.File(u"b.wav");
    const auto header = samples::BinHeader(100.0F, "", {{"A", "V", 1.0F, 0.0F}}, 4);
    const std::string original = header + Bytes().Codes({1, 2, 3, 4}).Get();
    std::ofstream(source, std::ios::binary) << original;
    const auto run = [&](const std::filesystem::path& to, std::vector<std::u16string> options) {
        options.insert(options.begin(), {u"export", source.u16string(), to.u16string()});
        std::ostringstream streams[2];
        cli::CliIo io{streams[0], streams[1]};
        return cli::RunCli(options, io);
    };
    for (const char16_t* wrong : {u"--first=0", u"--first=5", u"--count=5", u"--block=2"})
        EXPECT_EQ(run(out, {wrong}), cli::kRefused) << Utf8(wrong);
    EXPECT_EQ(run(out, {u"--type=mp3"}), cli::kUsage);
    EXPECT_EQ(run(source, {u"--force"}), cli::kRefused);
    EXPECT_EQ(file_size(source), original.size());
    EXPECT_FALSE(exists(out)) << "nothing is left behind";
    EXPECT_EQ(run(out, {u"--first=2", u"--count=2"}), cli::kDone);
    EXPECT_EQ(file_size(out), 48U);
    EXPECT_EQ(run(out, {u"--type=bin"}), cli::kRefused) << "it exists and --force is not given";
}

}  // namespace
}  // namespace quillon
