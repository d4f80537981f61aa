#include "app/SpectrogramChoices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "app/CommandState.h"
#include "app/Commands.h"
#include "spectrum/QL_FFT.h"

namespace quillon {
namespace {

TEST(SpectrogramChoices, EveryEntryIsSetByItselfAndIsTheOneChosenOfItsField) {
    SpectrumSettings settings;
    CommandState state;
    state.spectrogramShown = true;
    for (state.sampleRate = 0.3; state.sampleRate < 1e6; state.sampleRate *= 1.7) {
        double before = state.sampleRate / 2.0;
        for (const MenuEntry& entry : SpectrogramMenu()) {
            for (int id = entry.id; id < entry.id + entry.count; ++id) {
                const auto choice = SpectrogramChoiceOf(id, state.sampleRate);
                if (!choice) continue;
                if (choice->field == SpectrogramField::Highest && choice->value != 0.0) {
                    EXPECT_LT(choice->value, before);
                    before = choice->value;
                }
                state.spectrum = settings = With(settings, *choice);
                SpectrumSettings repaired = settings;
                QL_FFT::RepairSettings(repaired);
                EXPECT_EQ(repaired, settings) << "within the limits";
                EXPECT_TRUE(IsEnabled(id, state) && (IsChecked(id, state) || !choice->value));
                int checked = 0;
                for (int other = mnuPalette; other < mnuBlankEnds; ++other) {
                    const auto found = SpectrogramChoiceOf(other, state.sampleRate);
                    if (found && found->field == choice->field) checked += IsChecked(other, state) ? 1 : 0;
                }
                EXPECT_EQ(checked, choice->field == SpectrogramField::BlankEnds ? 0 : 1) << id;
            }
        }
        EXPECT_GT(before, state.sampleRate / 200.0) << "not far below what there is";
    }
}

TEST(SpectrogramChoices, WhatMakesNoDifferenceIsDisabled) {
    CommandState state;
    for (int id = mnuPalette; id <= mnuBlankEnds; ++id) EXPECT_FALSE(IsEnabled(id, state)) << "nothing is shown";
    state.spectrogramShown = true;
    EXPECT_TRUE(IsEnabled(mnuLevelRange, state) && IsEnabled(mnuTopLevel, state) && IsEnabled(mnuLevels, state));
    EXPECT_FALSE(IsEnabled(mnuHighestFrequency + 1, state) || IsEnabled(mnuTypedFrequency, state)) << "no rate";
    state.spectrum.type = 1;
    EXPECT_FALSE(IsEnabled(mnuLevelRange, state) || IsEnabled(mnuTopLevel, state) || IsEnabled(mnuLevels, state));
}

TEST(SpectrogramChoices, TypedLevelsAreTakenWithinTheirLimits) {
    const auto typed = [](std::u16string_view high, std::u16string_view low) {
        const auto settings = WithLevels({}, high, low, u',');
        return settings ? std::pair(settings->topLevel, settings->decibelRange) : std::pair(NAN, NAN);
    };
    EXPECT_EQ(typed(u" -12,5 ", u"-72.5"), std::pair(-12.5F, 60.0F));
    EXPECT_EQ(typed(u"40", u"-160"), std::pair(40.0F, 200.0F));
    EXPECT_EQ(typed(u"-180", u"-190"), std::pair(-180.0F, 10.0F));
    for (const auto& [high, low] : {std::pair{u"41", u"0"},
                                    {u"-181", u"-200"},
                                    {u"0", u"-9"},
                                    {u"0", u"-201"},
                                    {u"-60", u"0"},
                                    {u"", u"-60"},
                                    {u"0", u"x"},
                                    {u"inf", u"0"},
                                    {u"nan", u"0"}})
        EXPECT_TRUE(std::isnan(typed(high, low).first)) << typed(high, low).first;
}

}  // namespace
}  // namespace quillon
