#include <gmock/gmock.h>

#include "app/win/MainWindowFixture.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using namespace ::quillon::testing;

TEST_F(MainWindowTest, FirstActivationOpensTheFirstRecording) {
    // Forty channels are two blocks: channels 1 to 32 and 33 to 40, whose numbers start at 0 again.
    static_cast<void>(m_folder.Write(u"b.bin", BinRecording(100.0F, Noise(1000, 40))));
    static_cast<void>(m_folder.Write(u"a.bin", BinRecording(250.0F, Noise(5000, 2))));
    static_cast<void>(m_folder.Write(u"notes.doc", FileBytes().Text("not a recording")));
    Start();
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin", L"b.bin"));
    EXPECT_THAT(Lines(lstBlock), ElementsAre(::testing::EndsWith(L"\t1")));
    EXPECT_EQ(ItemCount(), 2);
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"a.bin - ["));
    EXPECT_EQ(Status(StatusPanel::Size), L"S: 5000");
    EXPECT_EQ(Status(StatusPanel::Rate), L"Fs: 250 Hz");
    const int opened = m_global.view->ScaleY();
    Command(mnuBaseLine + 1);
    EXPECT_EQ(m_global.view->ScaleY(), opened) << "it was opened at the scale that fits it";
    // On a new display the pointer rests in the middle of the screen.
    Point(pbGraph, -1, -1);
    const Pixels graph = Capture(pbGraph);
    EXPECT_GT(graph.Count(TraceColor(0)), 200);
    EXPECT_GT(graph.Count(TraceColor(1)), 200);
    // Another file by a click, its other block, and back.
    const int bottom = Place(lstFile).bottom;
    ClickLine(lstFile, 1);
    EXPECT_EQ(Place(lstFile).bottom, bottom) << "the readout of more channels takes no room from it";
    EXPECT_FALSE(GetWindowLongW(Control(lvCh), GWL_STYLE) & WS_HSCROLL);
    EXPECT_THAT(Lines(lstBlock), ElementsAre(L"1-32\t1", L"33-40\t2"));
    EXPECT_EQ(ItemCount(), 32);
    EXPECT_GT(Capture(pbGraph).Count(TraceColor(8)), 0);
    Command(mnuTabFile + 1);
    ClickLine(lstBlock, 1);
    EXPECT_EQ(ItemCount(), 8);
    EXPECT_EQ(Caption(), L"b.bin - [33-40]");
    EXPECT_EQ(Capture(pbGraph).Count(TraceColor(8)), 0);
    Command(mnuTabFile);
    ClickLine(lstFile, 0);
    EXPECT_EQ(ItemCount(), 2);
    // The scale of the file in between may have stayed; fitted to the same data the picture is the same.
    Command(mnuBaseLine + 1);
    EXPECT_EQ(Capture(pbGraph), graph);
}

TEST_F(MainWindowTest, AnUncheckedChannelIsNotDrawn) {
    static_cast<void>(m_folder.Write(u"a.bin", BinRecording(100.0F, Noise(5000, 3))));
    Start();
    Point(pbGraph, 100, 40);
    Point(pbGraph, -300, 40);
    for (const bool checked : {false, true}) {
        ClickCheckBox(1);
        EXPECT_EQ(m_form->ValuesText().find(u"Ch2:") != std::u16string::npos, checked);
        EXPECT_GT(Capture(pbGraph).Count(TraceColor(0)), 200);
        EXPECT_EQ(Capture(pbGraph).Count(TraceColor(1)) > 0, checked);
    }
}

TEST_F(MainWindowTest, ARefusedFileLeavesTheListsEmptyAndSaysWhy) {
    static_cast<void>(m_folder.Write(u"a.bin", FileBytes().Text("ABIN").Zeros(200)));
    static_cast<void>(m_folder.Write(u"b.bin", BinRecording(100.0F, Noise(1000, 2))));
    Start();
    // It is opened before there is a status bar, and again after another file.
    EXPECT_THAT(Status(), ::testing::StartsWith(L"a.bin: "));
    ClickLine(lstFile, 1);
    EXPECT_EQ(Status(), L"");
    EXPECT_EQ(ItemCount(), 2);
    ClickLine(lstFile, 0);
    EXPECT_THAT(Status(), ::testing::StartsWith(L"a.bin: "));
    EXPECT_THAT(Status(), HasSubstr(L"byte"));
    EXPECT_THAT(Lines(lstBlock), IsEmpty());
    EXPECT_EQ(ItemCount(), 0);
    EXPECT_EQ(Caption(), L"Quillon");
    EXPECT_EQ(Status(StatusPanel::Size), L"");
    EXPECT_EQ(Capture(pbGraph).Count(TraceColor(0)), 0);
    // The reason stands whole in the middle of the graph, however narrow that is.
    const_cast<ViewFile&>(m_global.document->File()).refusal +=
        u": a long reason without an end_that_could_be_broken_at_a_blank_or_anywhere";
    for (const int width : {1000, 600}) {
        SetWindowPos(m_form->Window(), nullptr, 0, 0, width, 500, SWP_NOMOVE | SWP_NOZORDER);
        const Pixels graph = Capture(pbGraph);
        RECT ink{graph.width, graph.height, 0, 0};
        for (int y = 0; y < graph.height; ++y) {
            for (int x = 0; x < graph.width; ++x) {
                const RECT pixel{x, y, x + 1, y + 1};
                const RECT before = ink;
                if (graph.At(x, y) != 0xFFFFFF) UnionRect(&ink, &before, &pixel);
            }
        }
        EXPECT_GT(ink.bottom - ink.top, 40) << "several lines";
        EXPECT_GT(ink.left, 5);
        EXPECT_LT(ink.right, graph.width - 5);
        EXPECT_NEAR(ink.left + ink.right, graph.width, 40);
        EXPECT_NEAR(ink.top + ink.bottom, graph.height, 20);
    }
    for (const int command : {mnuSaveAs, mnuBaseLine, mnuHelp}) {
        const auto state = SendMessageW(Control(tbMain), TB_GETSTATE, static_cast<WPARAM>(command), 0);
        EXPECT_EQ((state & TBSTATE_ENABLED) != 0, command == mnuHelp) << command;
    }
}

