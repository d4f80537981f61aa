#include <bit>
#include <cmath>
#include <functional>

#include "GdfWriter.h"
#include "base/DateTime.h"
#include "norvik/BlockChecks.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;
using samples::GdfChannel;
using samples::GdfDuration;
using samples::GdfEvent;
using samples::GdfEventTable;
using samples::GdfHeader;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

RecordingContent Read(const FileBytes& file) {
    return ReadRecording({SourceOf(file), u"a.gdf"});
}

double Value(FileBlock& block, std::int16_t channel, std::int32_t at) {
    block.Prepare();
    float value = 0.0F;
    block.ReadValues(channel, at, 1, &value);
    return static_cast<double>(value);
}

/// A type of samples, how one is stored and which values it can have.
struct Type {
    std::uint32_t type;
    std::size_t bytes;
    bool isFloat;
    double minimum;
    double maximum;
};

constexpr Type kTypes[] = {{1, 1, false, -128, 127},
                           {2, 1, false, 0, 255},
                           {3, 2, false, -32768, 32767},
                           {4, 2, false, 0, 65535},
                           {5, 4, false, -2147483648.0, 2147483647.0},
                           {6, 4, false, 0, 4294967295.0},
                           {7, 8, false, -9e15, 9e15},
                           {8, 8, false, 0, 1.8e19},
                           {16, 4, true, -1e6, 1e6},
                           {17, 8, true, -1e6, 1e6},
                           {279, 3, false, -8388608, 8388607},
                           {535, 3, false, 0, 16777215}};

void Add(FileBytes& bytes, const Type& type, double value) {
    if (type.isFloat && type.bytes == 4) {
        bytes.Float(static_cast<float>(value));
    } else if (type.isFloat) {
        bytes.Double(value);
    } else {
        bytes.Number(value < 0.0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(value))
                                 : static_cast<std::uint64_t>(value),
                     type.bytes);
    }
}

/// Files of random channels: types, rates and editions mixed, against what was written.
TEST(Gdf, SamplesOfEveryTypeAndRateAreThoseThatWereWritten) {
    std::mt19937 random(11);
    for (int round = 0; round < 60; ++round) {
        const char* const version = round % 2 == 0 ? "2.10" : "1.25";
        const std::size_t count = 1 + random() % (round % 10 == 0 ? 70 : 5);
        const auto records = static_cast<std::int64_t>(1 + random() % 300);
        std::vector<GdfChannel> channels;
        std::vector<Type> types;
        for (std::size_t at = 0; at < count; ++at) {
            const Type& type = kTypes[round % 3 == 0 ? static_cast<std::size_t>(round) / 3 % 12 : random() % 12];
            const auto perRecord = static_cast<std::uint32_t>(round % 4 < 2 ? 1 : 1 + random() % 3 * 7);
            types.push_back(type);
            channels.push_back({"c" + std::to_string(at), "mV", 4274, -10.0, 30.0, 0.0, 80.0, perRecord, type.type});
        }
        FileBytes bytes = GdfHeader(version, channels, records, {1, 4});
        std::vector<std::vector<double>> values(count);
        for (std::int64_t record = 0; record < records; ++record) {
            for (std::size_t at = 0; at < count; ++at) {
                for (std::uint32_t i = 0; i < channels[at].samplesPerRecord; ++i) {
                    const double share = static_cast<double>(random() % 1001) / 1000.0;
                    // Two of three channels span no more than 16 bits.
                    const double span = at % 3 == 0 ? types[at].maximum - types[at].minimum : 255.0;
                    const double start = std::max(types[at].minimum, -128.0);
                    double value = at % 3 == 0 ? types[at].minimum + span * share : start + span * share;
                    value = types[at].isFloat ? static_cast<double>(static_cast<float>(value)) : std::floor(value);
                    Add(bytes, types[at], value);
                    values[at].push_back(value);
                }
            }
        }
        SCOPED_TRACE("round " + std::to_string(round));
        const RecordingContent content = Read(bytes);
        std::vector<int> seen(count);
        for (const auto& block : content.blocks) {
            std::vector<Codes> codes;
            for (std::int16_t channel = 1; channel <= block->ChannelCount(); ++channel) {
                const auto at = static_cast<std::size_t>(block->InputNumber(channel)) - 1;
                ++seen[at];
                EXPECT_EQ(Utf8(block->ChannelTitle(channel)), channels[at].label);
                EXPECT_EQ(block->ChannelNumber(channel), static_cast<std::int16_t>(at % 32));
                EXPECT_EQ(block->ChannelUnit(channel), u"mV");
                EXPECT_EQ(block->SampleRate(), 4.0 * channels[at].samplesPerRecord);
                ASSERT_EQ(static_cast<std::size_t>(block->SampleCount()), values[at].size());
                codes.push_back(AllCodes(*block, channel));
                const double scale = static_cast<double>(block->ChannelScale(channel));
                // Whole numbers are exact wherever they fit codes, one by one or moved.
                const auto [low, high] = std::minmax_element(values[at].begin(), values[at].end());
                const bool exact = !types[at].isFloat && *high - *low < 65536.0;
                EXPECT_TRUE(!exact || std::abs(scale - 0.5) < 1e-6) << scale;
                const double tolerance = exact ? 0.25 : 0.51 * scale + 1e-6 * std::max(std::abs(*low), std::abs(*high));
                for (std::int32_t i = 0; i < block->SampleCount(); i += 1 + block->SampleCount() / 50)
                    ASSERT_NEAR(Value(*block, channel, i), values[at][static_cast<std::size_t>(i)] * 0.5 - 10.0,
                                tolerance)
                        << types[at].type << ' ' << i;
            }
            if (round < 24) ExpectReads(*block, codes);
        }
        EXPECT_EQ(seen, std::vector<int>(count, 1));
    }
}

