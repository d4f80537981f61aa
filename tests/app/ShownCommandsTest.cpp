#include "app/ShownCommands.h"

#include <gmock/gmock.h>

#include "app/Commands.h"
#include "app/ShownTexts.h"
#include "app/StringIds.h"
#include "data/Montages.h"
#include "support/ViewFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;
using nsp::FilterRefusal;
using nsp::FilterSettings;

TEST(FilterChoices, EveryCommandIsOneChoiceAndChangesItAlone) {
    int commands = 0;
    for (int command = 0; command < 0x2000; ++command) {
        const auto choice = FilterChoiceOf(command);
        if (!choice) continue;
        ++commands;
        // From settings that no offered value equals.
        const FilterSettings before{0.2, 33.0, 3, 55.0, choice->value == 0.0};
        const FilterSettings after = With(before, *choice);
        for (int at = 0; at < kFilterFields; ++at) {
            const auto field = static_cast<FilterField>(at);
            EXPECT_EQ(ValueOf(after, field), field == choice->field ? choice->value : ValueOf(before, field))
                << command;
        }
    }
    EXPECT_EQ(commands, 7 + 8 + 3 + 3 + 2);
}

TEST(FilterChoices, AreRefusedForTheirOwnReasonsOnly) {
    const FilterSettings present{0.5, 70.0, 2, 60.0, false};
    const auto refusal = [&](FilterField field, double value, double rate) {
        return RefusalOf(Tried(present, {field, value}, rate), rate);
    };
    EXPECT_EQ(refusal(FilterField::HighPass, 1.0, 500.0), FilterRefusal::None);
    EXPECT_EQ(refusal(FilterField::HighPass, 70.0, 500.0), FilterRefusal::CornersCross);
    EXPECT_EQ(refusal(FilterField::LowPass, 0.5, 500.0), FilterRefusal::CornersCross);
    // At 100 Hz neither the low pass nor the notch that were chosen elsewhere can be: no hindrance for others.
    EXPECT_EQ(refusal(FilterField::HighPass, 1.0, 100.0), FilterRefusal::None);
    EXPECT_EQ(refusal(FilterField::HighPass, 50.0, 100.0), FilterRefusal::HighPassTooHigh);
    EXPECT_EQ(refusal(FilterField::Order, 4.0, 100.0), FilterRefusal::None);
    EXPECT_EQ(refusal(FilterField::LowPass, 70.0, 100.0), FilterRefusal::LowPassTooHigh);
    EXPECT_EQ(refusal(FilterField::Notch, 50.0, 100.0), FilterRefusal::NotchTooHigh);
    for (const FilterField field : {FilterField::HighPass, FilterField::LowPass, FilterField::Notch})
        EXPECT_EQ(refusal(field, 0.0, 0.5), FilterRefusal::None);
}

TEST(FilterChoices, FrequenciesAreReadAsUsersTypeThem) {
    for (const auto& [text, value] : {std::pair{u"0.3", 0.3},
                                      {u" 0,3 Hz ", 0.3},
                                      {u".3hz", 0.3},
                                      {u"35", 35.0},
                                      {u"35 \u0413\u0446", 35.0},
                                      {u"", 0.0},
                                      {u" oFF", 0.0},
                                      {u"0", 0.0}})
        EXPECT_EQ(ParseFrequency(text, u"Off"), value) << value;
    for (const char16_t* text :
         {u"-1", u"abc", u"1 2x", u"1..2", u"Hz", u"1e3", u"inf", u"nan", u"0x10", u"1,2.3", u"-0"})
        EXPECT_FALSE(ParseFrequency(text, u"Off").has_value()) << static_cast<int>(text[0]);
}