TEST_F(MainWindowTest, EverySampleStandsAtItsPixel) {
    // A staircase: sample n has the code 10 x (n mod 8). Of two channels that are alike the first one lies on top.
    std::vector<std::vector<std::int16_t>> frames;
    for (int frame = 0; frame < 4000; ++frame) frames.emplace_back(2, static_cast<std::int16_t>(10 * (frame % 8)));
    static_cast<void>(m_folder.Write(u"stairs.bin", BinRecording(100.0F, frames)));
    Start();
    Command(mnuBaseLine);
    Command(mnuScaleY + 4);  // 50 units per division: a step is 8 rows
    const Pixels graph = Capture(pbGraph);
    const int zero = graph.height / 2;
    for (int x = 0; x + 1 < graph.width; ++x) {
        EXPECT_EQ(graph.At(x, zero - 8 * (x % 8)), TraceColor(0)) << x;
    }
    // One pixel to the right: every sample moves one column to the left.
    PostMessageW(m_form->Window(), WM_HSCROLL, SB_LINERIGHT, 0);
    const Pixels moved = Capture(pbGraph);
    for (int x = 0; x + 1 < moved.width; ++x) EXPECT_EQ(moved.At(x, zero - 8 * ((x + 20) % 8)), TraceColor(0)) << x;
    EXPECT_EQ(m_global.view->Axis().FirstColumn(), 20);
}

TEST(StartUp, AFailureShowsItsMessageAndEndsTheProcessWithoutAWindow) {
    StartUpParts parts = SystemParts();
    parts.program.name = u"Quillon test";
    // A start without a library, and a window that cannot be filled.
    struct BrokenLibrary : FakeLibrary {
        std::int32_t FileTypeCount() const override { throw std::runtime_error("no types"); }
    };
    for (const bool made : {false, true}) {
        parts.makeLibrary = [made](Language) -> std::shared_ptr<RecordingLibrary> {
            if (!made) throw std::runtime_error("missing");
            return std::make_shared<BrokenLibrary>();
        };
        const DialogAnswer answer([made](HWND box) {
            EXPECT_EQ(WindowText(GetDlgItem(box, 0xFFFF)).ends_with(L"no types"), made);
            PostMessageW(box, WM_COMMAND, IDOK, 0);
        });
        EXPECT_EQ(QL_Main(parts, SW_SHOW), 1);
    }
    DWORD process = 0;
    GetWindowThreadProcessId(FindWindowW(L"frmQLMain", nullptr), &process);
    EXPECT_NE(process, GetCurrentProcessId());
}

TEST_F(MainWindowTest, FrequenciesAreTypedIntoTheRowOfFilters) {
    static_cast<void>(m_folder.Write(u"a.bin", BinRecording(100.0F, Noise(5000, 3))));
    Start();
    Command(mnuFilterRow);
    const auto type = [this](const wchar_t* text, int key) {
        SetFocus(Control(cboHighPass));
        SetWindowTextW(Control(cboHighPass), text);
        static_cast<void>(m_form->PreTranslate({GetFocus(), WM_KEYDOWN, static_cast<WPARAM>(key), 0, 0, {}}));
        EXPECT_EQ(GetFocus(), Control(pbGraph));
        const auto& filters = m_global.document->Shown().filters;
        return std::pair(WindowText(Control(cboHighPass)), filters.empty() ? 0.0 : filters.begin()->second.highPass);
    };
    EXPECT_EQ(type(L"0,7", VK_RETURN), std::pair(std::wstring(L"0.7 Hz"), 0.7));
    for (const auto& [text, key] : {std::pair{L"50", VK_RETURN}, {L"x", VK_RETURN}, {L"2", VK_ESCAPE}})
        EXPECT_EQ(type(text, key), std::pair(std::wstring(L"0.7 Hz"), 0.7)) << key;
    EXPECT_NE(Status(), L"");
    // The box that is left takes what was typed, over what was there; the reason of a refusal goes with the next
    // choice.
    const auto chosen = [this](const wchar_t* text, const std::function<void()>& leave) {
        SetFocus(Control(cboHighPass));
        for (const wchar_t* letter = text; *letter != 0; ++letter) SendMessageW(GetFocus(), WM_CHAR, *letter, 0);
        leave();
        return m_global.document->Shown().filters.begin()->second.highPass;
    };
    EXPECT_EQ(chosen(L"0.4",
                     [this] {
                         static_cast<void>(m_form->PreTranslate({GetFocus(), WM_KEYDOWN, VK_TAB, 0, 0, {}}));
                     }),
              0.4);
    EXPECT_EQ(Status(), L"");
    EXPECT_EQ(chosen(L"77", [this] { SetFocus(Control(lstFile)); }), 0.4);
    EXPECT_NE(Status(), L"");
    EXPECT_EQ(WindowText(Control(cboHighPass)), L"0.4 Hz");
    // A row that goes away leaves the keyboard to the graph.
    EXPECT_EQ(chosen(L"0.6", [this] { Command(mnuFilterRow); }), 0.6);
    EXPECT_EQ(GetFocus(), Control(pbGraph));
    EXPECT_FALSE(IsWindowVisible(Control(cboHighPass)));
    EXPECT_EQ(WindowText(Control(cboHighPass)), L"0.6 Hz");
}

}  // namespace
}  // namespace quillon