/// Two channels at 8 and 4 Hz, 3 records of a second, and an event table.
FileBytes Small(const std::string& version, bool detailed, float rate, const std::vector<GdfEvent>& events) {
    FileBytes bytes = GdfHeader(version,
                                {{.label = "fast", .unit = "\xB5V", .unitCode = 4275, .samplesPerRecord = 8},
                                 {.label = "slow", .unit = "%", .unitCode = 544, .samplesPerRecord = 4}},
                                3, {});
    Codes codes;
    for (std::int16_t i = 0; i < 36; ++i) codes.push_back(i);
    return bytes.Codes(codes).Add(GdfEventTable(version, detailed, rate, events));
}

TEST(Gdf, TheDurationOfARecordIsAFractionAndFromVersion221OnAFloat) {
    for (const std::string version : {"2.20", "2.21", "2.51"}) {
        FileBytes bytes = Small(version, false, 4.0F, {});
        if (version != "2.20") bytes.Patch(244, 0x3FF0000000000000, 8);  // 1.0
        EXPECT_EQ(Read(bytes).blocks.at(0)->SampleRate(), 8.0) << version;
    }
}

TEST(Gdf, EventsAreMarks) {
    const std::vector<GdfEvent> events{{17, 0x8301},   {1, 0x0300, 0, 12}, {3, 0x0123, 2, 4}, {0, 0x7FFF},
                                       {3, 0x0001, 9}, {25, 0x0311},       {0, 0x0411}};
    for (const std::string version : {"1.25", "1.93", "1.94", "2.10"}) {
        SCOPED_TRACE(version);
        // The fast channel's rate stands in where the table has none.
        for (const float rate : {0.0F, 8.0F}) {
            const RecordingContent content = Read(Small(version, true, rate, events));
            ASSERT_EQ(content.blocks.size(), 2U);
            EXPECT_THAT(Marks(*content.blocks[0]), ElementsAre("0 trial start", "0 Sleep stage 1", "2 0x0123@@slow",
                                                               "2 0x0001", "16 left hand end"));
            EXPECT_THAT(Marks(*content.blocks[1]), ElementsAre("0 trial start", "0 Sleep stage 1", "1 0x0123@@slow",
                                                               "1 0x0001", "8 left hand end"));
            EXPECT_EQ(content.blocks[1]->MarkDuration(1), 1.5);
            EXPECT_EQ(content.blocks[0]->MarkDuration(3), 0.5);
            EXPECT_THAT(Utf8(content.info.english), HasSubstr("2 signals, 3 records of 1 s; 1 events outside"));
        }
        const RecordingContent plain = Read(Small(version, false, 4.0F, events));
        EXPECT_THAT(Marks(*plain.blocks[0]), ElementsAre("0 trial start", "0 Sleep stage 1", "4 0x0123", "4 0x0001"));
        EXPECT_EQ(plain.blocks[0]->MarkDuration(1), 0.0);
        EXPECT_NEAR(plain.blocks[0]->StartTime(), DateFromCivil({2011, 4, 4, 12, 57, 2, 0}), 1e-9);
        EXPECT_EQ(plain.blocks[0]->ChannelUnit(1), u"µV");
        EXPECT_EQ(plain.blocks[1]->ChannelUnit(1), u"%");
        EXPECT_EQ(plain.blocks[0]->Title(), u"8 Hz");
    }
    // More events than 16 bits count.
    std::vector<GdfEvent> many(70000, GdfEvent{5, 0x0101});
    EXPECT_EQ(Read(Small("2.10", true, 8.0F, many)).blocks[0]->MarkCount(), 70000);
}