class ShownCommandsTest : public EmptyViewFixture {
  protected:
    ShownCommandsTest() {
        const auto block = Sevens(4, 1000, 100.0);
        block->titles = {u"EEG Fp1-REF", u"EEG F7-REF", u"EEG T3-REF", u"SpO2"};
        block->units = {u"uV", u"mV", u"V", u"%"};
        Load(block);
        m_commands.onChange = [this](bool signals) {
            ++m_changes;
            m_signals += signals ? 1 : 0;
        };
        m_commands.onChoice = [] {};
        m_commands.onPairs = [] {};
        m_commands.onRefused = [this](const std::u16string& reason) {
            reason.empty() ? m_told.clear() : m_told.push_back(reason);
        };
    }

    FormatOptions m_format;
    WindowPlacement m_remembered;
    ShownCommands m_commands{m_document, m_remembered, m_services, m_format, Language::English};
    int m_changes = 0;
    int m_signals = 0;
    std::vector<std::u16string> m_told;
};

TEST_F(ShownCommandsTest, FiltersAreThoseOfTheGroupOfTheCurrentChannel) {
    m_commands.Choose({FilterField::HighPass, 0.5});
    m_document.ChooseChannel(3);
    EXPECT_EQ(m_commands.Filter().highPass, 0.5);  // volts as well
    m_commands.Type(FilterField::LowPass, u"35,5");
    EXPECT_EQ(m_document.Shown().FilterOf(u"V"), (FilterSettings{0.5, 35.5}));
    m_document.ChooseChannel(4);
    EXPECT_TRUE(m_commands.Filter().IsOff());
    m_commands.Choose({FilterField::Notch, 20.0});
    EXPECT_EQ(m_document.Shown().filters.size(), 2U);
    m_commands.Choose({FilterField::Notch, 0.0});
    EXPECT_EQ(m_document.Shown().filters.size(), 1U);
    m_commands.ToggleUnfiltered();
    EXPECT_EQ(m_document.Shown().unfiltered, std::set<std::u16string>{u"SpO2"});
    m_commands.ToggleUnfiltered();
    EXPECT_FALSE(m_commands.IsUnfiltered());
}

TEST_F(ShownCommandsTest, WhatCannotBeIsToldAndChangesNothing) {
    m_commands.Choose({FilterField::HighPass, 10.0});
    const ShownSettings before = m_document.Shown();
    m_changes = 0;
    m_commands.Type(FilterField::LowPass, u"50");
    m_commands.Type(FilterField::LowPass, u"10");
    m_commands.Type(FilterField::LowPass, u"ten");
    ASSERT_EQ(m_told.size(), 3U);
    EXPECT_NE(m_told[0].find(u"50"), std::u16string::npos);
    EXPECT_NE(m_told[1], m_told[0]);
    EXPECT_EQ(m_told[2], m_services.Text(IDS_FILTER_UNUSABLE));
    EXPECT_EQ(m_document.Shown(), before);
    EXPECT_EQ(m_changes, 0);
    m_commands.Choose({FilterField::HighPass, 10.0});
    EXPECT_TRUE(m_told.empty()) << "what was chosen before is a choice, too";
    m_document.CloseCurrentFile();
    m_commands.Choose({FilterField::HighPass, 1.0});
    m_commands.ToggleUnfiltered();
    EXPECT_EQ(m_document.Shown(), before);
}

TEST_F(ShownCommandsTest, CommandsAreAvailableWhereWhatTheyChooseCanBe) {
    m_commands.Choose({FilterField::HighPass, 10.0});
    m_commands.AddMontage(u"Mine: Fp1-F7");
    CommandState state;
    m_commands.Describe(state);
    // 100 samples per second.
    for (const auto& [command, enabled] : {std::pair{mnuLowPass + 1, true},
                                           {mnuLowPass + 4, true},
                                           {mnuLowPass + 5, false},
                                           {mnuNotch + 1, false},
                                           {mnuNotch, true},
                                           {+mnuShowRaw, true},
                                           {+mnuDeleteMontage, true},
                                           {mnuMontage + state.montages, false}})
        EXPECT_EQ(IsEnabled(command, state), enabled) << command;
    for (const int command :
         {mnuHighPass + 6, +mnuLowPass, mnuFilterOrder + 1, +mnuFilterDirection, mnuMontage + state.montage})
        EXPECT_TRUE(IsChecked(command, state)) << command;
    for (const int command : {+mnuHighPass, +mnuReference, mnuFilterOrder + 0})
        EXPECT_FALSE(IsChecked(command, state)) << command;
    m_document.CloseCurrentFile();
    m_commands.Describe(state);
    for (const int command : {+mnuHighPass, +mnuFilterOrder, +mnuUnfiltered, +mnuReference})
        EXPECT_FALSE(IsEnabled(command, state)) << command;
}

