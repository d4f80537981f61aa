#include <gmock/gmock.h>

#include <cmath>
#include <system_error>

#include "app/win/MainWindowFixture.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using namespace ::quillon::testing;

/// Frames of some channels: channel c holds slow waves of its own height.
std::vector<std::vector<std::int16_t>> Waves(int channels, int frames) {
    std::vector<std::vector<std::int16_t>> out;
    for (int frame = 0; frame < frames; ++frame) {
        std::vector<std::int16_t> row;
        for (int channel = 0; channel < channels; ++channel) {
            row.push_back(static_cast<std::int16_t>(300 * (channel + 1) * std::sin(frame / (20.0 + channel))));
        }
        out.push_back(row);
    }
    return out;
}

TEST_F(MainWindowTest, FirstActivationOpensTheFirstRecording) {
    static_cast<void>(m_folder.Write(u"b.bin", BinRecording(100.0F, Waves(3, 5000))));
    static_cast<void>(m_folder.Write(u"a.bin", BinRecording(250.0F, Waves(2, 5000))));
    static_cast<void>(m_folder.Write(u"notes.txt", FileBytes().Text("not a recording")));
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
    const Pixels graph = Capture(pbGraph);
    EXPECT_GT(graph.Count(TraceColor(0)), 200);
    EXPECT_GT(graph.Count(TraceColor(1)), 200);
    // Another file by a click, and back.
    ClickLine(lstFile, 1);
    EXPECT_EQ(ItemCount(), 3);
    EXPECT_GT(Capture(pbGraph).Count(TraceColor(2)), 200);
    ClickLine(lstFile, 0);
    EXPECT_EQ(ItemCount(), 2);
    // The scale of the file in between may have stayed; fitted to the same data the picture is the same.
    Command(mnuBaseLine + 1);
    EXPECT_EQ(Capture(pbGraph), graph);
}

TEST_F(MainWindowTest, UncheckingAChannelTakesItsTraceAway) {
    static_cast<void>(m_folder.Write(u"a.bin", BinRecording(100.0F, Waves(3, 5000))));
    Start();
    const Pixels all = Capture(pbGraph);
    ClickCheckBox(1);
    const Pixels without = Capture(pbGraph);
    EXPECT_EQ(without.Count(TraceColor(1)), 0);
    EXPECT_GT(without.Count(TraceColor(0)), 200);
    EXPECT_FALSE(m_global.document->Slots()[1].shown);
    ClickCheckBox(1);
    EXPECT_EQ(Capture(pbGraph), all);
    Command(mnuChShow + 2);
    for (int channel = 0; channel < 3; ++channel) {
        EXPECT_EQ(Capture(pbGraph).Count(TraceColor(static_cast<std::int16_t>(channel))), 0);
        EXPECT_FALSE(ListView_GetCheckState(Control(lvCh), channel));
    }
    Command(mnuChShow);
    EXPECT_EQ(Capture(pbGraph), all);
    // The choice belongs to the channel number and outlives the file.
    Command(mnuChShow + 1);
    static_cast<void>(m_folder.Write(u"b.bin", BinRecording(100.0F, Waves(4, 100))));
    Command(mnuTabFile);
    ClickLine(lstFile, 1);
    EXPECT_FALSE(ListView_GetCheckState(Control(lvCh), 2));
    EXPECT_TRUE(ListView_GetCheckState(Control(lvCh), 3));
}

TEST_F(MainWindowTest, TheFirstChannelLiesOnTop) {
    auto frames = Waves(1, 3000);
    for (auto& frame : frames) frame = {frame[0], frame[0], frame[0]};
    static_cast<void>(m_folder.Write(u"same.bin", BinRecording(100.0F, frames)));
    Start();
    const Pixels graph = Capture(pbGraph);
    EXPECT_GT(graph.Count(TraceColor(0)), 200);
    EXPECT_EQ(graph.Count(TraceColor(1)), 0);
    EXPECT_EQ(graph.Count(TraceColor(2)), 0);
}

TEST_F(MainWindowTest, ARefusedFileLeavesTheListsEmptyAndSaysWhy) {
    static_cast<void>(m_folder.Write(u"a.bin", BinRecording(100.0F, Waves(2, 1000))));
    static_cast<void>(m_folder.Write(u"b.bin", FileBytes().Text("ABIN").Zeros(200)));
    Start();
    ClickLine(lstFile, 1);
    EXPECT_THAT(Status(StatusPanel::Status), ::testing::StartsWith(L"b.bin: "));
    EXPECT_THAT(Status(StatusPanel::Status), HasSubstr(L"byte"));
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
    // Nothing is open: the commands have nothing to do, and nothing breaks.
    for (const int command : {mnuZoomX + 0, mnuGoTo + 2, mnuZoomY + 1, mnuBaseLine + 1, mnuChShow + 2})
        Command(command);
    ClickLine(lstFile, 0);
    EXPECT_EQ(Status(StatusPanel::Status), L"");
    EXPECT_EQ(ItemCount(), 2);
}

