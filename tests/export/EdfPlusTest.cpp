#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "base/DateTime.h"
#include "base/Text.h"
#include "data/ShownBlock.h"
#include "export/EdfPlusTexts.h"
#include "export/KVExport.h"
#include "norvik/BlockChecks.h"
#include "norvik/OutputFile.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// A file of EDF+ read by the plain words of the standard, apart from our reader.
struct PlainEdf {
    explicit PlainEdf(std::string file) : bytes(std::move(file)) {
        signals = std::stoul(Field(252, 4));
        records = std::stoul(Field(236, 8));
        seconds = std::stod(Field(244, 8));
        std::size_t words = 0;
        for (std::size_t signal = 0; signal < signals; ++signal) words += Samples(signal);
        recordBytes = 2 * words;
        EXPECT_EQ(Field(0, 8), "0");
        EXPECT_EQ(Field(184, 8), std::to_string(256 * (signals + 1)));
        EXPECT_EQ(Field(192, 44), "EDF+C");
        EXPECT_EQ(Column(signals - 1, 0, 16), "EDF Annotations");
        EXPECT_EQ(bytes.size(), 256 * (signals + 1) + records * recordBytes);
        for (std::size_t at = 0; at < 256 * (signals + 1); ++at) EXPECT_TRUE(bytes[at] >= ' ' && bytes[at] <= '~');
        const std::size_t lists = PlaceOf(0, signals - 1);
        const std::size_t size = 2 * Samples(signals - 1);
        for (std::size_t record = 0; record < records; ++record)
            ReadLists(record, bytes.substr(lists + record * recordBytes, size));
    }
    [[nodiscard]] std::string Field(std::size_t from, std::size_t width) const {
        const std::string field = bytes.substr(from, width);
        return field.substr(0, field.find_last_not_of(' ') + 1);
    }
    [[nodiscard]] std::string Column(std::size_t signal, std::size_t before, std::size_t width) const {
        return Field(256 + before * signals + width * signal, width);
    }
    [[nodiscard]] std::size_t Samples(std::size_t signal) const { return std::stoul(Column(signal, 216, 8)); }
    [[nodiscard]] std::size_t PlaceOf(std::size_t record, std::size_t signal) const {
        std::size_t place = 256 * (signals + 1) + record * recordBytes;
        for (std::size_t other = 0; other < signal; ++other) place += 2 * Samples(other);
        return place;
    }
    [[nodiscard]] Codes AllCodes(std::size_t signal) const {
        Codes codes;
        const std::size_t size = 2 * Samples(signal);
        const std::size_t first = PlaceOf(0, signal);
        for (std::size_t record = 0; record < records; ++record) {
            const std::size_t from = first + record * recordBytes;
            for (std::size_t place = from; place < from + size; place += 2) {
                codes.push_back(static_cast<std::int16_t>(static_cast<std::uint8_t>(bytes[place]) |
                                                          static_cast<std::uint8_t>(bytes[place + 1]) << 8U));
            }
        }
        return codes;
    }
    /// The first list of every record tells its time, the others an annotation each.
    void ReadLists(std::size_t record, std::string rest) {
        for (bool first = true; !rest.empty() && rest[0] != '\0'; first = false) {
            const std::string list = rest.substr(0, rest.find('\0'));
            rest.erase(0, list.size() + 1);
            const std::size_t end = list.find('\x14');
            ASSERT_TRUE(list[0] == '+' && end != std::string::npos && list.back() == '\x14') << list;
            const double onset = std::stod(list.substr(1, end - 1));
            const std::string text = list.substr(end + 1, list.size() - end - 2);
            if (first) {
                EXPECT_EQ(text, "");
                if (record == 0) start = onset;
                ASSERT_NEAR(onset, start + static_cast<double>(record) * seconds, 1e-8) << "record " << record;
            } else {
                marks.emplace_back(onset, text);
            }
        }
        EXPECT_EQ(rest.find_first_not_of('\0'), std::string::npos);
    }

