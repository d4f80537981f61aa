// Recordings that are opened again: at the next start, from the list of recent ones, and by the dialog.
#include <gmock/gmock.h>

#include <fstream>

#include "app/win/MainWindowFixture.h"
#include "base/Text.h"
#include "norvik/EdfBuilder.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using namespace ::quillon::testing;

class ComingBackTest : public MainWindowTest {
  protected:
    ComingBackTest() {
        static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
        static_cast<void>(m_folder.Write(u"b.bin", BinRecording(100.0F, Noise(9000, 40))));
        std::filesystem::create_directory(m_folder.File(u"Другая & 100%"));
        static_cast<void>(m_folder.Write(u"Другая & 100%/день.bin", SawRecording(3000)));
    }
    /// Closes the window and starts the program again, with what the settings keep.
    void StartAgain(const std::wstring& path = {}) {
        TearDown();
        Create(Wide(m_global.settings.filesPath), path);
        Show();
    }
    /// The second block of b.bin, some pages from its start, with a selection.
    void GoSomewhere(bool lanes) {
        ClickLine(lstFile, 1);
        Command(mnuTabFile + 1);
        ClickLine(lstBlock, 1);
        if (lanes) Command(mnuLanes);
        Command(lanes ? mnuPage + 1 : mnuScaleX + 1);
        for (const int command : {mnuGoTo + 2, mnuSelect + 1, mnuMove + 3, mnuMove + 5}) Command(command);
    }
    /// The menu of recent recordings as it opens, a line each; grey ones in brackets.
    [[nodiscard]] std::vector<std::wstring> Recent() const {
        const HMENU menu = GetSubMenu(GetSubMenu(GetMenu(m_form->Window()), 0), 1);
        SendMessageW(m_form->Window(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), 1);
        std::vector<std::wstring> lines;
        for (int at = 0; at < GetMenuItemCount(menu); ++at) {
            const auto position = static_cast<UINT>(at);
            wchar_t text[256] = {};
            GetMenuStringW(menu, position, text, 256, MF_BYPOSITION);
            std::wstring line = std::wstring(text).substr(0, std::wstring_view(text).find(L'\t'));
            if (line.empty()) continue;
            if ((GetMenuState(menu, position, MF_BYPOSITION) & MF_GRAYED) != 0) line = L'[' + line + L']';
            lines.push_back(line);
        }
        return lines;
    }
    [[nodiscard]] LRESULT Selected() const { return SendMessageW(Control(lstFile), LB_GETCURSEL, 0, 0); }
};

TEST_F(ComingBackTest, AStartShowsWhatTheLastOneEndedWith) {
    Start();
    for (const bool lanes : {false, true}) {
        SCOPED_TRACE(lanes);
        GoSomewhere(lanes);
        const Pixels graph = Capture(pbGraph);
        const std::wstring caption = Caption();
        const std::u16string values = m_form->ValuesText();
        EXPECT_THAT(Utf8(values), StartsWith("dX:"));
        StartAgain();
        EXPECT_EQ(Caption(), caption);
        EXPECT_EQ(Selected(), 1);
        EXPECT_EQ(SendMessageW(Control(lstBlock), LB_GETCURSEL, 0, 0), 1);
        EXPECT_EQ(TabCtrl_GetCurSel(Control(tabPath)), 1);
        EXPECT_EQ(m_form->ValuesText(), values);
        EXPECT_EQ(Capture(pbGraph), graph);
        // Another recording begins as ever.
        ClickLine(lstFile, 0);
        EXPECT_EQ(m_global.view->Axis().FirstColumn(), 0);
        EXPECT_FALSE(m_global.view->Selected().active);
    }
    // The folder alone, since nothing is open in it, and then what it had.
    ClickLine(lstFile, 1);
    m_form->OpenPath(m_folder.File(u"Другая & 100%").wstring());
    StartAgain();
    EXPECT_THAT(Caption(), StartsWith(L"день.bin")) << "the first one";
}

