#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "dialogs/OptionsLayout.h"
#include "dialogs/OptionsModel.h"
#include "dialogs/SplitChoices.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

struct Values {
    DisplaySettings display;
    TextExportSettings text;
    SpectrumSettings spectrum;
    operator OptionValues() { return {display, text, spectrum}; }
    friend bool operator==(const Values&, const Values&) = default;
};

/// What OK does after some entries were edited.
template <typename Edit>
OptionChanges Apply(Values& values, char16_t separator, Edit edit) {
    OptionEntries entries = ShowOptions(values, separator);
    edit(entries);
    return ApplyOptions(entries, separator, values);
}

TEST(OptionsModel, KeepsWhatItCannotShow) {
    Values values;
    values.display.timeFormat = values.display.scaleFormat = values.display.digitsType = values.display.gridStyle = 9;
    values.display.timeIndex = -4;
    values.display.digitsCount = 12;
    values.display.gridColor = 35;
    values.display.waveformCursor = -6;
    values.spectrum = {9, -1, 9, std::numeric_limits<float>::infinity(), 3000.0F, 14};
    values.text.xColumn = values.text.rowStep = -1;
    values.text.xFormat = values.text.fileType = values.text.channels = -2;
    const OptionEntries shown = ShowOptions(values, u'.');
    for (const int none : {shown.timeFormat, shown.timeIndex, shown.scaleFormat, shown.digitsType, shown.digitsCount,
                           shown.gridStyle, shown.palette, shown.spectrumType, shown.window, shown.fftSize,
                           shown.xFormat, shown.fileType, shown.channels})
        EXPECT_EQ(none, -1);
    EXPECT_TRUE(shown.xColumn && shown.rowStep);

    Values expected = values;
    EXPECT_EQ(Apply(values, u'.', [](OptionEntries& entries) { entries.decibelRange += u"e0 "; }), OptionChanges{});
    EXPECT_EQ(values, expected);
    const OptionChanges changes = Apply(values, u'.', [](OptionEntries& entries) {
        entries.window = 0;
        entries.rowStep = false;
        entries.waveformCursor = 3;
    });
    EXPECT_EQ(changes, (OptionChanges{false, true, false, true}));
    expected.spectrum.window = 0;
    expected.text.rowStep = 0;
    expected.display.waveformCursor = 3;
    EXPECT_EQ(values, expected);
}

/// Whether both have the same entries of the options table.
void ExpectSame(const OptionEntries& shown, const OptionEntries& entries, int id) {
    for (const OptionChoice& choice : OptionChoices())
        EXPECT_EQ(shown.*choice.entry, entries.*choice.entry) << id << " and " << choice.id;
    for (const OptionTick& tick : OptionTicks())
        EXPECT_EQ(shown.*tick.entry, entries.*tick.entry) << id << " and " << tick.id;
}

TEST(OptionsModel, EveryPositionOfEveryControlIsStoredByItselfAndShownAgain) {
    const testing::FakeServices services;
    for (const OptionChoice& choice : OptionChoices()) {
        const int count =
            choice.buttons > 0 ? choice.buttons : static_cast<int>(OptionLines(services, choice.id).size());
        ASSERT_GT(count, 1) << choice.id;
        for (int position = 0; position < count; ++position) {
            Values values;
            OptionEntries entries = ShowOptions(values, u'.');
            entries.*choice.entry = position;
            ApplyOptions(entries, u'.', values);
            ExpectSame(ShowOptions(values, u'.'), entries, choice.id);
        }
    }
    for (const OptionTick& tick : OptionTicks()) {
        Values values;
        OptionEntries entries = ShowOptions(values, u'.');
        entries.*tick.entry = !(entries.*tick.entry);
        ApplyOptions(entries, u'.', values);
        ExpectSame(ShowOptions(values, u'.'), entries, tick.id);
    }
}

