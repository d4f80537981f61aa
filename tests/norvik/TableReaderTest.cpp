#include "norvik/private/TableReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <numbers>

#include "base/DateTime.h"
#include "export/QL_Export.h"
#include "norvik/BlockChecks.h"
#include "norvik/private/TableCells.h"
#include "norvik/private/TableNumber.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using namespace ::quillon::testing;

std::shared_ptr<ByteSource> Source(std::string_view bytes) {
    return std::make_shared<MemorySource>(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

RecordingContent Read(std::string_view text) {
    RecordingContent content = ReadRecording({Source(text), u"a.csv"});
    while (content.readMore && content.readMore(content, 1, 0)) {
    }
    return content;
}

std::vector<float> Values(RecordingBlock& block, std::int16_t channel) {
    block.Prepare();
    std::vector<float> values(static_cast<std::size_t>(block.SampleCount()));
    block.ReadValues(channel, 0, block.SampleCount(), values.data());
    return values;
}

TEST(TableNumber, IsTheNearestDouble) {
    std::mt19937_64 random(11);
    const auto check = [](const std::string& text) {
        TableNumber number;
        const std::string ended = text + '\n';
        const char* const end = ParseTableNumber(ended.c_str(), '.', number);
        ASSERT_EQ(end, ended.c_str() + text.size()) << text;
        double expected = 0.0;
        const char* const first = text.c_str() + (text[0] == '+' ? 1 : 0);
        const auto [last, error] = std::from_chars(first, text.c_str() + text.size(), expected);
        // Beyond the range the library leaves the number alone.
        if (error == std::errc::result_out_of_range) return;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(number.value), std::bit_cast<std::uint64_t>(expected)) << text;
    };
    for (int round = 0; round < 200000; ++round) {
        std::string text = std::array{"", "-", "+"}[random() % 3];
        const std::size_t whole = random() % (round % 50 == 0 ? 40 : 12);
        for (std::size_t at = 0; at < whole; ++at) text += static_cast<char>('0' + random() % 10);
        if (random() % 4 != 0 || whole == 0) text += '.';
        for (std::size_t at = whole == 0 ? 1 : random() % 16; text.find('.') != std::string::npos && at > 0; --at)
            text += static_cast<char>('0' + random() % 10);
        if (random() % 4 == 0) text += (random() % 2 == 0 ? "e" : "E-") + std::to_string(random() % 340);
        check(text);
        const auto any = std::bit_cast<double>(random());
        std::array<char, 40> shortest;
        if (std::isfinite(any)) check({shortest.data(), std::to_chars(shortest.data(), shortest.data() + 40, any).ptr});
    }
    TableNumber number;
    EXPECT_EQ(ParseTableNumber("\xE2\x88\x92"
                               "1,50\n",
                               ',', number)[0],
              '\n');
    EXPECT_EQ(number.value, -1.5);
    EXPECT_NE(ParseTableNumber("1e999\n", '.', number), nullptr);
    EXPECT_TRUE(std::isinf(number.value));
    for (const char* none : {"e5\n", ".\n", "-\n", "x\n", ",5\n"})
        EXPECT_EQ(ParseTableNumber(none, '.', number), nullptr);
}

class TableExport : public ::testing::Test {
  protected:
    struct Sink : TextSink {
        explicit Sink(std::string& target) : written(target) {}
        void Write(std::string_view part) override { written += part; }
        bool Failed() const override { return false; }
        bool Close() override { return true; }
        std::u16string ErrorText() const override { return {}; }
        std::string& written;
    };

    void Fill(std::size_t channels, std::size_t rows) {
        std::mt19937 random(3);
        block.samples.assign(channels, {});
        block.scales = {0.0125F, 3.0517578e-7F, 0.5F};
        block.offsets = {0.0F, 0.0F, 0.0F};
        for (std::size_t channel = 0; channel < channels; ++channel) {
            for (std::size_t row = 0; row < rows; ++row) {
                const double wave = 15000.0 * std::sin(static_cast<double>(row) / 300.0) + 15000.0;
                block.samples[channel].push_back(
                    static_cast<std::int16_t>(wave + static_cast<double>(random() % 2000)));
            }
        }
    }
    std::string Export() {
        text.clear();
        EXPECT_TRUE(ExportText(u"a.txt", block, 1, block.SampleCount(), settings, context));
        return text;
    }

    FakeBlock block;
    ChannelSlots slots;
    FormatOptions format;
    FakeServices services;
    TextExportSettings settings{1, 0, 0, 0, 0, 0, 0, 0};
    std::string text;
    TextExportContext context{slots, format, false, services,
                              [this](const std::u16string&, std::u16string&) { return std::make_unique<Sink>(text); }};
};

TEST_F(TableExport, EveryLayoutGivesTheCodesBack) {
    for (int layout = 0; layout < 2 * 2 * 48; ++layout) {
        const auto flag = [&](int bit) { return static_cast<std::int16_t>(layout >> bit & 1); };
        const bool single = flag(0) != 0;
        Fill(single ? 1 : 3, 1200);
        format.decimalSeparator = flag(1) != 0 ? u',' : u'.';
        context.rawCodes = layout % 3 == 0;
        const int x = layout >> 6;
        settings = {1, 0, flag(2), flag(3), flag(4), flag(5), static_cast<std::int16_t>(x > 0), std::int16_t(x == 2)};
        slots[0].title = flag(5) != 0 ? u"Опыт 1" : u"";
        SCOPED_TRACE(Export().substr(0, 200));
        // A comma between two numbers separates them unless something tells otherwise.
        const bool alone = single && x == 0;
        if (alone && !context.rawCodes && format.decimalSeparator == u',' && settings.rowHead == 0) continue;
        // One or two numbers above a column that has no title are samples.
        const int numbers = settings.rowSize + settings.rowRate + settings.rowStep;
        if (alone && settings.rowHead == 0 && (numbers == 1 || numbers == 2)) continue;
        const RecordingContent content = Read(text);
        ASSERT_EQ(content.blocks.size(), 1U);
        FileBlock& read = *content.blocks[0];
        const bool timed = x == 1 || settings.rowRate != 0 || settings.rowStep != 0;
        EXPECT_EQ(read.SampleRate(), timed ? block.rate : 1.0);
        // Sample numbers without a title are values like others.
        const auto extra = static_cast<std::int16_t>(x == 2 && settings.rowHead == 0 ? 1 : 0);
        ASSERT_EQ(read.ChannelCount(), block.ChannelCount() + extra);
        for (std::size_t channel = 0; channel < block.samples.size(); ++channel) {
            const auto number = static_cast<std::int16_t>(channel + 1 + static_cast<std::size_t>(extra));
            ASSERT_EQ(AllCodes(read, number), block.samples[channel]);
            const float scale = context.rawCodes ? 1.0F : block.scales[channel];
            EXPECT_NEAR(read.ChannelScale(number) / scale, 1.0F, 1e-5F);
        }
        EXPECT_EQ(read.ChannelTitle(1), settings.rowHead != 0 ? u"Опыт 1" : u"");
    }
}

TEST_F(TableExport, RatesComeOutOfRoundedTimesInEveryUnit) {
    settings = {1, 0, 0, 0, 0, 1, 1, 0};
    Fill(2, 3000);
    for (const double rate : {0.05, 0.1, 1.0, 15.5, 100.0, 128.0, 360.0, 512.0, 1000.0, 4096.0, 11025.0, 44100.0}) {
        block.rate = rate;
        settings.rowRate = 0;
        format.timeUnit = 0;
        const RecordingContent content = Read(Export());
        EXPECT_EQ(content.blocks.size(), 1U);
        EXPECT_EQ(content.blocks[0]->SampleRate(), rate) << text.substr(0, 100);
        // The unit of the times follows from the rate.
        settings.rowRate = 1;
        for (format.timeUnit = 1; format.timeUnit <= 5; ++format.timeUnit) {
            if (format.timeUnit == 1 && rate > 100.0) continue;
            if (format.timeUnit == 2 && rate > 1000.0) continue;
            const RecordingContent other = Read(Export());
            EXPECT_EQ(other.blocks.size(), 1U) << format.timeUnit << ' ' << text.substr(0, 100);
            EXPECT_EQ(other.blocks[0]->SampleRate(), rate) << format.timeUnit << ' ' << text.substr(0, 100);
        }
    }
}

/// The same table as programs of many kinds write it.
TEST(TableReader, EveryWritingOfATableIsTheSameTable) {
    const auto table = [](char separator, char decimal, std::string_view lineEnd, bool quotes) {
        std::string text = "Time (s)|Pressure (mmHg)|Flow [L/s]";
        std::replace(text.begin(), text.end(), '|', separator);
        if (separator == ' ') text = "Time(s) Pressure(mmHg) Flow[L/s]";
        text += lineEnd;
        for (int row = 0; row < 50; ++row) {
            for (int column = 0; column < 3; ++column) {
                const std::array<double, 3> numbers{row * 0.02, 90.0 + row % 7 * 0.5, -1.0 + row * row * 0.001};
                std::array<char, 40> digits;
                std::snprintf(digits.data(), digits.size(), "%.3f", numbers[static_cast<std::size_t>(column)]);
                std::string field = digits.data();
                std::replace(field.begin(), field.end(), '.', decimal);
                if (column > 0) text += separator;
                text += quotes ? '"' + field + '"' : field;
            }
            text += lineEnd;
        }
        return text;
    };
    const RecordingContent plain = Read(table('\t', '.', "\n", false));
    const std::string utf8 = table(';', ',', "\r\n", false);
    std::string wide = "\xFF\xFE";
    std::string big;
    for (const char letter : utf8) wide += {letter, '\0'}, big += {'\0', letter};
    const std::vector<std::string> writings{table(';', '.', "\r\n", false),
                                            table(';', ',', "\r", false),
                                            table('|', ',', "\n", true),
                                            table(',', '.', "\n", false),
                                            table(',', ',', "\n", true),
                                            table(' ', ',', "\n", false),
                                            table('\t', ',', "\n", false),
                                            "\xEF\xBB\xBF" + utf8,
                                            utf8.substr(0, utf8.size() - 2),
                                            wide,
                                            big,
                                            "# rig 7, 2 valves\n\n" + utf8};
    ASSERT_EQ(plain.blocks.size(), 1U);
    EXPECT_EQ(plain.blocks[0]->SampleRate(), 50.0);
    EXPECT_EQ(plain.blocks[0]->ChannelUnit(1), u"mmHg");
    ExpectReads(*plain.blocks[0], {AllCodes(*plain.blocks[0], 1), AllCodes(*plain.blocks[0], 2)});
    for (const std::string& writing : writings) {
        SCOPED_TRACE(writing.substr(0, 120));
        const RecordingContent content = Read(writing);
        ASSERT_EQ(content.blocks.size(), 1U);
        EXPECT_EQ(content.info.english, plain.info.english);
        for (std::int16_t channel = 1; channel <= 2; ++channel) {
            EXPECT_EQ(Values(*content.blocks[0], channel), Values(*plain.blocks[0], channel));
            EXPECT_EQ(content.blocks[0]->ChannelTitle(channel), plain.blocks[0]->ChannelTitle(channel));
            EXPECT_EQ(content.blocks[0]->ChannelUnit(channel), plain.blocks[0]->ChannelUnit(channel));
        }
    }
}

TEST(TableReader, DatesClocksAndGapsMakeTheBlocks) {
    const auto rows = [](const std::vector<std::string>& times) {
        std::string text = "time;v\n";
        for (const std::string& time : times) text += time + ";1\n";
        return Read(text);
    };
    const RecordingContent dated = rows({"2024-05-31 23:59:59.5", "2024-06-01T00:00:00", "2024-06-01 00:00:00.5+02:00",
                                         "2024-06-01 00:00:09", "2024-06-01 00:00:09.5"});
    ASSERT_EQ(dated.blocks.size(), 2U);
    EXPECT_EQ(dated.blocks[0]->SampleRate(), 2.0);
    EXPECT_NEAR((dated.blocks[1]->StartTime() - dated.blocks[0]->StartTime()) * 86400.0, 9.5, 1e-4);
    EXPECT_EQ(std::floor(dated.blocks[0]->StartTime()), 45443.0);
    EXPECT_EQ(rows({"11:59:59 AM", "12:00:00 PM", "12:00:01 PM"}).blocks.at(0)->SampleRate(), 1.0);
    const RecordingContent zulu = rows({"2024-06-01T00:00:00Z", "2024-06-01T00:00:04Z", "2024-06-01T00:00:08Z"});
    EXPECT_EQ(zulu.blocks.at(0)->SampleRate(), 0.25);
    EXPECT_EQ(zulu.blocks[0]->ChannelCount(), 1);
    // Nothing names the first column, but a rate speaks against times.
    EXPECT_EQ(Read("# rate: 500\n1.5\t2\n2.0\t4\n2.5\t8\n").blocks.at(0)->ChannelCount(), 2);
    EXPECT_EQ(Read("# rate: 2000\n1.5\t2\n2.0\t4\n2.5\t8\n").blocks.at(0)->ChannelCount(), 1);
    EXPECT_EQ(rows({"23:59:40", "23:59:50", "0:00:00", "0:00:10"}).blocks.size(), 1U);
    EXPECT_EQ(rows({"31.05.2024 10:00", "31.05.2024 10:01", "31.05.2024 10:02"}).blocks[0]->SampleRate(), 1.0 / 60.0);
    // In seconds, ms, mks and ns since 1970.
    for (const std::string zeros : {"", "00", "00000", "00000000"}) {
        std::vector<std::string> times;
        for (int row = 0; row < 4; ++row)
            times.push_back((zeros.empty() ? "1717200000." : "1717200000") + std::to_string(row) + zeros);
        const RecordingContent unix = rows(times);
        EXPECT_EQ(unix.blocks[0]->SampleRate(), 10.0) << zeros;
        EXPECT_NEAR(unix.blocks[0]->StartTime(), 45444.0, 1e-6) << zeros;
    }
    // A clock of 10 ms that is read every ms stands still and jumps.
    std::vector<std::string> coarse;
    for (int row = 0; row < 300; ++row)
        coarse.push_back(row < 100 ? "0.0" + std::to_string(row / 10) : "0." + std::to_string(row / 10));
    EXPECT_EQ(rows(coarse).blocks.size(), 1U);
    const RecordingContent back = rows({"0.1", "0.2", "0.3", "0.1", "0.2", "0.3"});
    EXPECT_EQ(back.blocks.size(), 2U);
    EXPECT_THAT(Utf8(back.info.english), HasSubstr("times go back"));
}

TEST(TableReader, LinesAboveTellTitlesUnitsAndTheStart) {
    const auto told = [](const std::string& above) {
        const RecordingContent content = Read(above + "\n0.0;1;2\n0.5;3;5\n1.0;4;1\n");
        std::string text = Iso8601(content.blocks[0]->StartTime());
        for (std::int16_t channel = 1; channel <= content.blocks[0]->ChannelCount(); ++channel)
            text +=
                Utf8(u'|' + content.blocks[0]->ChannelTitle(channel) + u' ' + content.blocks[0]->ChannelUnit(channel));
        return text;
    };
    EXPECT_EQ(told("# date: 2024-05-31 10:00:02\n# Labels: t;A;B\n# units: s;mV;uS"),
              "2024-05-31T10:00:02.000|A mV|B uS");
    EXPECT_EQ(told("# Start = 31.05.2024\n# rate: 2 Hz\n# labels: A;B\n# units: mV;uS"), "2024-05-31T00:00:00.000| | ");
    EXPECT_EQ(told("# date: 2024-05-31\n# begun: 1\ntime;A;B\ns;mV;uS"), "2024-05-31T00:00:00.000|A mV|B uS");
}

TEST(TableReader, DefectsCostNoMoreThanTheyHaveTo) {
    std::string good = "t (s),a,b\n";
    for (int row = 0; row < 400; ++row)
        good += std::to_string(row) + ".5," + std::to_string(row % 90) + "," + std::to_string(row * 2) + "\n";
    const auto damaged = [&](std::string_view what, std::string_view with) {
        std::string text = good;
        return text.replace(text.find(what), what.size(), with);
    };
    const auto info = [&](const std::string& text, std::int32_t samples) {
        const RecordingContent content = Read(text);
        std::int32_t found = 0;
        for (const auto& block : content.blocks) found += block->SampleCount();
        EXPECT_EQ(found, samples);
        return Utf8(content.info.english);
    };
    EXPECT_EQ(info(good, 400), "Text, 2 channels at 1 Hz, 400 samples; start taken from the file's time");
    EXPECT_THAT(info(damaged("\n300.5,30,", "\n300.5,oops,"), 400), HasSubstr("1 cell is no number, in line 302"));
    EXPECT_THAT(info(damaged("\n300.5,30,", "\n300.5,30,,"), 399), HasSubstr("left out, line 302"));
    EXPECT_EQ(info(damaged("\n300.5,30,", "\n300.5,,"), 400).find("cell"), std::string::npos);
    EXPECT_EQ(info(damaged("\n300.5,30,", "\n300.5,NaN,"), 400).find("cell"), std::string::npos);
    EXPECT_THAT(info(good + "400.5,4", 400), HasSubstr("the last line is cut"));
    EXPECT_THAT(info(damaged("300.5,30,600\n301.5,31,602\n", ""), 398), HasSubstr("2 stretches"));
    EXPECT_THAT(info(damaged("300.5,30,600\n", "# a remark\n\n"), 399), HasSubstr("399 samples"));
    std::string names = good;
    for (std::size_t at = names.find('\n', 11); at != std::string::npos; at = names.find('\n', at + 6))
        names.replace(at, 1, ",open\n");
    EXPECT_THAT(info(names, 400), HasSubstr("1 column of text left out"));
    EXPECT_THAT(Utf8(Read(good + std::string(3000, 'x') + "\n").info.english), HasSubstr("another number of columns"));
    ExpectRefusal(Source("a,b\n1,x\n2,y\nthe end\nthe end\n"), u"a.csv", "line 4 has");
    ExpectRefusal(Source("Dear reader,\nthis is prose; it has\nno rows at all\n"), u"a.txt",
                  "line 2 has 'this is prose");
    ExpectRefusal(Source("t,v\n0,1\n0.1,2\n0.9,3\n1.0,7\n3,5\n"), u"a.csv", "not evenly spaced (line 4");
    ExpectRefusal(Source(std::string("1;2\0;3\n", 7) + good), u"a.csv", "not text: character 4 is 0");
    ExpectRefusal(Source("1;2\n"), u"a.tsv", "no table");
    ExpectRefusal(Source(good), u"a.xyz", "not a recording of a known format");
    ExpectRefusal(Source("1;2\n3;4\n" + std::string(100, 'y') + "\n5;z\n6;7;8\n"), u"a.csv", "line 3 has 'yyy");
}

TEST(TableCells, AreTheSameInMemoryAndInTheTemporaryFile) {
    std::mt19937 random(5);
    std::vector<std::uint8_t> bytes(3000000);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    for (const std::uint64_t memory : {std::uint64_t{0}, std::uint64_t{1500000}, TableCells::kMemory}) {
        TableCells cells(memory);
        for (std::size_t at = 0; at < bytes.size();) {
            const std::size_t part = std::min<std::size_t>(random() % 400000, bytes.size() - at);
            cells.Append(std::span(bytes).subspan(at, part));
            at += part;
        }
        ASSERT_EQ(cells.Size(), bytes.size());
        for (int round = 0; round < 200; ++round) {
            const std::size_t at = random() % bytes.size();
            std::vector<std::uint8_t> read(random() % 2000000);
            read.resize(cells.ReadAt(at, read.data(), read.size()));
            ASSERT_TRUE(std::equal(read.begin(), read.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at)));
        }
    }
}

}  // namespace
}  // namespace quillon
