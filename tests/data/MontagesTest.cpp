#include "data/Montages.h"

#include <gmock/gmock.h>

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Titles = std::vector<std::u16string>;

TEST(MontagesTest, PairsAreReadAsTheyAreWritten) {
    std::u16string wrong = u"left from before";
    EXPECT_THAT(PairsOf(u" Fp1-F7, F7 - T3;\r\nCz\u2013Pz,,\n fp1-F7, Fp1-F7 ", wrong),
                ElementsAre(ChannelPair{u"Fp1", u"F7"}, ChannelPair{u"F7", u"T3"}, ChannelPair{u"Cz", u"Pz"},
                            ChannelPair{u"fp1", u"F7"}));
    EXPECT_EQ(wrong, u"");
    EXPECT_THAT(PairsOf(u"\"EEG Fp1-REF\"-\"a; \"\"b\"\", c\", x-\"y\"", wrong),
                ElementsAre(ChannelPair{u"EEG Fp1-REF", u"a; \"b\", c"}, ChannelPair{u"x", u"y"}));
    EXPECT_EQ(wrong, u"");
    EXPECT_THAT(PairsOf(u" , ;\n", wrong), IsEmpty());
    EXPECT_EQ(wrong, u"");
}

TEST(MontagesTest, TheFirstWrongPartIsTold) {
    for (const std::u16string part : {u"F7", u"F7-", u"-F7", u"-", u"F7-T3-T5", u"Cz-cz", u"a\"b\"-c", u"\"\"-c",
                                      u"\"a\"b\"-c", u"\"F7-T3, Cz-Pz"}) {
        std::u16string wrong;
        EXPECT_THAT(PairsOf(u"Fp1-F3,  " + part, wrong), ElementsAre(ChannelPair{u"Fp1", u"F3"}));
        EXPECT_EQ(wrong, part);
    }
    std::u16string wrong;
    EXPECT_EQ(PairsOf(u"F7 T3, Fp1-F3, Cz", wrong).size(), 1U);
    EXPECT_EQ(wrong, u"F7 T3");
}

TEST(MontagesTest, NamesMeanTitlesOrElectrodes) {
    const Titles titles{u"EEG Fp1-REF", u"fp1",   u"EEG T7-LE", u"C3-A2",  u"C4..", u" Cz ",
                        u"P4-O2",       u"p4-o2", u"EEG P7",    u"EOG T4", u"",     u"F3-Reference"};
    const auto at = [&](std::u16string_view name) { return static_cast<int>(ChannelNamed(name, titles)); };
    const int none = static_cast<int>(titles.size());
    EXPECT_EQ(at(u"EEG Fp1-REF"), 0);
    EXPECT_EQ(at(u"Fp1"), 1) << "the title before the label";
    EXPECT_EQ(at(u"T3"), 2);
    EXPECT_EQ(at(u"t7"), 2);
    EXPECT_EQ(at(u"c3"), 3);
    EXPECT_EQ(at(u"C4"), 4);
    EXPECT_EQ(at(u"CZ"), 5);
    EXPECT_EQ(at(u"p4-o2"), 7) << "the exact title first";
    EXPECT_EQ(at(u"P4-O2"), 6);
    EXPECT_EQ(at(u"P4"), none) << "a difference is no electrode";
    EXPECT_EQ(at(u"T5"), 8);
    EXPECT_EQ(at(u"T4"), none);
    EXPECT_EQ(at(u""), 10) << "a channel without a title only by none";
    EXPECT_EQ(at(u"F3"), 11);
    const Titles both{u"T7", u"EEG T3"};
    EXPECT_EQ(ChannelNamed(u"T3", both), 1U) << "its own label before the other name";
}

TEST(MontagesTest, StandardMontagesFitReferentialRecordingsOnly) {
    const Titles names{u"Fp1", u"Fp2", u"F7", u"F3", u"Fz", u"F4", u"F8", u"T3", u"C3", u"Cz",
                       u"C4",  u"T4",  u"T5", u"P3", u"Pz", u"P4", u"T6", u"O1", u"O2"};
    Titles full;
    for (const std::u16string& name : names) full.push_back(u"EEG " + name + u"-Ref");
    const Titles bipolar{u"Fp2-F4", u"F4-C4", u"C4-P4", u"P4-O2", u"F8-T4"};
    for (const Language language : {Language::English, Language::Russian}) {
        for (const Montage& montage : StandardMontages(language)) {
            std::u16string wrong;
            for (const ChannelPair& pair : PairsOf(montage.pairs, wrong))
                EXPECT_TRUE(ChannelsOf(pair, full)) << ::testing::PrintToString(pair.Title());
            EXPECT_EQ(wrong, u"");
            EXPECT_TRUE(IsUsable(montage, full));
            EXPECT_FALSE(IsUsable(montage, bipolar));
        }
    }
    EXPECT_EQ(ChannelsOf({u"F3", u"Fz"}, full), (ChannelIndices{3, 4}));
    EXPECT_FALSE(ChannelsOf({u"T3", u"T7"}, full)) << "one electrode under both its names";
    EXPECT_FALSE(IsUsable({u"own", u"Fp1-X1, broken"}, full));
    EXPECT_TRUE(IsUsable({u"own", u"Fp1-X1, broken, O1-O2"}, full));
}

}  // namespace
}  // namespace quillon
