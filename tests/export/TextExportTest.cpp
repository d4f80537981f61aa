#include <gmock/gmock.h>

#include <bit>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

#include "export/QL_Export.h"
#include "format/FixedText.h"
#include "support/FakeRecording.h"

namespace quillon::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::Key;

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
    return parts;
}

class TextExportTest : public ::testing::Test {
  protected:
    struct Sink : TextSink {
        Sink(std::string& target, std::size_t bytes) : written(target), room(bytes) {}
        void Write(std::string_view text) override { written += text; }
        bool Failed() const override { return written.size() > room; }
        bool Close() override { return !Failed(); }
        std::u16string ErrorText() const override { return u"full"; }
        std::string& written;
        std::size_t room;
    };

    TextExportTest() {
        block.samples.resize(3);
        std::mt19937 random(1);
        for (std::size_t i = 0; i < 450; ++i) block.samples[i % 3].push_back(static_cast<std::int16_t>(random()));
        block.numbers = {4, 0, 7};
        block.scales = {0.0125F, 3e-7F, 100.0F};
    }

    std::vector<std::string> Lines(std::int32_t first, std::int32_t count) {
        texts.clear();
        EXPECT_TRUE(ExportText(u"a.txt", block, first, count, settings, context));
        return Split(texts.at(u"a.txt"), '\n');
    }

    FakeBlock block;
    ChannelSlots slots;
    FormatOptions format;
    std::size_t room = std::string::npos;
    FakeServices services;
    TextExportSettings settings{1, 0, 0, 0, 0, 0, 0, 0};
    std::map<std::u16string, std::string> texts;
    TextExportContext context{slots, format, false, services, [this](const std::u16string& target, std::u16string&) {
                                  return std::make_unique<Sink>(texts[target], room);
                              }};
};

TEST(FixedTextTest, EqualsPrintfButForTheSignOfZero) {
    std::mt19937 random(7);
    const auto check = [](float value, int decimals) {
        std::array<char, FixedText::kRoom> ours{}, theirs{};
        *FixedText(decimals, '.').Write(ours.data(), value) = '\0';
        std::snprintf(theirs.data(), theirs.size(), "%.*f", decimals, static_cast<double>(value));
        // A zero has no sign.
        const bool isZero = std::strpbrk(theirs.data(), "123456789") == nullptr;
        ASSERT_STREQ(theirs.data() + (isZero && theirs[0] == '-' ? 1 : 0), ours.data()) << decimals;
    };
    for (int decimals = 0; decimals <= 14; ++decimals) {
        for (int i = 0; i < 20000; ++i) {
            const auto any = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
            // Halves and their neighbours, and the places where the fast way ends.
            const float half = (static_cast<float>(i) + 0.5F) / static_cast<float>(1 << i % 16);
            const auto limit = static_cast<float>((2147480000.0 + i) / std::pow(10.0, decimals));
            for (const float value : {half, -std::nextafter(half, 0.0F), static_cast<float>(i) * 0.001F, limit, any}) {
                if (std::isfinite(value)) check(value, decimals);
            }
        }
    }
    check(std::numeric_limits<float>::max(), FixedText::kMostDecimals);
    check(std::numeric_limits<float>::denorm_min(), 50);
    std::array<char, 4 * FixedText::kRoom> texts{};
    char* end = texts.data();
    for (const float value : {1e10F, -2.5F, std::nanf(""), -HUGE_VALF}) end = FixedText(2, ',').Write(end, value);
    EXPECT_STREQ("10000000000,00-2,50NaN-Inf", texts.data());
}

TEST_F(TextExportTest, RowsReadBackAsTheValuesFromEitherOrderOfSamples) {
    const auto planar = Lines(1, 150);
    ASSERT_EQ(150U, planar.size());
    block.framed = true;
    EXPECT_EQ(planar, Lines(1, 150));
    // Columns follow the channel numbers: 0, 4, 7 are the second, first and third channel of the block.
    constexpr std::array<std::size_t, 3> order{1, 0, 2};
    constexpr std::array<double, 3> halfStep{0.5e-8, 0.5e-3, 0.5e-2};
    for (std::size_t row = 0; row < 150; ++row) {
        const auto cells = Split(planar[row], '\t');
        ASSERT_EQ(3U, cells.size());
        for (std::size_t i = 0; i < 3; ++i) {
            const float value = static_cast<float>(block.samples[order[i]][row]) * block.scales[order[i]] +
                                static_cast<float>(order[i] + 1);
            EXPECT_NEAR(static_cast<double>(value), std::stod(cells[i]), halfStep[i] * 1.0001);
        }
    }
    context.rawCodes = true;
    EXPECT_EQ(std::to_string(block.samples[1][100]), Split(Lines(101, 1)[0], '\t')[0]);
}