TEST_F(ShownCommandsTest, WhatIsToldIsWhatIsShownNow) {
    const auto current = [this] { return TextOfCurrent(m_document, Language::English, u'.'); };
    EXPECT_EQ(current(), u"");
    m_commands.Choose({FilterField::HighPass, 0.5});
    EXPECT_EQ(current(), u"> 0.5 Hz");
    const std::u16string all = TextOfShown(m_document, Language::English, u'.');
    EXPECT_NE(all.find(u"> 0.5 Hz"), std::u16string::npos);
    m_commands.HoldRaw(true);
    EXPECT_EQ(current(), u"");
    m_commands.HoldRaw(false);
    m_commands.ToggleUnfiltered();
    EXPECT_EQ(current(), u"");
    m_document.ChooseChannel(2);
    EXPECT_EQ(current(), u"> 0.5 Hz");
    m_document.ChooseChannel(4);
    EXPECT_EQ(current(), u"");
    m_document.ChooseChannel(1);
    m_commands.SetReference(Reference::Kind::Channel);
    EXPECT_NE(TextOfShown(m_document, Language::English, u'.').find(u"- EEG Fp1-REF"), std::u16string::npos);
}

TEST_F(ShownCommandsTest, RawSignalsAreShownAsLongAsTheyAreHeld) {
    m_commands.Choose({FilterField::HighPass, 0.5});
    const ShownSettings chosen = m_document.Shown();
    for (int repeat = 0; repeat < 3; ++repeat) m_commands.HoldRaw(true);
    EXPECT_EQ(m_document.Shown(), ShownSettings());
    EXPECT_EQ(m_commands.Chosen(), chosen);
    for (int repeat = 0; repeat < 3; ++repeat) m_commands.HoldRaw(false);
    EXPECT_EQ(m_document.Shown(), chosen);
    // A choice goes on from what was chosen, and the release of the key does not take it back.
    m_commands.HoldRaw(true);
    m_commands.Choose({FilterField::LowPass, 30.0});
    m_commands.HoldRaw(false);
    EXPECT_EQ(m_document.Shown().FilterOf(u"V"), (FilterSettings{0.5, 30.0}));
}

TEST_F(ShownCommandsTest, ReferenceAndMontageExcludeEachOther) {
    m_document.ChooseChannel(2);
    m_commands.SetReference(Reference::Kind::Channel);
    EXPECT_EQ(m_signals, 0);
    EXPECT_EQ(m_document.Shown().reference, (Reference{Reference::Kind::Channel, u"EEG F7-REF"}));
    m_commands.AddMontage(u" Mine : Fp1-F7, F7-T3");
    EXPECT_EQ(m_document.Shown().reference, Reference());
    EXPECT_EQ(m_document.Shown().montage, (Montage{u"Mine", u"Fp1-F7, F7-T3"}));
    EXPECT_TRUE(m_commands.ShowsOwnMontage());
    EXPECT_EQ(m_signals, 1);
    EXPECT_EQ(m_commands.MontageIndex(), static_cast<int>(m_commands.Montages().size()) - 1);
    m_commands.SetReference(Reference::Kind::Average);
    EXPECT_FALSE(m_document.Shown().montage.has_value());
    const int own = static_cast<int>(m_commands.Montages().size()) - 1;
    m_commands.ChooseMontage(own);
    m_commands.ChooseMontage(own);  // chosen again: taken off
    EXPECT_EQ(m_commands.MontageIndex(), -1);
    m_commands.AddMontage(u"Mine: Fp1-T3");
    EXPECT_EQ(m_commands.OwnMontages(), (std::vector{Montage{u"Mine", u"Fp1-T3"}}));
    m_commands.DeleteMontage();
    EXPECT_TRUE(m_commands.OwnMontages().empty());
    EXPECT_FALSE(m_document.Shown().montage.has_value());
}

