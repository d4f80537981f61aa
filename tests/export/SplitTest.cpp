#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <tuple>

#include "base/Text.h"
#include "export/SplitPlan.h"
#include "export/SplitRun.h"

namespace quillon {
namespace {

SplitPlan Plan(std::int32_t samples, std::int32_t size, std::int32_t step, bool sampleNames = false) {
    return {samples, size, step, sampleNames, u"", u"bin"};
}

TEST(SplitPlan, CutsWholePiecesAndCountsThem) {
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    const std::tuple<SplitPlan, std::int64_t> cases[] = {
        {Plan(1000, 100, 100), 10}, {Plan(1000, 300, 200), 4},   {Plan(1000, 1000, 1), 1},  {Plan(1000, 1099, 100), 1},
        {Plan(1000, 1100, 100), 0}, {Plan(1000, 2000, 1), -999}, {Plan(0, 10, 100), 0},     {Plan(most, 1, 1), most},
        {Plan(1, most, most), 1},   {Plan(1000, 1, 500), 2},     {Plan(1000, 501, 500), 1},
    };
    for (const auto& [plan, pieces] : cases) {
        EXPECT_EQ(plan.PieceCount(), pieces) << plan.size << " " << plan.step;
        if (pieces < 1) continue;
        const std::int64_t end = std::int64_t{plan.FirstSample(pieces - 1)} - 1 + plan.SampleCount(pieces - 1);
        EXPECT_LE(end, plan.blockSamples);
        EXPECT_GT(end + plan.step, plan.blockSamples) << "no further piece fits";
    }
    const SplitPlan overlapping = Plan(1000, 300, 200);
    EXPECT_EQ(overlapping.FirstSample(3), 601);
    EXPECT_EQ(overlapping.SampleCount(3), 300);
    EXPECT_EQ(Plan(1000, 1099, 100).SampleCount(0), 1000);
    const SplitPlan ten = Plan(1000, 100, 100);
    EXPECT_EQ(ten.Percent(0, 0, 0), 0);
    EXPECT_EQ(ten.Percent(3, 50, 100), 35);
    EXPECT_EQ(ten.Percent(9, 100, 100), 100);
}

TEST(SplitPlan, KnowsTheNamesOfItsPiecesOnly) {
    for (const bool sampleNames : {false, true}) {
        SplitPlan plan = Plan(1000, 300, 200, sampleNames);
        plan.prefix = u"Запись7_";
        for (std::int64_t piece = 0; piece < plan.PieceCount(); ++piece) {
            EXPECT_EQ(plan.PieceOf(plan.Name(piece)), piece);
            EXPECT_EQ(plan.PieceOf(u"зАПИСЬ7_" + plan.Name(piece).substr(8, 9) + u".BIN"),
                      sampleNames ? std::optional(piece) : std::nullopt);
        }
        for (const char16_t* name : {u"Запись7_0.bin", u"Запись7_5.bin", u"Запись7_01.bin", u"Запись7_1.wav", u"1.bin",
                                     u"Запись7_", u"Запись7_0100-0399.bin", u"Запись7_0800-1099.bin", u"",
                                     u"Запись7_0000-0299.bin.bak", u"Запись7_99999999999999999999999.bin"})
            EXPECT_EQ(plan.PieceOf(name), std::nullopt) << Utf8(name);
    }
    SplitFolderState folder;
    folder.files = {u"1.bin", u"2.BIN", u"02.bin", u"4.bin", u"5.bin", u"notes.txt"};
    EXPECT_EQ(CountReplaced(Plan(1000, 300, 200), folder), 3);
}

TEST(SplitPlan, TakesPositiveNumbersOnly) {
    const std::string zeros(400, '0');
    const std::u16string tiny = u"0." + Utf16(zeros) + u"1";
    const std::u16string huge = u"1" + Utf16(zeros);
    for (const char16_t* text : {u"", u" ", u"abc", u"0", u"-1", u"+1", u"1e9", u"1 0", u"1.2.3", u".", u",", u"0,0",
                                 u"0x10", u"١", u"nan", u"inf"}) {
        EXPECT_EQ(ParseSplitSeconds(text, 100.0).fault, EntryFault::NotPositive) << Utf8(text);
        EXPECT_EQ(ParseSplitSamples(text).fault, EntryFault::NotPositive) << Utf8(text);
    }
    EXPECT_EQ(ParseSplitSamples(u"1.5").fault, EntryFault::NotPositive);
    EXPECT_EQ(ParseSplitSamples(u" 2147483647 ").samples, 2147483647);
    for (const std::u16string& text : {std::u16string(u"2147483648"), std::u16string(u"18446744073709551617"), huge})
        EXPECT_EQ(ParseSplitSamples(text).fault, EntryFault::TooLarge) << Utf8(text);

    const std::tuple<std::u16string, double, std::int32_t> seconds[] = {
        {u"1.5", 100.0, 150}, {u"1,5", 100.0, 150}, {u" 10 ", 256.0, 2560}, {u".5", 3.0, 2},  {u"2.", 0.25, 1},
        {u"0.025", 100.0, 2}, {u"0.035", 100.0, 4}, {u"0.001", 100.0, 1},   {tiny, 100.0, 1}, {u"0.1", 44100.0, 4410}};
    for (const auto& [text, rate, samples] : seconds) {
        EXPECT_EQ(ParseSplitSeconds(text, rate).samples, samples) << Utf8(text);
        EXPECT_EQ(ParseSplitSeconds(text, rate).fault, EntryFault::None) << Utf8(text);
    }
    EXPECT_EQ(ParseSplitSeconds(u"1\u066B5", 100.0).fault, EntryFault::NotPositive);
    EXPECT_EQ(ParseSplitSeconds(u"1\u066B5", 100.0, u'\u066B').samples, 150) << "the system's separator";
    EXPECT_EQ(ParseSplitSeconds(u"21474836.48", 100.0).fault, EntryFault::TooLarge);
    EXPECT_EQ(ParseSplitSeconds(u"21474836.47", 100.0).samples, 2147483647);
    EXPECT_EQ(ParseSplitSeconds(huge, 100.0).fault, EntryFault::TooLarge);
    EXPECT_EQ(ParseSplitSeconds(u"1", std::numeric_limits<double>::quiet_NaN()).fault, EntryFault::TooLarge);

    EXPECT_EQ(FirstSplitSize(kSplitSeconds, 3600.0), 300);
    EXPECT_EQ(FirstSplitSize(kSplitSeconds, 0.5), 1);
    EXPECT_EQ(FirstSplitSize(kSplitSamples, 2147483647.0), 100000);
}

TEST(SplitPlan, TakesFolderAndNamesFromTheRecording) {
    using Case = std::array<const char16_t*, 4>;
    for (const auto& [recording, folder, base, extension] :
         {Case{u"C:\\Записи\\Ночь 1.EDF", u"C:\\Записи\\Ночь 1", u"Ночь 1", u"bin"},
          Case{u"C:\\data.2026\\rec", u"C:\\data.2026\\rec_pieces", u"rec", u"bin"},
          Case{u"/data.d/a.b.WaV", u"/data.d/a.b", u"a.b", u"wav"},
          Case{u"D:\\.wav", u"D:\\.wav_pieces", u".wav", u"bin"}, Case{u"D:\\a. .", u"D:\\a_pieces", u"a. ", u"bin"},
          Case{u"\\\\server\\share\\x. .wav", u"\\\\server\\share\\x", u"x. ", u"wav"},
          Case{u"D:\\a.wave", u"D:\\a", u"a", u"bin"}}) {
        EXPECT_EQ(SplitFolderName(recording), folder);
        EXPECT_EQ(SplitBaseName(recording), base);
        EXPECT_EQ(SplitExtension(recording), extension);
    }
}

TEST(SplitPlan, ObstaclesAreFoundBeforeTheRun) {
    using Kind = SplitFolderState::Kind;
    const SplitPlan plan = Plan(1000, 100, 100);
    EXPECT_EQ(FindSplitObstacle(plan, {Kind::Unreadable, false, {}}), SplitObstacle::Unreadable);
    EXPECT_EQ(FindSplitObstacle(Plan(1000, 1100, 100), {}), SplitObstacle::NoPieces);
    SplitPlan longest = plan;
    longest.prefix = std::u16string(249, u'a');
    EXPECT_EQ(FindSplitObstacle(longest, {}), SplitObstacle::None);
    longest.prefix += u'a';
    EXPECT_EQ(FindSplitObstacle(longest, {}), SplitObstacle::NameTooLong);
}

/// Runs four pieces, one step of which fails; returns the calls that were made.
std::string Events(const std::string& failing, SplitResult& result) {
    std::string events;
    const auto happens = [&](const std::string& event) {
        events += event + ' ';
        return event != failing;
    };
    SplitSystem system;
    system.deleteFiles = [&] { return happens("delete") ? u"" : u"locked.bin"; };
    system.createFolder = [&] { return happens("create"); };
    system.exportPiece = [&](std::int64_t, const std::u16string& name) { return happens(Utf8(name)); };
    int pending = 0;
    system.runPending = [&] { return happens("p" + std::to_string(pending++)); };
    result = RunSplit(Plan(1000, 300, 200), system);
    return events;
}

TEST(SplitRun, EndsWhereSomethingFails) {
    // What fails, what happens until the end, how it ends, the pieces that are written, and the name that is reported.
    using Case = std::tuple<std::string, std::string, SplitEnd, std::int64_t, std::u16string>;
    const std::string two = "delete p0 create 1.bin p1 2.bin ";
    const Case cases[] = {
        {"", two + "p2 3.bin p3 4.bin p4 ", SplitEnd::Done, 4, u"4.bin"},
        {"delete", "delete ", SplitEnd::DeleteFailed, 0, u"locked.bin"},
        {"p0", "delete p0 ", SplitEnd::Stopped, 0, u""},
        {"create", "delete p0 create ", SplitEnd::FolderFailed, 0, u""},
        {"2.bin", two + "p2 ", SplitEnd::PieceFailed, 1, u"2.bin"},
        {"p2", two + "p2 ", SplitEnd::Stopped, 2, u"2.bin"},
        {"p4", two + "p2 3.bin p3 4.bin p4 ", SplitEnd::Done, 4, u"4.bin"},
    };
    for (const auto& [failing, events, end, written, name] : cases) {
        SplitResult result;
        EXPECT_EQ(Events(failing, result), events) << failing;
        EXPECT_EQ(std::tuple(result.end, result.written, result.name), std::tuple(end, written, name)) << failing;
    }
}

}  // namespace
}  // namespace quillon