    std::string bytes;
    std::size_t signals = 0, records = 0, recordBytes = 0;
    double seconds = 0.0;
    double start = 0.0;  ///< of the first record, after the header's second
    std::vector<std::pair<double, std::string>> marks;
};

class EdfPlusTest : public ::testing::Test {
  protected:
    /// Random codes and marks in `channels` channels of volts.
    static FakeBlock Block(std::size_t channels, std::size_t samples, double rate) {
        FakeBlock block;
        std::mt19937 random(11);
        block.rate = rate;
        block.start = DateFromCivil({2011, 4, 4, 12, 57, 2, 0});
        block.samples.assign(channels, Codes(samples));
        for (Codes& codes : block.samples)
            for (std::int16_t& code : codes) code = static_cast<std::int16_t>(random());
        for (std::size_t channel = 0; channel < channels; ++channel) {
            block.titles.push_back(u"Ch" + Decimal(static_cast<std::int64_t>(channel + 1)));
            block.scales.push_back(std::ldexp(0.3F, static_cast<int>(channel % 9)));
        }
        std::vector<std::int32_t> positions(20);
        for (std::int32_t& position : positions) position = static_cast<std::int32_t>(random() % samples);
        std::sort(positions.begin(), positions.end());
        for (const std::int32_t position : positions) block.marks.emplace_back(position, u"Метка " + Decimal(position));
        return block;
    }
    PlainEdf Export(RecordingBlock& block, EdfPlusRequest request) {
        if (request.channels.empty()) request.channels = AllChannels(block);
        // Windows replaces no file that is open.
        recording.reset();
        EXPECT_TRUE(exporter.ExportEdfPlus(&block, path, request)) << Utf8(exporter.LastError() + exporter.Reason());
        return PlainEdf(Contents(path));
    }
    std::shared_ptr<RecordingBlock> Read() {
        recording.reset();
        EXPECT_TRUE(library->OpenRecording(path, recording)) << Utf8(library->LastErrorText());
        EXPECT_EQ(recording->FormatName(), u"EDF+C");
        recording->Complete();
        EXPECT_EQ(recording->BlockCount(), 1);
        return recording->GetBlock(1);
    }
    /// Writes it and compares what both readers find with the block.
    PlainEdf ExpectRoundTrip(RecordingBlock& block, const EdfPlusRequest& request) {
        const PlainEdf plain = Export(block, request);
        const std::int32_t first = std::max(request.first, 1) - 1;
        const std::int32_t count = request.count > 0 ? request.count : block.SampleCount() - first;
        const auto read = Read();
        EXPECT_EQ(read->SampleCount(), count);
        EXPECT_EQ(plain.records * plain.Samples(0),
                  static_cast<std::size_t>(count) + static_cast<std::size_t>(exporter.Outcome().filled));
        // Dates are kept to less than a microsecond.
        EXPECT_NEAR((read->StartTime() - block.StartTime()) * 86400.0, first / block.SampleRate(), 2e-6);
        const auto channels = request.channels.empty() ? AllChannels(block) : request.channels;
        EXPECT_EQ(static_cast<std::size_t>(read->ChannelCount()), channels.size());
        for (std::size_t at = 0; at < channels.size(); ++at) {
            Codes codes(static_cast<std::size_t>(count));
            block.ReadCodes(channels[at], first, count, codes.data());
            const auto channel = static_cast<std::int16_t>(at + 1);
            EXPECT_EQ(AllCodes(*read, channel), codes) << "channel " << channel;
            codes.resize(plain.records * plain.Samples(0), codes.back());
            EXPECT_EQ(plain.AllCodes(at), codes) << "signal " << at;
            ExpectValues(block, channels[at], *read, channel);
        }
        ExpectMarks(block, first, *read, plain);
        return plain;
    }
    /// Values are within half a code.
    static void ExpectValues(RecordingBlock& block, std::int16_t channel, RecordingBlock& read, std::int16_t as) {
        for (const float code : {-32768.0F, 0.0F, 32767.0F}) {
            const auto value = [&](RecordingBlock& of, std::int16_t at) {
                return static_cast<double>(code) * static_cast<double>(of.ChannelScale(at)) +
                       static_cast<double>(of.ChannelOffset(at));
            };
            EXPECT_NEAR(value(read, as), value(block, channel),
                        0.501 * std::abs(static_cast<double>(block.ChannelScale(channel))));
        }
    }
    static void ExpectMarks(RecordingBlock& block, std::int32_t first, RecordingBlock& read, const PlainEdf& plain) {
        std::vector<std::string> expected;
        for (std::int32_t mark = 1; mark <= block.MarkCount(); ++mark) {
            const std::int32_t position = block.MarkPosition(mark) - first;
            if (position < 0 || position >= read.SampleCount()) continue;
            expected.push_back(std::to_string(position) + ' ' + Utf8(block.MarkText(mark)));
        }
        EXPECT_EQ(Marks(read), expected);
        const double rate = static_cast<double>(plain.Samples(0)) / plain.seconds;
        std::vector<std::string> found;
        for (const auto& [onset, text] : plain.marks)
            found.push_back(std::to_string(std::lround((onset - plain.start) * rate)) + ' ' + text);
        EXPECT_EQ(found, expected);
    }

