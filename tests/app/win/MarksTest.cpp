#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "app/win/MainWindowFixture.h"
#include "base/Text.h"
#include "norvik/EdfBuilder.h"
#include "view/GraphPicture.h"
#include "view/QL_ChUtils.h"

namespace quillon::testing {
namespace {

using ::testing::ElementsAre;

class MarksTest : public MainWindowTest {
  protected:
    void SetUp() override {
        m_folder.Write(u"a.bin", SawRecording(20000));
        m_folder.Write(u"b.bin", SawRecording());
        Start();
        SetMarks({{200, u"Blink"}, {2000, u"Spike@@Cz", 0.5}, {14000, u"blink, long", 2.0}});
        Command(mnuTabFile + 2);
        Type(L"x");
        Type(L"");
    }
    void Type(const wchar_t* text) {
        SetWindowTextW(Control(edtMarks), text);
        Pump();
    }
    [[nodiscard]] std::vector<std::wstring> Column(int column) const {
        std::vector<std::wstring> cells;
        for (int line = 0; line < ListView_GetItemCount(Control(lvMarks)); ++line) {
            wchar_t text[100] = {};
            ListView_GetItemText(Control(lvMarks), line, column, text, 100);
            cells.emplace_back(text);
        }
        return cells;
    }
    /// Whether the view shows a sample.
    [[nodiscard]] bool Shows(std::int32_t sample) const {
        const SampleSpan seen = m_global.view->Axis().Visible();
        return sample >= seen.first && sample < seen.End();
    }
    void Press(int control, WPARAM key) {
        SetFocus(Control(control));
        if (!m_form->PreTranslate({Control(control), WM_KEYDOWN, key, 0, 0, {}}))
            SendMessageW(Control(control), WM_KEYDOWN, key, 0);
        Pump();
    }
};

TEST_F(MarksTest, ATextLeavesTheTraceOfTheFirstLaneVisible) {
    m_form->OpenPath(Wide(m_folder.Write(u"c.bin", BinRecording(100, Noise(4000, 20)))));
    Command(mnuLanes);
    const auto traced = [&] {
        Pixels graph;
        EXPECT_TRUE(WaitFor([&] { return (graph = Capture(pbGraph)).Count(TraceColor(0)) > 100; }));
        const std::int32_t left = m_global.view->Axis().ColumnOf(150) + kMarkGap;
        int pixels = 0;
        for (int y = 1; y < 13; ++y)
            for (int x = left; x < left + 100; ++x) pixels += graph.At(x, y) == TraceColor(0) ? 1 : 0;
        return pixels;
    };
    SetMarks({});
    Command(mnuBaseLine + 1);
    const int without = traced();
    SetMarks({{150, u"A text across the trace"}});
    Command(mnuLineWidth);  // draws anew
    EXPECT_GT(traced(), without / 10);
    EXPECT_LT(traced(), without);
}

TEST_F(MarksTest, WhatIsTypedLeavesLinesAndTheViewWalksWithThem) {
    EXPECT_THAT(Column(3), ElementsAre(L"Blink", L"Spike", L"blink, long"));
    EXPECT_THAT(Column(2), ElementsAre(L"", L"Cz", L""));
    Type(L"BLI");
    EXPECT_THAT(Column(3), ElementsAre(L"Blink", L"blink, long"));
    Press(edtMarks, VK_RETURN);
    EXPECT_EQ(GetFocus(), Control(lvMarks));
    EXPECT_TRUE(Shows(200));
    Press(lvMarks, VK_DOWN);
    EXPECT_TRUE(Shows(14000));
    Press(edtMarks, VK_ESCAPE);
    EXPECT_EQ(Column(3).size(), 3U);
    // Letters are typed, they are no commands.
    const bool lanes = m_global.view->LanesOfChannels().Settings().on;
    Press(edtMarks, 'L');
    EXPECT_EQ(m_global.view->LanesOfChannels().Settings().on, lanes);
    // Another recording has others.
    ClickLine(lstFile, 1);
    EXPECT_THAT(Column(3), ::testing::IsEmpty());
}

TEST_F(MarksTest, ARecordingOfMarksOnlyOpensAsTheirList) {
    EdfBuilder scoring{.reserved = "EDF+C", .seconds = "0", .recordCount = 1};
    scoring.Annotate({"+0\x14\x14" + std::string(1, '\0') +
                      "+30\x15"
                      "30\x14W\x14" +
                      std::string(1, '\0')});
    const std::vector<std::uint8_t> bytes = scoring.Bytes();
    m_folder.Write(u"c.edf", std::string(bytes.begin(), bytes.end()));
    Command(mnuTabFile);
    m_form->OpenPath(Wide(m_folder.Path()) + L"\\c.edf");
    Pump();
    EXPECT_EQ(TabCtrl_GetCurSel(Control(tabFile)), 2);
    EXPECT_THAT(Column(3), ElementsAre(L"W"));
    // Who walks through the files stays there.
    Command(mnuTabFile);
    SetFocus(Control(lstFile));
    for (const int line : {1, 2}) ClickLine(lstFile, line);
    EXPECT_EQ(TabCtrl_GetCurSel(Control(tabFile)), 0);
}

TEST_F(MarksTest, AllLinesAreSaved) {
    const std::filesystem::path file = m_folder.File(u"marks.csv");
    m_saveDialog->answer = [&](SaveFileDialog& dialog) {
        EXPECT_EQ(dialog.fileName, u"a.csv");
        dialog.fileName = file.u16string();
        return true;
    };
    Type(L"long");
    Command(mnuMarkList + 1);
    std::ifstream saved(file, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(saved)), {});
    EXPECT_EQ(bytes, "\xEF\xBB\xBFonset,duration,channel,text\r\n140,2,,\"blink, long\"\r\n");
    EXPECT_NE(Status().find(L"marks.csv"), std::wstring::npos);
}

TEST_F(MarksTest, AHundredThousandAreListed) {
    std::vector<BlockMark> marks;
    for (std::int32_t at = 0; at < 100000; ++at) marks.push_back({at / 20, u"mark " + Decimal(at)});
    SetMarks(std::move(marks));
    // The list of before is of no use, and asks for nothing.
    EXPECT_EQ(Column(3), (std::vector<std::wstring>{L"", L"", L""}));
    Type(L"k 9999");
    EXPECT_EQ(Column(3).size(), 11U);
    Type(L"");
    EXPECT_EQ(ListView_GetItemCount(Control(lvMarks)), 100000);
}

}  // namespace
}  // namespace quillon::testing