TEST(OptionsModel, TakesNumbersWithinTheirLimitsOnly) {
    const auto typed = [](const char16_t* scaling, const char16_t* range, char16_t separator = u'.') {
        Values values;
        Apply(values, separator, [&](OptionEntries& entries) {
            entries.amplitudeScale = scaling;
            entries.decibelRange = range;
        });
        return std::pair(values.spectrum.amplitudeScale, values.spectrum.decibelRange);
    };
    const std::pair kept(100.0F, 120.0F);
    for (const char16_t* number : {u"0", u"-5", u"abc", u"", u" ", u"1e999", u"1e39", u"1e-60", u"nan", u"inf", u"1 %",
                                   u"1,000.5", u"5 0", u"٣"})
        EXPECT_EQ(typed(number, number), kept);
    for (const char16_t* range : {u"250", u"9.9", u"200.1", u"-60"}) EXPECT_EQ(typed(u"100", range), kept);
    EXPECT_EQ(typed(u"12.5", u"10"), std::pair(12.5F, 10.0F));
    EXPECT_EQ(typed(u"12,5", u"200"), std::pair(12.5F, 200.0F));
    EXPECT_EQ(typed(u"12.5", u"\u00A0 1e2 ", u','), std::pair(12.5F, 100.0F));
    EXPECT_EQ(typed(u"12\u066B5", u"60", u'\u066B'), std::pair(12.5F, 60.0F));
}

/// 100 s at 100 Hz.
const SplitSource kSource{10000, 100.0, u"/data/night.wav", u','};

TEST(SplitChoices, WhatWasNeverChosenSuitsTheBlockAndAStepIsTheSize) {
    const auto shown = [](const SplitSettings& settings) {
        const SplitChoices choices = ShowSplitSettings(settings, kSource);
        return std::tuple(choices.size[0], choices.step[0], choices.size[1], choices.step[1]);
    };
    using Texts = std::tuple<std::u16string, std::u16string, std::u16string, std::u16string>;
    EXPECT_EQ(shown({}), Texts(u"10", u"10", u"1000", u"1000"));
    EXPECT_EQ(shown({.samplesSize = 300, .timeSize = 2.5F}), Texts(u"2,5", u"2,5", u"300", u"300"));
    EXPECT_EQ(shown({.samplesStep = 7, .timeStep = 0.5F}), Texts(u"10", u"0,5", u"1000", u"7"));
    EXPECT_EQ(shown({.samplesStep = -1, .samplesSize = -1, .timeStep = NAN, .timeSize = INFINITY}),
              Texts(u"10", u"10", u"1000", u"1000"));
}

TEST(SplitChoices, KeptOnesAreShownAgainAndAnInvalidEntryKeepsItsSetting) {
    const SplitChoices typed{true, {u"1,5", u"300"}, {u"0,1", u"200"}, true, true, false};
    SplitSettings settings;
    KeepSplitSettings(typed, kSource, settings);
    const SplitChoices shown = ShowSplitSettings(settings, kSource);
    EXPECT_EQ(std::tie(shown.bySamples, shown.size, shown.step, shown.sampleNames, shown.baseName),
              std::tie(typed.bySamples, typed.size, typed.step, typed.sampleNames, typed.baseName));
    KeepSplitSettings({false, {u"x", u"400"}, {u"2", u"0"}, false, false, false}, kSource, settings);
    EXPECT_EQ(std::tuple(settings.timeSize, settings.timeStep, settings.samplesSize, settings.samplesStep),
              std::tuple(1.5F, 2.0F, 400, 200));
    EXPECT_EQ(std::tuple(settings.type, settings.fileIndex, settings.baseName), std::tuple(0, 0, 0));
}

TEST(SplitChoices, OnlyTheSelectedModeCountsForFaultsAndPlan) {
    SplitChoices choices{false, {u"2", u"x"}, {u"1", u"-1"}, false, true, false};
    EXPECT_FALSE(FindSplitFault(choices, kSource));
    const SplitPlan plan = MakeSplitPlan(choices, kSource);
    EXPECT_EQ(std::tuple(plan.blockSamples, plan.size, plan.step), std::tuple(10000, 200, 100));
    EXPECT_EQ(plan.Name(0), u"night_01.wav");
    choices.bySamples = true;
    EXPECT_FALSE(FindSplitFault(choices, kSource)->step) << "the size is named first";
    choices.size[1] = u"500";
    const std::optional<SplitFault> fault = FindSplitFault(choices, kSource);
    EXPECT_TRUE(fault->step);
    EXPECT_EQ(fault->typed, u"-1");
    choices.step[1] = u"3000000000";
    EXPECT_EQ(FindSplitFault(choices, kSource)->fault, EntryFault::TooLarge);
}

}  // namespace
}  // namespace quillon
