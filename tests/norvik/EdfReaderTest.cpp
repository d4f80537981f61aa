#include <gmock/gmock.h>

#include <random>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/BlockChecks.h"
#include "norvik/EdfBuilder.h"
#include "norvik/private/EdfAnnotations.h"
#include "norvik/private/EdfReader.h"
#include "norvik/private/WideScale.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using namespace ::quillon::testing;
using namespace std::string_literals;

std::vector<std::string> Titles(const RecordingContent& content) {
    std::vector<std::string> titles;
    for (const auto& block : content.blocks) titles.push_back(Utf8(block->Title()));
    return titles;
}

/// The list that states a record's onset.
std::string Onset(const std::string& seconds) {
    return seconds + "\x14\x14\0"s;
}

std::string Note(const std::string& seconds, const std::string& text) {
    return seconds + "\x14" + text + "\x14\0"s;
}

std::string Info(const EdfBuilder& file) {
    return Utf8(ReadEdf(file.Source()).info.english);
}

TEST(EdfReader, AGapStartsABlockAndMarksFallIntoTheBlockOfTheirTime) {
    EdfBuilder file{.reserved = "EDF+D", .recordCount = 6, .signals = {{.samples = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}}}};
    file.Annotate({Onset("+0.25") + Note("+0.25", "first") + Note("+2.1", "last sample"), Onset("+1.25"),
                   Onset("+10.5") + Note("+10.51", "after") + Note("+10.49", "before"), Onset("+11.5"),
                   Onset("+4") + Note("+1", "earlier") + Note("+4.75", "twice"), Onset("+4.5")});
    file.Annotate({Onset("+77") + Note("+2.25", "too late") + Note("+3", "in the gap")});
    const RecordingContent content = ReadEdf(file.Source());
    EXPECT_THAT(Titles(content), ElementsAre("12:00:00.250", "12:00:10.500", "12:00:04.000", "12:00:04.500"));
    EXPECT_THAT(Marks(*content.blocks[0]), ElementsAre("0 first", "3 earlier", "7 last sample"));
    EXPECT_THAT(Marks(*content.blocks[1]), ElementsAre("0 after", "0 before")) << "at one sample as in the file";
    // Records that overlap in time are shown one after the other, and a mark is in both.
    EXPECT_THAT(Marks(*content.blocks[2]), ElementsAre("3 twice"));
    EXPECT_THAT(Marks(*content.blocks[3]), ElementsAre("1 twice"));
    EXPECT_EQ(Iso8601(content.blocks[1]->StartTime()), "2020-02-01T12:00:10.500");
    EXPECT_EQ(AllCodes(*content.blocks[1], 1), (Codes{8, 9, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Info(file), "EDF+D, 1 signal, 6 records of 1 s; 4 stretches");
}

TEST(EdfReader, AnnotationsWithoutSamplesAreMarksOfAFlatChannel) {
    for (const char* const kind : {"EDF+C", "EDF+D"}) {
        EdfBuilder file{.reserved = kind, .seconds = "0", .recordCount = 2};
        file.Annotate({Onset("+0") + Note("+90.25\x15"
                                          "30",
                                          "N2"),
                       Onset("+500") + Note("+60\x15"
                                            "30",
                                            "N1")});
        const RecordingContent content = ReadEdf(file.Source());
        ASSERT_EQ(content.blocks.size(), 1U);
        FileBlock& block = *content.blocks[0];
        EXPECT_TRUE(block.HasMarksOnly());
        EXPECT_EQ(block.SampleRate(), 1000.0);
        EXPECT_EQ(block.SampleCount(), 60251) << "60 s to 120.25 s";
        EXPECT_EQ(Iso8601(block.StartTime()), "2020-02-01T12:01:00.000");
        EXPECT_THAT(Marks(block), ElementsAre("0 N1", "30250 N2"));
        EXPECT_EQ(block.MarkDuration(2), 30.0);
        EXPECT_EQ(AllCodes(block, 1), Codes(60251, 0));
        RunExtremes found[2] = {{1, 2}, {3, 4}};
        RunExtremes* const out[] = {found};
        const std::int16_t channel[] = {1};
        EXPECT_TRUE(block.ColumnExtremes(channel, 10, 101, 100, out));
        EXPECT_EQ(found[1], RunExtremes());
        EXPECT_EQ(Info(file), std::string(kind) + ", annotations only: 2");
    }
    // Ten years of it fit into a block as well.
    EdfBuilder file{.reserved = "EDF+C", .seconds = "0", .recordCount = 1};
    file.Annotate({Onset("+0") + Note("+0", "a") + Note("+315576000", "b")});
    const RecordingContent content = ReadEdf(file.Source());
    EXPECT_EQ(content.blocks[0]->SampleRate(), 1.0);
    EXPECT_THAT(Marks(*content.blocks[0]), ElementsAre("0 a", "315576000 b"));
}

TEST(EdfReader, OnsetsWithinHalfASampleOfTheFastestSignalAreNoGap) {
    EdfBuilder file{.bdf = true, .reserved = "BDF+D", .recordCount = 4, .signals = {{.samplesPerRecord = 2}, {}}};
    file.signals[1].samplesPerRecord = 10;
    file.Annotate({Onset("+0"), Onset("+1.05"), Onset("+1.95"), Onset("+3.04")});
    EXPECT_EQ(ReadEdf(file.Source()).blocks.size(), 2U) << "two rates, one stretch";
    file.signals.back().lists[3] = Onset("+3.06");
    EXPECT_EQ(ReadEdf(file.Source()).blocks.size(), 4U);
    // A record without an onset goes on where the one before ended; in a file declared to have no gaps
    // only the first onset counts.
    file.signals.back().lists = {Onset("+5"), "", Onset("+7"), Note("+99", "no onset")};
    EXPECT_EQ(ReadEdf(file.Source()).blocks.size(), 2U);
    EXPECT_THAT(Info(file), HasSubstr("2 records without an onset"));
    file.reserved = "BDF+C";
    file.signals.back().lists = {Onset("+0.5"), Onset("+100")};
    const RecordingContent gapless = ReadEdf(file.Source());
    EXPECT_THAT(Titles(gapless), ElementsAre("2 Hz", "10 Hz"));
    EXPECT_EQ(Iso8601(gapless.blocks[0]->StartTime()), "2020-02-01T12:00:00.500");
}

TEST(EdfReader, RatesAndGroupsOf32MakeBlocksWithUniqueChannelNumbers) {
    EdfBuilder file{.reserved = "EDF+C", .seconds = "0.5"};
    for (int ordinal = 1; ordinal <= 70; ++ordinal) {
        if (ordinal == 3) file.Annotate({Onset("+0") + Note("+0.25", "mark")});
        const std::size_t samplesPerRecord = ordinal % 2 == 0 && ordinal < 50 ? 1 : 128;
        file.signals.push_back(
            {.label = "S" + std::to_string(ordinal), .samplesPerRecord = samplesPerRecord, .samples = {ordinal}});
    }
    const RecordingContent content = ReadEdf(file.Source());
    EXPECT_THAT(Titles(content),
                ElementsAre("256 Hz, 1-31", "2 Hz, 2-32", "256 Hz, 33-64", "2 Hz, 34-48", "256 Hz, 65-70"));
    for (const auto& block : content.blocks) {
        for (std::int16_t channel = 1; channel <= block->ChannelCount(); ++channel) {
            const int input = block->InputNumber(channel);
            EXPECT_EQ(AllCodes(*block, channel).at(0), input);
            EXPECT_EQ(Utf8(block->ChannelTitle(channel)), "S" + std::to_string(input));
            EXPECT_EQ(block->ChannelNumber(channel), (input - 1) % 32);
        }
    }
    EXPECT_THAT(Marks(*content.blocks[1]), ElementsAre("0 mark")) << "half a sample rounds to even";
    EXPECT_THAT(Marks(*content.blocks[4]), ElementsAre("64 mark"));
}

TEST(EdfReader, StretchTitlesAreAsLongAsTheyMustBe) {
    EdfBuilder file{.reserved = "EDF+D", .recordCount = 2, .signals = {{}, {.samplesPerRecord = 8}}};
    const auto titles = [&](const std::string& second) {
        file.signals.resize(2);
        file.Annotate({Onset("+0"), Onset(second)});
        return Titles(ReadEdf(file.Source()));
    };
    EXPECT_THAT(titles("+30"), ElementsAre("12:00:00, 4 Hz", "12:00:00, 8 Hz", "12:00:30, 4 Hz", "12:00:30, 8 Hz"));
    EXPECT_EQ(titles("+86400")[2], "2020-02-02 12:00:00, 4 Hz");
    EXPECT_EQ(titles("+0.5")[2], "12:00:00.500, 4 Hz");
    EXPECT_EQ(titles("+0")[2], "12:00:00 (2), 4 Hz");
}

TEST(EdfReader, RecordsAreCountedFromTheSizeWhereTheHeaderDoesNotTell) {
    EdfBuilder file{.recordCount = 12, .signals = {{.samplesPerRecord = 100}}};
    const auto read = [&](const std::string& count, std::size_t cut) {
        file.records = count;
        std::vector<std::uint8_t> bytes = file.Bytes();
        bytes.resize(bytes.size() - cut);
        const RecordingContent content = ReadEdf(std::make_shared<MemorySource>(bytes));
        return std::to_string(content.blocks[0]->SampleCount()) + ": " + Utf8(content.info.english);
    };
    const std::string eleven = "1100: EDF, 1 signal, 11 records of 1 s; ";
    const std::string twelve = "1200: EDF, 1 signal, 12 records of 1 s";
    EXPECT_EQ(read("12", 0), twelve);
    EXPECT_EQ(read("12", 77), eleven + "cut short: 11 of 12 records");
    EXPECT_EQ(read("-1", 0), twelve + "; record count '-1' at byte 236: counted from the file's size");
    EXPECT_EQ(read("11", 0), eleven + "200 bytes after the last record");
}

TEST(EdfReader, WhatCannotBeReadIsRefusedWithItsPlace) {
    const auto refusal = [](const std::vector<std::uint8_t>& bytes) {
        return Refusal(std::make_shared<MemorySource>(bytes), u"a.edf");
    };
    const auto bytes = EdfBuilder{.recordCount = 3, .signals = {{}, {.samplesPerRecord = 6}}}.Bytes();
    const auto cut = [&](int size) { return refusal({bytes.begin(), bytes.begin() + size}); };
    EXPECT_EQ(cut(100), "the header ends at byte 100 of 256");
    EXPECT_EQ(cut(767), "the header ends at byte 767 of 768");
    EXPECT_EQ(cut(787), "no whole record: the first one takes bytes 768 to 788, the file ends at byte 787");
    const auto wrong = [&](int place, std::string text, std::size_t width) {
        text.resize(width, ' ');
        std::vector<std::uint8_t> changed = bytes;
        std::copy(text.begin(), text.end(), changed.begin() + place);
        return refusal(changed);
    };
    EXPECT_EQ(wrong(0, "1", 8), "not EDF or BDF: version '1' at byte 0");
    for (const std::string count : {"abcd", "33e3", "0", "-3", "", "1.5", "nan"})
        EXPECT_EQ(wrong(252, count, 4), "signal count '" + count + "' at byte 252");
    EXPECT_EQ(wrong(252, "9999", 4), "the header ends at byte 828 of 2560000");
    for (const std::string time : {"0", "-1", "inf", "1E300", "1e-300", "one", ""})
        EXPECT_EQ(wrong(244, time, 8), "record duration '" + time + "' at byte 244");
    for (const std::string count : {"0", "-4", "x", "2.5", "1e300", ""})
        EXPECT_EQ(wrong(696, count, 8), "samples per record '" + count + "' at byte 696");
    EXPECT_THAT(wrong(696, "99999999", 8), HasSubstr("the first one takes bytes 768 to 200000774"));
    EdfBuilder annotations{.seconds = "0"};
    annotations.Annotate({Onset("+0")});
    EXPECT_EQ(refusal(annotations.Bytes()), "the file holds neither samples nor annotations");
}

TEST(EdfReader, LimitsGiveScalesOrAreReportedAsUnusable) {
    const auto scale = [](std::string low, std::string high, std::string lowCode, std::string highCode) {
        const EdfBuilder file{.signals = {{"EEG", "uV", low, high, lowCode, highCode}}};
        const auto block = ReadEdf(file.Source()).blocks[0];
        block->Prepare();
        const std::string odd = "no usable limits in 1 of the signals, first in 'EEG' at byte 360";
        return std::tuple(block->ChannelScale(1), block->ChannelOffset(1), Info(file).find(odd) != std::string::npos);
    };
    EXPECT_EQ(scale("-10", "+10", "-2", "3"), std::tuple(4.0F, -2.0F, false));
    EXPECT_EQ(scale("0,5", "1,5", " 0", "2"), std::tuple(0.5F, 0.5F, false)) << "decimal commas";
    EXPECT_EQ(scale("10", "-10", "-10", "10"), std::tuple(-1.0F, 0.0F, false)) << "polarity reversed";
    const std::tuple useless(1.0F, 0.0F, true);
    EXPECT_EQ(scale("-10", "10", "5", "5"), useless);
    EXPECT_EQ(scale("-10", "", "-5", "5"), useless);
    EXPECT_EQ(scale("0", "1e-99", "-5", "5"), useless) << "zero in single precision";
}

TEST(EdfReader, TextsAndDates) {
    EdfBuilder file{.patient = "Kelvara Block: Night 2", .recording = "ADC: K-24", .signals = {{.unit = "\xB5V"}}};
    const auto read = [&] { return ReadEdf(file.Source()).blocks[0]; };
    EXPECT_EQ(read()->ChannelUnit(1), u"\u00B5V") << "Latin-1";
    EXPECT_EQ(read()->BlockName(), u"Night 2");
    EXPECT_EQ(read()->DeviceName(), u"K-24");

    const auto start = [&](const std::string& date, const std::string& recording) {
        file.date = date;
        file.recording = recording;
        return Iso8601(read()->StartTime());
    };
    const std::string none = "1899-12-30T00:00:00.000";
    EXPECT_EQ(start("02.03.yy", "Startdate 02-MAR-2102 X X Amp_7"), none) << "plain EDF";
    EXPECT_THAT(Info(file), HasSubstr("start date '02.03.yy' at byte 168 cannot be read"));
    file.reserved = "EDF+C";
    EXPECT_EQ(start("02.03.yy", "Startdate 02-MAR-2102 X X Amp_7"), "2102-03-02T12:00:00.000");
    EXPECT_EQ(read()->DeviceName(), u"Amp_7");
    EXPECT_EQ(start("02.03.02", "Startdate 02-Mar-1902 X X X"), "1902-03-02T12:00:00.000");
    EXPECT_EQ(read()->DeviceName(), u"");
    EXPECT_EQ(start("31.12.85", ""), "1985-12-31T12:00:00.000");
    EXPECT_EQ(start("31.12.84", "Startdate 03-MAR-1902 X X"), "2084-12-31T12:00:00.000") << "another day";
    EXPECT_EQ(start("31.02.02", "Startdate 31-FEB-1902"), none);
    file.time = "25.00.00";
    EXPECT_EQ(start("02.03.02", ""), "2002-03-02T00:00:00.000");
    EXPECT_THAT(Info(file), HasSubstr("start time '25.00.00' at byte 176 cannot be read"));
}

/// Bytes of lists: "|" ends a text, "~" begins a duration, "_" is a zero.
std::string Lists(std::string text) {
    for (char& sign : text) sign = sign == '|' ? '\x14' : sign == '~' ? '\x15' : sign == '_' ? '\0' : sign;
    return text;
}

/// What one record gives: "onset;" when it states one, "at~duration text;" of every annotation, "!" for every damaged
/// list.
std::string Parse(const std::string& bytes, std::size_t piece) {
    EdfAnnotations annotations;
    for (std::size_t at = 0; at < bytes.size(); at += piece)
        annotations.Feed(std::string_view(bytes).substr(at, piece));
    const std::optional<double> onset = annotations.EndRecord();
    std::string out = onset ? Utf8(ShortestDecimal(*onset)) + ";" : "";
    for (const EdfAnnotation& annotation : annotations.All()) {
        const std::string duration = annotation.duration > 0.0 ? "~" + Utf8(ShortestDecimal(annotation.duration)) : "";
        out += Utf8(ShortestDecimal(annotation.onset)) + duration + " " + Utf8(annotation.text) + ";";
    }
    return out + std::string(annotations.Malformed(), '!');
}

TEST(EdfAnnotations, MalformedListsAreCounted) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"-0.065||Recording starts|___", "-0.065;-0.065 Recording starts;"},
        {"+1||_+1.5~2.25|a|b|__+2|c|", "1;1.5~2.25 a;1.5~2.25 b;2 c;"},
        {"+1~|a|_+1~-2|a|_+1~x|a|_+1~+2|a|_+1~0|a|_", "1 a;1 a;1 a;1 a;1 a;"},
        {"+3|text first|_+4||_", "3 text first;"},  // does not state the onset of the record
        {"+1||_+2|caf\xE9 |_+3|caf\xC3\xA9|_", "1;2 caf\xC3\xA9 ;3 caf\xC3\xA9;"},
        {"+12345678.000000001|a|_", "12345678.000000002 a;"},
        // No sign, no digits, an exponent, two points, a number that is none, no end, not even a stamp.
        {"5|a|_+|a|_+1e3|a|_+1.2.3|a|_+nan|a|_+5|a_+5", "!!!!!!!"},
        {"+99999999999999|a|_--1|a|_||_~~_ +1|a|_", "!!!!!"},
        {"+1||" + std::string(2000000, 'x') + "|_+2|b|_", "2 b;!"},
        {"___", ""}};
    for (const auto& [text, expected] : cases)
        for (const std::size_t piece : {1U, 3U, 1000000U}) EXPECT_EQ(Parse(Lists(text), piece), expected) << piece;
}