TEST_F(ComingBackTest, WhatWasNamedOrIsNotAsItWasComesFirst) {
    Start();
    GoSomewhere(false);
    const LastRecording left = [&] { return TearDown(), m_global.settings.last; }();
    const std::u16string folder = m_global.settings.filesPath;
    EXPECT_THAT(Utf8(left.place), StartsWith("block=1;zoom=1;"));
    const auto start = [&](const std::wstring& path) {
        m_global.settings.last = left;
        m_global.settings.filesPath = folder;
        Create(Wide(folder), path);
        Show();
    };
    start(m_folder.File(u"b.bin").wstring());
    EXPECT_THAT(Caption(), StartsWith(L"b.bin - [1-32]")) << "a recording that is named is shown from its start";
    TearDown();
    // Shorter than the place, damaged, gone.
    static_cast<void>(m_folder.Write(u"b.bin", BinRecording(100.0F, Noise(500, 40))));
    start({});
    EXPECT_THAT(Caption(), StartsWith(L"b.bin - [33-40]"));
    EXPECT_GT(m_global.view->Axis().Visible().count, 0);
    TearDown();
    static_cast<void>(m_folder.Write(u"b.bin", "no recording"));
    start({});
    EXPECT_THAT(Status(), StartsWith(L"b.bin: "));
    TearDown();
    EXPECT_EQ(m_global.settings.last.path, left.path) << "it may be whole again";
    std::filesystem::remove(m_folder.File(u"b.bin"));
    start({});
    EXPECT_THAT(Caption(), StartsWith(L"a.bin"));
    EXPECT_EQ(Status(), L"");
    TearDown();
    // A drive that is not connected now: neither folder nor recording is forgotten.
    m_global.settings.last = left;
    const DocumentsScope documents(m_folder.File(u"Другая & 100%").wstring());
    Create(m_folder.File(u"no such folder").wstring());
    Show();
    EXPECT_THAT(Caption(), StartsWith(L"день.bin"));
    TearDown();
    EXPECT_EQ(m_global.settings.last.path, left.path);
    EXPECT_EQ(m_global.settings.last.place, left.place);
}

TEST_F(ComingBackTest, APlaceThatIsReadOnlyLaterIsGoneToThenUnlessTheUserMoves) {
    // Opening it finds the onsets of some 250 records; there is a gap before record 500.
    EdfBuilder edf{.reserved = "EDF+D", .recordCount = 600, .signals = {{.samplesPerRecord = 10000}}};
    std::vector<std::string> onsets;
    for (int record = 0; record < 600; ++record)
        onsets.push_back('+' + std::to_string(record < 500 ? record : record + 9) + "\x14\x14" + '\0');
    edf.Annotate(onsets);
    const auto bytes = edf.Bytes();
    static_cast<void>(m_folder.Write(u"0.edf", std::string(bytes.begin(), bytes.end())));
    const auto readOn = [this] {
        while (m_form->RunSlice()) Pump();
    };
    Start();
    readOn();
    Command(mnuTabFile + 1);
    EXPECT_EQ(Lines(lstBlock).size(), 2U);
    ClickLine(lstBlock, 1);
    Command(mnuGoTo + 2);
    const TimeAxis::Place left = m_global.view->Axis().GetPlace();
    for (const bool moves : {false, false, true}) {
        SCOPED_TRACE(moves);
        StartAgain();
        // The place is kept for a start that ends too early.
        StartAgain();
        // The system's timer may have read on already.
        const bool stays = moves && m_global.document->File().blockCount == 1;
        if (moves) Command(mnuMove + 5);
        readOn();
        EXPECT_EQ(m_global.document->File().currentBlockIndex, stays ? 0 : 1);
        EXPECT_EQ(SendMessageW(Control(lstBlock), LB_GETCURSEL, 0, 0), stays ? 0 : 1);
        EXPECT_EQ(m_global.view->Axis().GetPlace() == left, !moves);
    }
}

TEST_F(ComingBackTest, RecentRecordingsAreOpenedAgain) {
    int stored = 0;
    m_global.storeRecordings = [&] { ++stored; };
    Start();
    m_form->OpenPath(m_folder.File(u"Другая & 100%/день.bin").wstring());
    m_form->OpenPath(m_folder.File(u"b.bin").wstring());
    EXPECT_EQ(stored, 2) << "the start does not wait for that";
    EXPECT_THAT(Recent(), ElementsAre(L"&1  b.bin", L"&2  день.bin", L"&3  a.bin", L"&Clear List"));
    Command(mnuRecent + 1);
    EXPECT_THAT(Caption(), StartsWith(L"день.bin"));
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"день.bin"));
    std::filesystem::remove(m_folder.File(u"b.bin"));
    EXPECT_THAT(Recent(), ElementsAre(L"&1  день.bin", L"[&2  b.bin]", L"&3  a.bin", L"&Clear List"));
    Command(mnuClearRecent);
    EXPECT_THAT(Recent(), ElementsAre(L"[(no recordings yet)]", L"[&Clear List]"));
    Command(mnuRecent);
    EXPECT_THAT(Caption(), StartsWith(L"день.bin"));
}

