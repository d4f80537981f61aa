#include <gtest/gtest.h>

#include <limits>

#include "app/OptionSettings.h"
#include "dialogs/OptionsModel.h"

namespace quillon {
namespace {

/// What OK does after some entries were edited.
template <typename Edit>
OptionChanges Apply(OptionValues& values, char16_t separator, Edit edit) {
    OptionEntries entries = ShowOptions(values, separator);
    edit(entries);
    return ApplyOptions(entries, separator, values);
}

TEST(OptionsModel, KeepsWhatItCannotShow) {
    OptionValues values;
    values.timeFormat = values.scaleFormat = values.digitsType = values.gridStyle = 9;
    values.timeIndex = -4;
    values.digitsCount = 12;
    values.gridColor = 35;
    values.waveformCursor = -6;
    values.spectrum = {9, -1, 9, std::numeric_limits<float>::infinity(), 3000.0F, 14};
    values.exportXColumn = values.exportRowStep = -1;
    values.exportXFormat = values.exportFileType = values.exportChannels = -2;
    const OptionEntries shown = ShowOptions(values, u'.');
    for (const int none : {shown.timeFormat, shown.timeIndex, shown.scaleFormat, shown.digitsType, shown.digitsCount,
                           shown.gridStyle, shown.palette, shown.spectrumType, shown.window, shown.fftSize,
                           shown.xFormat, shown.fileType, shown.channels})
        EXPECT_EQ(none, -1);
    EXPECT_TRUE(shown.xColumn && shown.rowStep);

    OptionValues expected = values;
    EXPECT_EQ(Apply(values, u'.', [](OptionEntries& entries) { entries.decibelRange += u"e0 "; }), OptionChanges{});
    EXPECT_EQ(values, expected);
    const OptionChanges changes = Apply(values, u'.', [](OptionEntries& entries) {
        entries.window = 0;
        entries.rowStep = false;
        entries.waveformCursor = 3;
    });
    EXPECT_EQ(changes, (OptionChanges{false, true, false, true}));
    expected.spectrum.window = 0;
    expected.exportRowStep = 0;
    expected.waveformCursor = 3;
    EXPECT_EQ(values, expected);
}

TEST(OptionsModel, TakesNumbersWithinTheirLimitsOnly) {
    const auto typed = [](const char16_t* scaling, const char16_t* range, char16_t separator = u'.') {
        OptionValues values;
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

// Each setting has a number of its own, so that none can be taken for another.
TEST(OptionSettings, GoToTheDialogAndBack) {
    OptionValues values{1,  2,  3,  true, 4,  5,  6,  7,  8,   {9, 10, 11, 12.0F, 13.0F, 14},
                        15, 16, 17, 18,   19, 20, 21, 22, u"f"};
    Settings settings;
    settings.helpLanguage = 2;
    StoreOptions(values, settings);
    EXPECT_EQ(OptionsOf(settings), values);
    EXPECT_EQ(settings.helpLanguage, 2);
    EXPECT_EQ(settings.digitsCount, values.digitsCount);
    EXPECT_EQ(settings.exportXFormat, values.exportXFormat);
    EXPECT_EQ(settings.exportRowRate, values.exportRowRate);
    EXPECT_EQ(settings.exportFileType, values.exportFileType);
}

}  // namespace
}  // namespace quillon