    TemporaryFolder folder;
    FakeServices services;
    KVExport exporter{services, {MakeOutputFile}};
    std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
    std::shared_ptr<Recording> recording;
    const std::u16string path = folder.File(u"a.edf").u16string();
};

TEST_F(EdfPlusTest, AwkwardRatesAndRangesComeBackToTheSample) {
    struct Case {
        double rate;
        std::size_t channels;
        std::int32_t first, count;
        std::int32_t filled;
        const char* seconds;  // empty: any
    };
    for (const Case& each :
         {Case{256, 3, 1, 2560, 0, "1"}, Case{256, 19, 38, 2564, 0, ""},
          // No two records hold a prime number of samples, and a single one lasts no 8 digits.
          Case{256, 8, 77, 9973, 3, ""}, Case{1000, 2, 2, 9973, 0, "9.973"}, Case{250, 32, 3, 9973, 0, ""},
          Case{44100, 2, 7, 10007, 136, ""}, Case{44100, 1, 5, 1, 440, "0.01"}, Case{256, 2, 9, 1, 3, "0.015625"},
          Case{0.1, 1, 4, 997, 0, ""}, Case{0.1, 2, 1, 1, 0, "10"}, Case{1.0 / 3.0, 2, 2, 100, 0, ""},
          Case{250000, 32, 12345, 20011, 1, ""}, Case{250000, 1, 1, 9999, 0, ""}, Case{360, 2, 1, 650, 7, ""},
          Case{1000.0 / 3.0, 2, 11, 5000, 0, ""}, Case{2000000, 1, 3, 4001, 1, ""}}) {
        SCOPED_TRACE(std::to_string(each.rate) + " Hz, " + std::to_string(each.count));
        FakeBlock block = Block(each.channels, static_cast<std::size_t>(each.first + each.count + 5), each.rate);
        block.framed = each.channels % 2 == 0;
        const PlainEdf plain = ExpectRoundTrip(block, {.first = each.first, .count = each.count});
        EXPECT_EQ(exporter.Outcome().filled, each.filled);
        EXPECT_EQ(DescribeLoss(exporter.Outcome(), Language::English).empty(), each.filled == 0);
        EXPECT_NEAR(recording->GetBlock(1)->SampleRate(), each.rate, 1e-12 * each.rate);
        EXPECT_LE(plain.recordBytes, 61440U);
        if (*each.seconds != '\0') {
            EXPECT_EQ(plain.Field(244, 8), each.seconds);
        }
    }
    // Rates that no 8 characters tell: as near as they can, of a long recording and of few samples.
    for (const auto& [rate, count, miss] :
         {std::tuple{99.98999786376953, 30011, 1e-8}, {125.1, 7789, 1e-8}, {98765.4321, 4, 1e-5}}) {
        FakeBlock block = Block(1, static_cast<std::size_t>(count), rate);
        ExpectRoundTrip(block, {});
        EXPECT_NEAR(recording->GetBlock(1)->SampleRate() / rate, 1.0, miss) << rate;
        EXPECT_LE(exporter.Outcome().filled, rate / 10.0 + 3.0);
    }
}

