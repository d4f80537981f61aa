#include "app/MarkList.h"

#include <gmock/gmock.h>

namespace quillon {
namespace {

using ::testing::ElementsAre;

class MarkListTest : public ::testing::Test {
  protected:
    MarkListTest() {
        m_block.sampleRate = 200.0;
        m_block.sampleCount = 100000;
        m_block.marks = {{10, u"Blink"},
                         {10, u"spike@@EEG F3", 0.25},
                         {400, u"Сон, стадия 2", 30.0},
                         {401, u"blink again \"x\""},
                         {90000, u"spike@@EEG C4"}};
        m_list.Update();
    }
    std::vector<std::u16string> Texts() {
        std::vector<std::u16string> texts;
        for (std::size_t line = 0; line < m_list.Count(); ++line) texts.push_back(m_list.Cell(line, MarkList::Text));
        return texts;
    }
    ViewBlock m_block;
    FormatOptions m_format;
    MarkList m_list{m_block, m_format};
};

TEST_F(MarkListTest, WhatIsTypedLeavesMarksWithItInTextOrChannel) {
    EXPECT_EQ(m_list.Count(), 5U);
    EXPECT_TRUE(m_list.SetFilter(u"BLINK"));
    EXPECT_THAT(Texts(), ElementsAre(u"Blink", u"blink again \"x\""));
    EXPECT_FALSE(m_list.SetFilter(u"blink"));
    EXPECT_TRUE(m_list.SetFilter(u"eeg c"));
    EXPECT_THAT(m_list.Row(0), ElementsAre(u"0:07:30", u"", u"EEG C4", u"spike"));
    EXPECT_TRUE(m_list.SetFilter(u"СТАДИЯ"));
    EXPECT_EQ(m_list.Mark(0).position, 400);
    m_block.marks.push_back({95000, u"Стадия 3"});
    m_list.Update();
    EXPECT_EQ(m_list.Count(), 2U);
    EXPECT_TRUE(m_list.SetFilter(u"none"));
    EXPECT_EQ(m_list.LineAt(99999), std::nullopt);
}

TEST_F(MarkListTest, AMarkIsFoundByItsTime) {
    EXPECT_EQ(m_list.LineAt(9), std::nullopt);
    EXPECT_EQ(m_list.LineAt(10), 1U);
    EXPECT_EQ(m_list.LineAt(400), 2U);
    EXPECT_EQ(m_list.LineAt(99999), 4U);
    m_list.SetFilter(u"spike");
    EXPECT_EQ(m_list.LineAt(5000), 0U);
}

TEST_F(MarkListTest, TimesAndLengthsAreToldAsTheUserWantsThem) {
    m_format.sampleIndexes = true;
    EXPECT_EQ(m_list.Cell(2, MarkList::Time), u"401");
    m_format = {};
    m_format.timeOfDay = true;
    m_block.startTime = 45000.5;  // noon
    EXPECT_EQ(m_list.Cell(2, MarkList::Time), u"12:00:02");
    EXPECT_EQ(m_list.Cell(2, MarkList::Duration), u"30 s");
    EXPECT_EQ(m_list.Cell(0, MarkList::Duration), u"");
}

TEST_F(MarkListTest, TextsAreCountedAndWrittenAsValues) {
    EXPECT_THAT(m_list.Counts().front(), ElementsAre(u"spike", u"2"));
    EXPECT_EQ(m_list.Counts().size(), 4U);
    m_list.SetFilter(u",");
    EXPECT_EQ(m_list.Csv(), "onset,duration,channel,text\r\n2,30,,\"Сон, стадия 2\"\r\n");
    m_list.SetFilter(u"again");
    EXPECT_EQ(m_list.Csv(), "onset,duration,channel,text\r\n2.005,,,\"blink again \"\"x\"\"\"\r\n");
    m_list.SetFilter(u"f3");
    EXPECT_EQ(m_list.Csv(), "onset,duration,channel,text\r\n0.05,0.25,EEG F3,spike\r\n");
}

}  // namespace
}  // namespace quillon