TEST_F(ComingBackTest, TheDialogOpensAnyFileInItsFolder) {
    static_cast<void>(m_folder.Write(u"Другая & 100%/данные.raw", SawRecording(500)));
    Start();
    const std::wstring raw = m_folder.File(u"Другая & 100%/данные.raw").make_preferred().wstring();
    CommandWith(mnuOpen, [&](HWND dialog) {
        EXPECT_EQ(WindowText(dialog), L"Open Recording");
        SendDlgItemMessageW(dialog, 0x47C, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(raw.c_str()));
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    EXPECT_THAT(Caption(), StartsWith(L"данные.raw"));
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"день.bin"));
    EXPECT_EQ(Selected(), -1);
    CommandPressing(mnuOpen, IDCANCEL);
    EXPECT_THAT(Caption(), StartsWith(L"данные.raw"));
}

TEST_F(ComingBackTest, ARecordingThatIsBeingWrittenGrowsAndIsFollowed) {
    constexpr std::size_t begun = 30;
    constexpr std::size_t rate = 100;
    EdfBuilder edf;
    edf.reserved = "EDF+C";
    edf.records = "-1";
    edf.recordCount = 40;
    std::vector<std::string> lists;
    EdfBuilder::Signal signal{.samplesPerRecord = rate};
    for (std::size_t record = 0; record < edf.recordCount; ++record) {
        const std::string time = '+' + std::to_string(record);
        lists.push_back(time + "\x14\x14" + '\0' + time + "\x14Step\x14" + '\0');
        for (std::size_t at = 0; at < rate; ++at)
            signal.samples.push_back(static_cast<std::int32_t>(at * 300 % 20000 + record));
    }
    edf.signals = {signal, signal};
    edf.Annotate(std::move(lists));
    const std::vector<std::uint8_t> bytes = edf.Bytes();
    const std::size_t header = 256 * (edf.signals.size() + 1);
    const std::size_t record = (bytes.size() - header) / edf.recordCount;
    const std::string_view all(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::filesystem::path path = m_folder.File(u"c.edf");
    static_cast<void>(m_folder.Write(u"c.edf", all.substr(0, header + begun * record)));
    Start();
    ClickLine(lstFile, 2);
    Command(mnuLanes);
    Command(mnuPage + 1);
    Key(VK_END);
    const TimeAxis& axis = m_global.view->Axis();
    const ViewBlock& block = m_global.document->Block();
    ASSERT_EQ(block.sampleCount, begun * rate);
    // As the recorder has it: open all the time.
    std::ofstream recorder(path, std::ios::binary | std::ios::app);
    const auto write = [&](std::size_t from, std::size_t to) {
        recorder << all.substr(header + from * record, (to - from) * record) << std::flush;
        EXPECT_TRUE(recorder.good());
        const auto samples = static_cast<std::int32_t>(to * rate);
        EXPECT_TRUE(WaitFor([&] { return block.sampleCount == samples && block.marks.size() == to; }));
    };
    write(begun, begun + 1);
    write(begun + 1, begun + 6);
    EXPECT_EQ(axis.FirstColumn() + axis.Width(), axis.StripLength());
    EXPECT_THAT(Status(), Not(HasSubstr(L"c.edf")));
    EXPECT_THAT(Caption(), StartsWith(L"c.edf"));
    Key(VK_HOME);
    write(begun + 6, begun + 8);
    EXPECT_EQ(axis.FirstColumn(), 0);
    // One that was cut off is told.
    recorder.close();
    std::filesystem::resize_file(path, header + 5 * record);
    EXPECT_TRUE(WaitFor([&] { return block.sampleCount == 5 * rate; }));
    EXPECT_THAT(Status(), HasSubstr(L"c.edf"));
}

}  // namespace
}  // namespace quillon