TEST_F(EdfPlusTest, RangesChosenAtRandomComeBackToTheSample) {
    std::mt19937 random(5);
    for (int run = 0; run < 60; ++run) {
        constexpr std::array rates{0.5, 10.0, 100.0, 128.0, 200.0, 250.0, 256.0, 300.0, 500.0, 512.0, 8000.0, 48000.0};
        const std::size_t channels = 1 + random() % 6;
        FakeBlock block = Block(channels, 1 + random() % 20000, rates[random() % rates.size()]);
        block.framed = run % 2 == 0;
        block.start += static_cast<double>(random() % 10000) * 1e-4 / 86400.0;
        EdfPlusRequest request;
        const auto upTo = [&](std::int32_t most) {
            return 1 + static_cast<std::int32_t>(random() % static_cast<unsigned>(most));
        };
        request.first = upTo(block.SampleCount());
        request.count = upTo(block.SampleCount() - request.first + 1);
        request.channels = AllChannels(block);
        std::shuffle(request.channels.begin(), request.channels.end(), random);
        request.channels.resize(1 + random() % channels);
        SCOPED_TRACE(std::to_string(block.rate) + " Hz, " + std::to_string(request.first) + ' ' +
                     std::to_string(request.count));
        ExpectRoundTrip(block, request);
        if (HasFailure()) return;
        EXPECT_DOUBLE_EQ(recording->GetBlock(1)->SampleRate(), block.rate);
        EXPECT_EQ(recording->GetBlock(1)->ChannelTitle(1), block.ChannelTitle(request.channels[0]));
    }
}

TEST_F(EdfPlusTest, RealRecordingsComeBackToTheSample) {
    const std::filesystem::path recordings = "../shared/recordings";
    if (!std::filesystem::exists(recordings)) GTEST_SKIP() << "no reference recordings in " << recordings;
    int blocks = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(recordings)) {
        std::shared_ptr<Recording> source;
        if (!entry.is_regular_file() || !library->OpenRecording(entry.path().u16string(), source)) continue;
        source->Complete();
        for (std::int32_t number = 1; number <= source->BlockCount(); ++number) {
            const auto block = source->GetBlock(static_cast<std::int16_t>(number));
            block->Prepare();
            if (block->SampleCount() < 1) continue;
            SCOPED_TRACE(entry.path().string() + ' ' + std::to_string(number));
            EdfPlusRequest request;
            request.first = 1 + block->SampleCount() / 3;
            ExpectRoundTrip(*block, request);
            EXPECT_NEAR(recording->GetBlock(1)->SampleRate() / block->SampleRate(), 1.0, 1e-9);
            ++blocks;
        }
    }
    EXPECT_GT(blocks, 25);
}

TEST_F(EdfPlusTest, TheStartIsThatOfTheFirstSampleInAnyYear) {
    struct Case {
        CivilTime start;
        std::int32_t first;
        const char* date;
        const char* recording;
        double fraction;
    };
    constexpr double none = 0.0;
    for (const Case& each :
         {Case{{1985, 1, 2}, 1, "02.01.8500.00.00", "Startdate 02-JAN-1985 X X X", none},
          Case{{2084, 12, 31, 23, 59, 59, 900}, 1, "31.12.8423.59.59", "Startdate 31-DEC-2084 X X X", 0.9},
          // A hundredth of a second later it is another day and another century.
          Case{{2084, 12, 31, 23, 59, 59, 990}, 2, "01.01.yy00.00.00", "Startdate 01-JAN-2085 X X X", none},
          Case{{1934, 7, 9, 1, 2, 3, 4}, 11, "09.07.yy01.02.03", "Startdate 09-JUL-1934 X X X", 0.104},
          Case{{1899, 12, 30}, 50, "01.01.8500.00.00", "Startdate X X X X", none}}) {
        FakeBlock block = Block(1, 100, 100.0);
        block.start = DateFromCivil(each.start);
        const PlainEdf plain = Export(block, {.first = each.first, .count = 20});
        EXPECT_EQ(plain.Field(8, 80), "X X X X");
        EXPECT_EQ(plain.Field(168, 16), each.date);
        EXPECT_EQ(plain.Field(88, 80), each.recording);
        EXPECT_DOUBLE_EQ(plain.start, each.fraction);
        const double expected = block.start == 0.0 ? 0.0 : block.start + (each.first - 1) / 100.0 / 86400.0;
        EXPECT_NEAR(Read()->StartTime(), expected, 2e-6 / 86400.0);
        EXPECT_EQ(DescribeLoss(exporter.Outcome(), Language::English), u"");
    }
}