TEST(Gdf, BreaksStartBlocks) {
    // Behind 3 and 20 samples of the fast channel, which are no whole records; two near ones leave the slow channel
    // out.
    const std::vector<GdfEvent> events{{21, 0x7FFE}, {4, 0x7FFE}, {5, 0x0311}, {22, 0x7FFE}, {24, 0x0312}, {1, 0x7FFE}};
    const RecordingContent content = Read(Small("2.10", true, 8.0F, events));
    std::vector<std::string> titles;
    for (const auto& block : content.blocks)
        titles.push_back(Utf8(block->Title()) + ": " + std::to_string(block->SampleCount()));
    EXPECT_THAT(titles, ElementsAre("1/4, 8 Hz: 3", "1/4, 4 Hz: 2", "2/4, 8 Hz: 17", "2/4, 4 Hz: 8", "3/4, 8 Hz: 1",
                                    "4/4, 8 Hz: 3", "4/4, 4 Hz: 2"));
    ExpectReads(*content.blocks[2], {{3, 4, 5, 6, 7, 12, 13, 14, 15, 16, 17, 18, 19, 24, 25, 26, 27}});
    ExpectReads(*content.blocks[3], {{10, 11, 20, 21, 22, 23, 32, 33}});
    EXPECT_THAT(Marks(*content.blocks[2]), ElementsAre("1 beep"));
    EXPECT_THAT(Marks(*content.blocks[5]), ElementsAre("2 cross"));
    EXPECT_NEAR(content.blocks[5]->StartTime() - content.blocks[0]->StartTime(), 21.0 / 8.0 / 86400.0, 1e-10);
}