TEST(EdfAnnotations, RecordsDoNotRunIntoEachOther) {
    EdfAnnotations annotations;
    for (const auto& [record, onset] : {std::pair{"+1||", 1.0}, {"|a|", 0.0}, {"+3||", 3.0}, {"", 0.0}}) {
        annotations.Feed(Lists(record));
        EXPECT_EQ(annotations.EndRecord().value_or(0.0), onset);
    }
    EXPECT_EQ(annotations.Malformed(), 1U);
}

/// Keeps account of the reads.
class CountingSource final : public ByteSource {
  public:
    explicit CountingSource(std::vector<std::uint8_t> bytes) : m_memory(std::move(bytes)) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_memory.Size(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        largest = std::max(largest, count);
        total += count;
        return m_memory.ReadAt(offset, buffer, count);
    }
    std::size_t largest = 0;
    std::uint64_t total = 0;

  private:
    MemorySource m_memory;
};

/// BDF, samples per record, channels, samples of a signal at another rate in the middle of the record, records.
using Shape = std::tuple<bool, std::size_t, std::size_t, std::size_t, std::size_t>;

void ExpectSameReads(const Shape& shape) {
    const auto [bdf, samplesPerRecord, channels, filler, records] = shape;
    std::mt19937 random(20240607);
    EdfBuilder file{.bdf = bdf, .recordCount = records};
    std::vector<testing::Codes> codes(channels);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        if (channel == 1 && filler > 0) file.signals.push_back({.samplesPerRecord = filler});
        // Few values, so that runs hold ties. The 24-bit ones span 16 bits far from zero, or more than 16 bits.
        const bool wide = bdf && channel % 2 == 1;
        const std::int32_t step = wide ? 640000 : 5000;
        const std::int32_t middle = bdf && !wide ? 3000000 : 0;
        EdfBuilder::Signal signal{.samplesPerRecord = samplesPerRecord};
        for (std::size_t at = 0; at < records * samplesPerRecord; ++at) {
            const std::int32_t value = static_cast<std::int32_t>((at + random() % 2) % 11) - 5;
            signal.samples.push_back(middle + value * step);
            codes[channel].push_back(static_cast<std::int16_t>(value * (wide ? 6400 : step)));
        }
        file.signals.push_back(std::move(signal));
    }
    const auto source = std::make_shared<CountingSource>(file.Bytes());
    const auto block = ReadEdf(source).blocks[0];
    EXPECT_EQ(source->total, 256 * (file.signals.size() + 1)) << "opening reads the header";
    EXPECT_THROW(static_cast<void>(block->ChannelScale(1)), std::logic_error) << "not prepared";
    for (int time = 1; time <= 2; ++time) block->Prepare();
    EXPECT_LE(source->total, 256 * (file.signals.size() + 1) + (bdf ? source->Size() : 0)) << "one pass or none";
    testing::ExpectReads(*block, codes);
    float value = 0;
    block->ReadValues(static_cast<std::int16_t>(channels), block->SampleCount() - 1, 1, &value);
    EXPECT_EQ(value, file.signals.back().samples.back());
    EXPECT_LE(source->largest, kPieceBytes);

    RunExtremes extremes[2];
    RunExtremes* const out[] = {&extremes[0], &extremes[1]};
    const std::int16_t numbers[] = {1, 2};
    source->total = 0;
    ASSERT_TRUE(block->ColumnExtremes(numbers, 0, block->SampleCount(), block->SampleCount(), out));
    const std::uint64_t wanted = 2 * records * samplesPerRecord * (bdf ? 3 : 2);
    EXPECT_LE(source->total, filler > samplesPerRecord ? 4 * wanted : source->Size()) << "one pass over what is needed";
}