TEST_F(MainWindowTest, AnImpossibleScaleBreaksNothing) {
    FileBytes huge = BinRecording(100.0F, Waves(1, 1000));
    huge.Patch(128 + 64, 0x7B4097CE, 4);  // 1e36
    static_cast<void>(m_folder.Write(u"huge.bin", huge));
    Start();
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"huge.bin"));
    for (const WPARAM key : {WPARAM{'D'}, WPARAM{'B'}, WPARAM{VK_ADD}, WPARAM{VK_NEXT}}) Key(key);
    EXPECT_EQ(Status(StatusPanel::Status), L"");
}

TEST_F(MainWindowTest, EverySampleStandsAtItsPixel) {
    // A staircase: sample n has the code 10 x (n mod 8); at one code per unit and 40 units per division a step is 10
    // rows.
    std::vector<std::vector<std::int16_t>> frames;
    for (int frame = 0; frame < 4000; ++frame) frames.push_back({static_cast<std::int16_t>(10 * (frame % 8))});
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

TEST_F(MainWindowTest, AnotherBlockIsLoadedByAClick) {
    // Forty channels are two blocks: channels 1 to 32 and 33 to 40, whose numbers start at 0 again.
    static_cast<void>(m_folder.Write(u"wide.bin", BinRecording(100.0F, Waves(40, 1000))));
    Start();
    EXPECT_THAT(Lines(lstBlock), ElementsAre(L"1-32\t1", L"33-40\t2"));
    EXPECT_EQ(ItemCount(), 32);
    Command(mnuTabFile + 1);
    ClickLine(lstBlock, 1);
    EXPECT_EQ(ItemCount(), 8);
    EXPECT_EQ(m_global.document->File().currentBlockIndex, 1);
    EXPECT_EQ(Caption(), L"wide.bin - [33-40]");
    EXPECT_EQ(Capture(pbGraph).Count(TraceColor(8)), 0);
    ClickLine(lstBlock, 0);
    EXPECT_EQ(ItemCount(), 32);
    EXPECT_GT(Capture(pbGraph).Count(TraceColor(8)), 0);
}

TEST_F(MainWindowTest, EverySampleRecordingOpens) {
    if (GetFileAttributesW(L"build\\samples\\01 EEG.edf") == INVALID_FILE_ATTRIBUTES) {
        GTEST_SKIP() << "build/samples is not there: make-samples makes it";
    }
    Start(L"build\\samples");
    const std::vector<std::wstring> files = Lines(lstFile);
    ASSERT_GE(files.size(), 4U);
    for (std::size_t file = 0; file < files.size(); ++file) {
        SCOPED_TRACE(std::string(files[file].begin(), files[file].end()));
        ClickLine(lstFile, static_cast<int>(file));
        EXPECT_EQ(Status(StatusPanel::Status), L"");
        ASSERT_GT(ItemCount(), 0);
        const Pixels all = Capture(pbGraph);
        EXPECT_GT(all.Count(TraceColor(m_global.document->Block().channelNumbers[0])), 100)
            << "visible without touching the scale";
        ClickCheckBox(0);
        EXPECT_EQ(Capture(pbGraph).Count(TraceColor(m_global.document->Block().channelNumbers[0])), 0);
        ClickCheckBox(0);
        EXPECT_EQ(Capture(pbGraph), all);
    }
}

TEST(StartUp, AFailureShowsItsMessageAndEndsTheProcessWithoutAWindow) {
    StartUpParts parts = SystemParts();
    parts.program.name = u"Quillon test";
    /// What the box says that ends a start with this library.
    const auto told = [&](const auto& makeLibrary) {
        parts.makeLibrary = makeLibrary;
        std::wstring text;
        {
            const DialogAnswer answer([&](HWND box) {
                text = WindowText(GetDlgItem(box, 0xFFFF));
                PostMessageW(box, WM_COMMAND, IDOK, 0);
            });
            EXPECT_EQ(QL_Main(parts, SW_SHOW), 1);
        }
        return text;
    };
    using Library = std::shared_ptr<RecordingLibrary>;
    EXPECT_THAT(told([](Language) -> Library { throw std::runtime_error("missing"); }),
                ::testing::AnyOf(L"Please reinstall program.", L"Пожалуйста, переустановите программу."));
    EXPECT_THAT(told([](Language) -> Library { throw std::system_error(126, std::system_category(), "core library"); }),
                HasSubstr(L"126"));
    // The window cannot be filled: it is told, too, and nothing stays behind.
    struct BrokenLibrary : FakeLibrary {
        std::int32_t FileTypeCount() const override { throw std::runtime_error("no types"); }
    };
    EXPECT_THAT(told([](Language) { return std::make_shared<BrokenLibrary>(); }), HasSubstr(L"no types"));
    DWORD process = 0;
    GetWindowThreadProcessId(FindWindowW(L"frmQLMain", nullptr), &process);
    EXPECT_NE(process, GetCurrentProcessId());
}

}  // namespace
}  // namespace quillon