TEST_F(TextExportTest, HeadersTitlesAndXColumn) {
    slots[0].title = u"F\tp1";
    slots[4].shown = false;
    settings = {1, 1, 1, 1, 1, 1, 1, 0};
    format.decimalSeparator = u',';
    block.samples[1].assign(150, 0);
    block.samples[2].assign(150, -3);
    block.rate = 250.0;
    EXPECT_THAT(Lines(149, 99), ElementsAre("2\r", "250\r", "0,004\r", "Time\tF p1\tCh8\r",
                                            "0,0000\t2,00000000\t-297,00\r", "0,0040\t2,00000000\t-297,00\r"));
    settings = {1, 1, 0, 0, 0, 0, 1, 0};
    const auto xOfSecondRow = [&] { return Split(Lines(149, 2)[1], '\t')[0]; };
    format.timeOfDay = true;  // the block starts at noon
    std::vector<std::string> byUnit;
    for (format.timeUnit = 0; format.timeUnit <= 6; ++format.timeUnit) byUnit.push_back(xOfSecondRow());
    EXPECT_THAT(byUnit, ElementsAre("43200,5960", "12:00:00,596", "720,009933", "43200,5960", "43200596,0000",
                                    "43200596000,000", "43200,596000"));
    // Of itself in seconds, or milliseconds above 100 kHz.
    format.timeUnit = 0;
    format.timeOfDay = false;
    format.decimalSeparator = u'.';
    block.rate = 100000.0;
    EXPECT_NEAR(std::stod(xOfSecondRow()), 1e-5, 1e-9);
    block.rate = 100001.0;
    EXPECT_NEAR(std::stod(xOfSecondRow()), 1e-2, 1e-5);
    settings.xFormat = 1;
    EXPECT_EQ("150", xOfSecondRow());
}

TEST_F(TextExportTest, TheFirstLineTellsHowItsChannelsAreShown) {
    settings.rowSize = 1;
    const std::vector<std::string> stored = Lines(1, 2);
    ShownSettings shown;
    context.shown = &shown;
    EXPECT_EQ(Lines(1, 2), stored) << "nothing to tell";
    block.titles = {u"Fp1", u"F\t7", u"ECG"};
    block.units = {u"uV", u"mV", u"%"};
    shown.filters[u"V"] = {.highPass = 0.5, .lowPass = 35};
    shown.unfiltered = {u"F\t7"};
    format.decimalSeparator = u',';
    EXPECT_EQ(Lines(1, 2)[0], "V: 0,5-35 Hz; unfiltered: F 7\r") << "of all three channels";
    EXPECT_EQ(Lines(1, 2)[1], stored[0]);
    context.language = Language::Russian;
    settings.fileType = 0;
    texts.clear();
    EXPECT_TRUE(ExportText(u"a.txt", block, 1, 3, settings, context));
    EXPECT_TRUE(
        texts.at(u"a5.txt").starts_with("\xEF\xBB\xBF"
                                        "0,5-35 \xD0\x93\xD1\x86\r\n3\r\n"));
    EXPECT_TRUE(texts.at(u"a8.txt").starts_with("3\r\n")) << "as stored";
}

TEST_F(TextExportTest, FilesPerChannelAreListedAndWritten) {
    settings.fileType = 0;
    EXPECT_TRUE(ExportText(u"c:\\x.y\\name.txt", block, 1, 3, settings, context));
    EXPECT_THAT(texts, ElementsAre(Key(u"c:\\x.y\\name1.txt"), Key(u"c:\\x.y\\name5.txt"), Key(u"c:\\x.y\\name8.txt")));
    EXPECT_EQ(u"c:\\x.y\\name3", ChannelFileName(u"c:\\x.y\\name", 2));
    texts.clear();
    settings.channels = 1;
    slots[0].shown = false;
    EXPECT_THAT(TextExportFiles(u"d\\a.txt", block, settings, slots), ElementsAre(u"d\\a5.txt", u"d\\a8.txt"));
    ASSERT_TRUE(ExportText(u"d\\a.txt", block, 1, 3, settings, context));
    EXPECT_THAT(texts, ElementsAre(Key(u"d\\a5.txt"), Key(u"d\\a8.txt")));
}

TEST_F(TextExportTest, OnePercentageRunsOverAllFiles) {
    struct : FakeServices {
        std::vector<std::u16string> told;
        void SetStatus(const std::u16string& text) override { told.push_back(text); }
    } status;
    TextExportContext over{slots, format, false, status, context.open};
    settings.fileType = 0;
    // Three channels of 150 rows, written 100 rows at a time.
    ASSERT_TRUE(ExportText(u"a.txt", block, 1, 150, settings, over));
    EXPECT_THAT(status.told,
                ElementsAre(u"Export to text: 0% ", u"Export to text: 16% ", u"Export to text: 33% ",
                            u"Export to text: 50% ", u"Export to text: 66% ", u"Export to text: 83% ", u""));
    status.told.clear();
    ASSERT_TRUE(ExportText(std::u16string(kClipboardTarget), block, 1, 50, settings, over));
    EXPECT_THAT(status.told, ElementsAre(u"Export to text: 0% ", u"Copy text...", u""));
}

TEST_F(TextExportTest, WhatEndsAnExport) {
    room = 0;
    settings.fileType = 0;
    EXPECT_FALSE(ExportText(u"a.txt", block, 1, 150, settings, context));
    EXPECT_EQ(Split(texts.at(u"a1.txt"), '\n').size(), 100U) << "nothing more is formatted for a full disk";
    EXPECT_EQ(texts.size(), 1U) << "nor another file begun";
    EXPECT_THAT(context.failures, ElementsAre(u"full"));
    settings.fileType = 1;
    room = std::string::npos;
    texts.clear();
    EXPECT_FALSE(ExportText(u"b.txt", block, 151, 1, settings, context));
    block.numbers = {40, 41, 42};
    EXPECT_FALSE(ExportText(u"b.txt", block, 1, 1, settings, context));
    EXPECT_TRUE(texts.empty());
    block.numbers = {0, 1, 2};
    context.failures.clear();
    settings.fileType = 0;
    context.open = [](const std::u16string& name, std::u16string& error) { return error = name, nullptr; };
    EXPECT_FALSE(ExportText(u"b.txt", block, 1, 1, settings, context));
    EXPECT_THAT(context.failures, ElementsAre(u"b1.txt", u"b2.txt", u"b3.txt")) << "all are reported";
}

}  // namespace
}  // namespace quillon::testing