TEST(Gdf, OddFilesAreReadAndSaySo) {
    const FileBytes whole = Small("2.10", true, 8.0F, {{1, 0x0300}, {9, 0x0311, 1, 3}});
    const std::size_t table = 256 * 3 + 72;
    struct Case {
        std::function<void(FileBytes&)> change;
        std::int32_t samples;
        std::int32_t marks;
        const char* remark;
    };
    const Case cases[] = {
        {[](auto&) {}, 24, 2, "2 signals"},
        {[](auto& file) { file.Patch(236, ~0ULL, 8); }, 32, 0, "record count '-1' at byte 236"},
        {[](auto& file) { file.Patch(236, 9, 8); }, 32, 0, "cut short: 4 of 9 records"},
        {[&](auto& file) { file.CutTo(table - 1); }, 16, 0, "cut short: 2 of 3 records"},
        {[&](auto& file) { file.CutTo(table); }, 24, 0, "2 signals"},
        {[&](auto& file) { file.CutTo(table + 5); }, 24, 0, "5 bytes after the last record"},
        {[&](auto& file) { file.CutTo(table + 18); }, 24, 1, "the event table is cut short: 1 of 2 events"},
        {[&](auto& file) { file.CutTo(table + 25); }, 24, 2, "2 signals"},
        {[&](auto& file) { file.Patch(table, 8, 1); }, 24, 0, "32 bytes after the last record"},
        {[&](auto& file) { file.Patch(table + 1, 0xFFFFFF, 3); }, 24, 0, "event table is cut short: 0 of 16777215"},
        {[&](auto& file) { file.Patch(table + 4, 0x7FC00000, 4); }, 24, 2, "2 signals"},
        {[](auto& file) { file.Patch(168, 0, 8); }, 24, 2, "start not known"},
        {[](auto& file) { file.Patch(256 + 2 * 120, 0x3FF0000000000000, 8); }, 24, 2,
         "in 1 of the signals, first in 'fast'"},
        {[](auto& file) { file.Patch(256 + 2 * 112 + 8, 0x7FF8000000000000, 8); }, 24, 2, "first in 'slow'"},
        {[](auto& file) { file.Patch(256 + 2 * 216 + 4, 0, 4); }, 24, 0, "1 channels without regular samples"},
    };
    for (const Case& one : cases) {
        FileBytes file = whole;
        one.change(file);
        const RecordingContent content = Read(file);
        const std::string info = Utf8(content.info.english);
        EXPECT_THAT(info, HasSubstr(one.remark));
        EXPECT_EQ(content.blocks[0]->SampleCount(), one.samples) << info;
        EXPECT_EQ(content.blocks[0]->MarkCount(), one.marks) << info;
        EXPECT_EQ(content.info.english.find(u'%'), std::u16string::npos);
    }
    // Names of people are in every third public file.
    FileBytes named = whole;
    named.Patch(8, 0x6e61676f6c53, 6);
    EXPECT_THAT(Utf8(Read(named).info.english), Not(HasSubstr("Slogan")));
}

TEST(Gdf, WhatCannotBeReadIsRefusedByItsPlace) {
    const FileBytes whole = Small("2.10", false, 8.0F, {});
    struct Case {
        std::function<void(FileBytes&)> change;
        const char* reason;
    };
    const Case cases[] = {
        {[](auto& file) { file.CutTo(255); }, "the header ends at byte 255 of 256"},
        {[](auto& file) { file.CutTo(700); }, "the header ends at byte 700 of 768"},
        {[](auto& file) { file.CutTo(791); }, "no whole record: the first one takes bytes 768 to 792"},
        {[](auto& file) { file.Patch(4, 'x', 1); }, "GDF version 'x.10' at byte 4"},
        {[](auto& file) { file.Patch(252, 0, 2); }, "channel count 0 at byte 252"},
        {[](auto& file) { file.Patch(252, 3, 2); }, "header length 768 at byte 184"},
        {[](auto& file) { file.Patch(184, 9000, 2); }, "the header ends at byte 848 of 2304000"},
        {[](auto& file) { file.Patch(244, 0, 4); }, "record duration 0/1 at byte 244"},
        {[](auto& file) { file.Patch(248, 0, 4); }, "record duration 1/0 at byte 244"},
        {[](auto& file) { file.Patch(256 + 2 * 220 + 4, 99, 4); }, "type 99 of channel 2 at byte 700"},
        {[](auto& file) { file.Patch(256 + 2 * 216, 0, 8); }, "each of the 2 channels has 0"},
        {[](auto& file) { file.Patch(256 + 2 * 216, 0x40000000, 4); }, "records of 2147483656 bytes are too long"},
        {[](auto& file) { file.Patch(6, '9', 1).Patch(7, '1', 1).Patch(244, ~0ULL, 8); },
         "record duration ? at byte 244"},
    };
    for (const Case& one : cases) {
        FileBytes file = whole;
        one.change(file);
        ExpectRefusal(SourceOf(file), u"a.gdf", one.reason);
    }
    FileBytes first = Small("1.25", false, 8.0F, {});
    first.Patch(252, 70000, 4);
    ExpectRefusal(SourceOf(first), u"a.gdf", "channel count 70000 at byte 252");
}

}  // namespace
}  // namespace quillon