TEST_F(EdfPlusTest, ManyMarksAreSpreadOverTheRecordsAndKeepTheirOrder) {
    FakeBlock block = Block(2, 20000, 100.0);
    const std::size_t plainSize = Export(block, {}).bytes.size();
    // All within one record, at the front, in the middle, at the end, and at both ends.
    for (const auto& places : {std::vector{5}, {10000}, {19995}, {5, 19995}}) {
        SCOPED_TRACE(places.size() * 100000 + static_cast<std::size_t>(places[0]));
        block.marks.clear();
        for (const int place : places)
            for (int mark = 0; mark < 1500; ++mark) block.marks.emplace_back(place + mark / 500, u"№ " + Decimal(mark));
        const PlainEdf plain = ExpectRoundTrip(block, {});
        EXPECT_LT(plain.bytes.size(), plainSize + 3 * 30 * block.marks.size());
        EXPECT_LE(plain.recordBytes, 61440U);
    }
    // What would end a text does not; what is no text is told; what is very long is cut behind a whole character.
    block.marks = {{3,
                    u"a\x14"
                    u"b\x15"
                    u"c\x01"
                    u"d\te"},
                   {4, u""},
                   {4, std::u16string(5000, u'ж')},
                   {9, u"\U0001F600"}};
    block.durations = {{2, 0.125}, {4, 1234.5}};
    const PlainEdf plain = Export(block, {.first = 3, .count = 1000});
    const auto read = Read();
    const std::vector<std::string> marks = Marks(*read);
    ASSERT_EQ(marks.size(), 4U);
    EXPECT_EQ(marks[0], "1 a b c d\te");
    EXPECT_EQ(marks[1], "2 Mark");
    EXPECT_EQ(read->MarkText(3), std::u16string(2048, u'ж'));
    EXPECT_EQ(marks[3], "7 \U0001F600");
    for (const auto& [mark, duration] : {std::pair{1, 0.0}, {2, 0.125}, {4, 1234.5}})
        EXPECT_EQ(read->MarkDuration(mark), duration) << mark;
}

