#include "dialogs/SplitChoices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace quillon {
namespace {

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