TEST_F(ShownCommandsTest, AMontageIsSeenAlsoWithoutTheChannelsItIsMadeOf) {
    m_document.SetPairs(true);
    const auto shown = [&] {
        std::u16string titles;
        for (std::int16_t signal = 1; signal <= m_document.SignalCount(); ++signal)
            if (m_document.IsShown(signal)) titles += m_document.GetSignal(signal).title + u';';
        return titles;
    };
    m_document.ShowAll(false);
    m_commands.AddMontage(u"Mine: Fp1-F7, F7-T3");
    EXPECT_EQ(shown(), u"Fp1-F7;F7-T3;");
    m_document.ShowAll(false);
    EXPECT_EQ(shown(), u"");
    m_commands.AddMontage(u"Other: Fp1-T3");
    EXPECT_EQ(shown(), u"Fp1-T3;");
    m_document.ShowAll(false);
    m_commands.Choose({FilterField::HighPass, 0.5});
    EXPECT_EQ(shown(), u"") << "a filter leaves the check marks";
}

TEST_F(ShownCommandsTest, FiltersAndMontagesAreRememberedAndDamageIsPassedOver) {
    m_commands.Choose({FilterField::HighPass, 0.5});
    m_document.ChooseChannel(4);
    m_commands.Choose({FilterField::Direction, 1.0});
    m_commands.AddMontage(u"B: Fp1-F7");
    m_commands.AddMontage(u"A: F7-T3");
    m_commands.HoldRaw(true);  // shows nothing of it, and is not remembered
    ShownCommands later(m_document, m_remembered, m_services, m_format, Language::English);
    later.Restore();
    EXPECT_EQ(m_document.Shown().filters, m_commands.Chosen().filters);
    EXPECT_EQ(m_document.Shown().filters.size(), 2U);
    EXPECT_EQ(later.OwnMontages(), m_commands.OwnMontages());
    EXPECT_EQ(later.OwnMontages().size(), 2U);
    m_remembered = {};
    m_remembered.shown = u"\nV\nV\tx;y\n%\t0.5;0;2;0;0\t";
    m_remembered.montages = u"no tab\n\n";
    ShownCommands damaged(m_document, m_remembered, m_services, m_format, Language::English);
    damaged.Restore();
    EXPECT_LE(m_document.Shown().filters.size(), 1U);
    EXPECT_FALSE(m_document.Shown().filters.contains(u"V"));
    EXPECT_TRUE(damaged.OwnMontages().empty());
}

TEST_F(ShownCommandsTest, AMontageIsRefusedForWhatIsWrongInIt) {
    const auto refusal = [this](const char16_t* text) { return m_commands.RefusalOfMontage(text); };
    EXPECT_EQ(refusal(u"Mine: fp1-f7, F7-T7"), u"");
    for (const char16_t* text : {u"", u"Fp1-F7", u": Fp1-F7"})
        EXPECT_EQ(refusal(text), m_services.Text(IDS_MONTAGE_NAMELESS));
    EXPECT_EQ(refusal((StandardMontages(Language::English).front().name + u":Fp1-F7").c_str()),
              m_services.Text(IDS_MONTAGE_TAKEN));
    for (const char16_t* text : {u"Mine:", u"Mine: Fp1-F7, F7"})
        EXPECT_EQ(refusal(text), m_services.Text(IDS_MONTAGE_WRONG));
    EXPECT_EQ(refusal(u"Mine: Fp1-Oz"), m_services.Text(IDS_MONTAGE_NO_CHANNEL));
}

}  // namespace
}  // namespace quillon