TEST_F(EdfPlusTest, HeadersTellFiltersReferenceAndPlainUnits) {
    auto stored = std::make_shared<FakeBlock>(Block(4, 3000, 200.0));
    stored->titles = {u"Fp1", u"EDF Annotations", u"ЭКГ II", u"Temp"};
    stored->units = {u"\u00B5V", u"uV", u"mV", u"\u00B0C"};
    ShownSettings settings;
    settings.filters[u"V"] = {0.5, 35.0, 4, 50.0, true};
    settings.unfiltered.insert(u"ЭКГ II");
    settings.reference.kind = Reference::Kind::Average;
    const auto shown = MakeShownBlock(stored, settings, {true, true, true, true});
    const PlainEdf plain = ExpectRoundTrip(*shown, {.first = 100, .channels = {4, 1, 3, 2}, .shown = &settings});
    const std::vector<std::array<std::string, 4>> expected = {
        {"Temp", "degC", "", ""},
        {"Fp1", "uV", "HP:0.5Hz LP:35Hz N:50Hz order 4 both ways", "Reference: average"},
        {"??? II", "mV", "", "Reference: average"},
        {"Annotations", "uV", "HP:0.5Hz LP:35Hz N:50Hz order 4 both ways", "Reference: average"}};
    for (std::size_t at = 0; at < expected.size(); ++at) {
        EXPECT_EQ(plain.Column(at, 0, 16), expected[at][0]);
        EXPECT_EQ(plain.Column(at, 96, 8), expected[at][1]);
        EXPECT_EQ(plain.Column(at, 136, 80), expected[at][2]);
        EXPECT_EQ(plain.Column(at, 16, 80), expected[at][3]);
    }
    const PlainEdf alone =
        Export(*stored, {.channels = {1}, .shown = &settings, .averaged = {true, false, false, true}});
    EXPECT_EQ(alone.Column(0, 16, 80), "") << "the average of one channel is the channel";
    settings.reference = {Reference::Kind::Channel, u"Fp1"};
    settings.filters[u"V"] = {0.0, 300.0, 2, 0.0, false};
    const PlainEdf one = Export(*stored, {.channels = {1, 3, 4}, .shown = &settings});
    EXPECT_EQ(one.Column(0, 16, 80) + '|' + one.Column(1, 16, 80) + '|' + one.Column(2, 16, 80), "|Reference: Fp1|");
    EXPECT_EQ(one.Column(0, 136, 80), "") << "no such filter at the rate";
    EXPECT_EQ(EdfPlusSummary({6000, 1000}, 100.0, 6, 8, Language::English),
              u"10.0 s from 00:01:00, 6 of 8 channels, EDF+");
    EXPECT_EQ(EdfPlusSummary({0, 125}, 1000.0, 1, 1, Language::Russian, u','),
              u"0,125 с от 00:00:00, каналов 1 из 1, EDF+");
}

TEST_F(EdfPlusTest, FillIsLeftOutOnlyWhereTheHeaderTellsOfThisFile) {
    FakeBlock block = Block(1, 1021, 256.0);
    ExpectRoundTrip(block, {});
    ASSERT_EQ(exporter.Outcome().filled, 3);
    EXPECT_EQ(DescribeLoss(exporter.Outcome(), Language::English), u"the last record is filled with 3 more samples");
    // Another program puts a record behind it and leaves the texts as they are.
    PlainEdf plain(Contents(path));
    std::string longer = plain.bytes + plain.bytes.substr(512, plain.recordBytes);
    longer.replace(236, 8, (std::to_string(plain.records + 1) + std::string(8, ' ')).substr(0, 8));
    folder.Write(u"a.edf", longer);
    EXPECT_EQ(static_cast<std::size_t>(Read()->SampleCount()), (plain.records + 1) * plain.Samples(0));
}

TEST_F(EdfPlusTest, WhatCannotBeWrittenIsRefusedWithItsReason) {
    FakeBlock block = Block(2, 100, 100.0);
    const auto refused = [&](const EdfPlusRequest& request) {
        services.messages.clear();
        EXPECT_FALSE(exporter.ExportEdfPlus(&block, path, request));
        EXPECT_FALSE(std::filesystem::exists(folder.File(u"a.edf")));
        return services.messages.empty() ? std::u16string() : services.messages.front();
    };
    EXPECT_EQ(refused({}), u"There is no channel to write");
    EXPECT_EQ(refused({.first = 101, .channels = {1}}), u"Data start is out!");
    block.scales[1] = 1e-9F;
    block.offsets = {0.0F, 101325.0F};
    EXPECT_EQ(refused({.channels = {1, 2}}), u"The channel's scale is too fine for EDF: Ch2");
    for (const double rate : {0.0, -1.0, std::nan(""), HUGE_VAL, 1e-12, 1e12}) {
        block.rate = rate;
        EXPECT_TRUE(refused({.channels = {1}}).starts_with(u"Error of file export!")) << rate;
    }
    block.rate = 100.0;
    block.samples.assign(2, Codes());
    EXPECT_NE(refused({.first = 0, .channels = {1}}), u"");
}

}  // namespace
}  // namespace quillon