TEST(EdfRecordBlock, EveryWayToReadAgreesWithTheStoredSamples) {
    for (const Shape& shape : {Shape(false, 1, 3, 0, 5000),     // as good as frames
                               Shape(false, 250, 5, 3, 40),     // small records
                               Shape(false, 700, 6, 9000, 30),  // parts far apart in long records
                               Shape(false, 20000, 2, 0, 9),    // few records to a piece
                               Shape(false, 200001, 2, 1, 3),   // parts longer than a piece
                               Shape(true, 101, 4, 5, 50),      // an odd size of records
                               Shape(true, 5001, 3, 50000, 8), Shape(true, 100001, 2, 0, 3)}) {
        SCOPED_TRACE(::testing::PrintToString(shape));
        ExpectSameReads(shape);
    }
}

TEST(WideScale, ASpanOfSixteenBitsIsKeptExactlyAndHalvesGoToTheEvenCode) {
    for (const double minimum : {-32768.0, 0.0, 1.0, -1.0, 1835008.0, -8388608.0, 2147418112.0}) {
        for (const double span : {1.0, 65534.0, 65535.0}) {
            const WideScale scale = ChooseWideScale(minimum, minimum + span, true, 0.5, 3.0);
            for (const double sample : {minimum, minimum + 1.0, minimum + span})
                EXPECT_EQ(scale.Code(sample) + scale.shift, sample) << minimum << ' ' << span;
            EXPECT_EQ(scale.offset, static_cast<float>(scale.shift * 0.5 + 3.0));
        }
    }
    EXPECT_EQ(ChooseWideScale(-32768, 32767, true, 1, 0).shift, 0.0) << "what fits is not moved";
    EXPECT_EQ(ChooseWideScale(0, 65536, true, 1, 0).Code(0), -32000) << "one too many for 16 bits";
    EXPECT_EQ((WideScale{0.0, 2.0, 2.0F, 0.0F}.Code(1.0)), 0);
}

}  // namespace
}  // namespace quillon
