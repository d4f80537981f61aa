#include <gmock/gmock.h>

#include <set>
#include <thread>

#include "app/KV_Resources.h"
#include "app/win/MainWindowFixture.h"
#include "base/StringIds.h"
#include "base/Text.h"
#include "norvik/win/Registry.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using namespace ::quillon::testing;

FileBytes Recording(int frames = 2000) {
    std::vector<std::vector<std::int16_t>> samples;
    for (int frame = 0; frame < frames; ++frame) samples.push_back({static_cast<std::int16_t>(frame % 100), 5});
    return BinRecording(100.0F, samples);
}

class FrameTest : public MainWindowTest {
  protected:
    /// Every entry of the window's real menu: identifier and text, separators as "-".
    static void Collect(HMENU menu, const std::wstring& path, std::vector<std::pair<UINT, std::wstring>>& entries) {
        for (int position = 0; position < GetMenuItemCount(menu); ++position) {
            wchar_t text[256] = {};
            GetMenuStringW(menu, static_cast<UINT>(position), text, 256, MF_BYPOSITION);
            const HMENU popup = GetSubMenu(menu, position);
            const std::wstring full = path + (text[0] == L'\0' ? L"-" : text);
            entries.emplace_back(popup != nullptr ? 0 : GetMenuItemID(menu, position), full);
            if (popup != nullptr) Collect(popup, full + L"/", entries);
        }
    }

    /// Presses a button of a toolbar as the mouse does.
    void PressButton(int toolbar, int command) const {
        RECT button{};
        const LRESULT index = SendMessageW(Control(toolbar), TB_COMMANDTOINDEX, static_cast<WPARAM>(command), 0);
        SendPointer(Control(toolbar), TB_GETITEMRECT, static_cast<WPARAM>(index), &button);
        Click(toolbar, (button.left + button.right) / 2, (button.top + button.bottom) / 2);
    }

    /// Handles messages until the condition holds; false after some seconds.
    [[nodiscard]] bool WaitFor(const std::function<bool()>& condition) const {
        const ULONGLONG end = GetTickCount64() + 8000;
        while (!condition()) {
            if (GetTickCount64() > end) return false;
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
            Pump();
        }
        return true;
    }

    [[nodiscard]] bool Exists(const std::u16string& name) const { return std::filesystem::exists(m_folder.File(name)); }
};

/// What a command prints.
std::string OutputOf(const std::string& command) {
    std::string output;
    FILE* pipe = _popen(command.c_str(), "r");
    for (int character = pipe == nullptr ? EOF : std::fgetc(pipe); character != EOF; character = std::fgetc(pipe))
        output.push_back(static_cast<char>(character));
    if (pipe != nullptr) _pclose(pipe);
    return output;
}

/// Answers the next dialog of this process with that title from another thread.
class DialogAnswer {
  public:
    DialogAnswer(std::function<void(HWND)> answer)
        : m_thread([answer = std::move(answer)] {
              const ULONGLONG end = GetTickCount64() + 10000;
              while (GetTickCount64() < end) {
                  const HWND dialog = FindWindowW(L"#32770", nullptr);
                  DWORD process = 0;
                  GetWindowThreadProcessId(dialog, &process);
                  if (dialog != nullptr && process == GetCurrentProcessId() && IsWindowVisible(dialog)) {
                      answer(dialog);
                      return;
                  }
                  SwitchToThread();
              }
          }) {}
    ~DialogAnswer() { m_thread.join(); }
    DialogAnswer(const DialogAnswer&) = delete;
    DialogAnswer& operator=(const DialogAnswer&) = delete;

  private:
    std::thread m_thread;
};

TEST_F(FrameTest, TheMenuIsTheTree) {
    Start();
    std::vector<std::pair<UINT, std::wstring>> entries;
    Collect(GetMenu(m_form->Window()), L"", entries);
    std::vector<std::wstring> texts;
    std::set<UINT> ids;
    for (const auto& [id, text] : entries) {
        const std::wstring name = text.substr(0, text.find(L'\t'));
        if (name.find(L":1") == std::wstring::npos && name.find(L"Y Scale/") == std::wstring::npos)
            texts.push_back(name);
        if (id != 0) {
            EXPECT_TRUE(ids.insert(id).second) << id;
        }
    }
    EXPECT_THAT(
        texts, ElementsAre(
                   L"&File", L"&File/&Save As...", L"&File/Fast &Export", L"&File/S&plit File...", L"&File/-",
                   L"&File/&Delete", L"&File/Re&name...", L"&File/-", L"&File/Options...", L"&File/-", L"&File/Exit",
                   L"&Edit", L"&Edit/&Copy Data", L"&Edit/Copy &Image", L"&View", L"&View/Fol&ders", L"&View/&Channels",
                   L"&View/-", L"&View/&Files (Refresh)", L"&View/&Blocks", L"&View/-", L"&View/&Spectrogram",
                   L"&View/-", L"&View/&X Zoom", L"&View/&X Zoom/Zoom &Out", L"&View/&X Zoom/Zoom &In", L"&View/-",
                   L"&View/&Start of File", L"&View/&Previous Page", L"&View/&Next Page", L"&View/&End of File",
                   L"&Graph", L"&Graph/Y Scale", L"&Graph/Zoom Out", L"&Graph/Zoom In", L"&Graph/-",
                   L"&Graph/Set &Bipolar", L"&Graph/&Find Data", L"&Channels", L"&Channels/&Select All",
                   L"&Channels/&Deselect All", L"&Channels/&Invert All", L"&Sound", L"&Sound/&Play Channel",
                   L"&Sound/Play &All", L"&Sound/&Stop Play", L"&Sound/-", L"&Sound/Sound Output",
                   L"&Sound/Sound Output/Sound Card 1", L"&Help", L"&Help/&Help", L"&Help/Help &Language",
                   L"&Help/Help &Language/Auto", L"&Help/Help &Language/Russian", L"&Help/Help &Language/English"));
}

TEST_F(FrameTest, ButtonsDoWhatTheirMenuEntriesDo) {
    static_cast<void>(m_folder.Write(u"a.bin", Recording(20000)));
    Start();
    const auto state = [&] {
        return std::tuple(m_global.axis.FirstColumn(), m_global.amplitude.Index(), m_global.amplitude.Shift());
    };
    for (const auto& [toolbar, buttons] : {std::pair{tbMain, MainButtons()}, {tbGoTo, GoToButtons()}}) {
        for (const ToolbarButton& button : buttons) {
            SCOPED_TRACE(std::string(button.key.begin(), button.key.end()));
            if (button.command == mnuHelp) continue;
            // From the same place, away from all ends.
            const auto reset = [&] {
                m_global.amplitude.SelectScale(8);
                Command(mnuBaseLine);
                m_global.amplitude.MoveBaseLine(33);
                Command(mnuGoTo);
                ScrollTo(5000);
            };
            reset();
            const auto before = state();
            SetFocus(Control(lstFile));
            PressButton(toolbar, button.command);
            const auto byButton = state();
            reset();
            Command(button.command);
            EXPECT_EQ(byButton, state());
            if (!IsEnabled(button.command, m_global)) {
                EXPECT_EQ(byButton, before) << "a command that is not there";
                continue;
            }
            EXPECT_NE(byButton, before);
            EXPECT_EQ(GetFocus(), Control(pbGraph)) << "the keys work on the graph again";
        }
    }
}

TEST_F(FrameTest, ButtonsAreGreyWhereTheirCommandsCanDoNothing) {
    static_cast<void>(m_folder.Write(u"a.bin", Recording()));
    static_cast<void>(m_folder.Write(u"b.bin", FileBytes().Text("no recording")));
    Start();
    const auto enabled = [&](int command) {
        return (SendMessageW(Control(tbMain), TB_GETSTATE, static_cast<WPARAM>(command), 0) & TBSTATE_ENABLED) != 0;
    };
    EXPECT_TRUE(enabled(mnuBaseLine));
    EXPECT_FALSE(enabled(mnuSaveAs));
    ClickLine(lstFile, 1);
    EXPECT_FALSE(enabled(mnuBaseLine));
    EXPECT_TRUE(enabled(mnuHelp));
}

TEST_F(FrameTest, BothLanguagesHoldTheSameStringsAndNoneIsTooLongForItsControl) {
    int strings = 0;
    for (int id = 1; id < 4000; ++id) {
        const std::u16string english = ResourceText(Language::English, id);
        const std::u16string russian = ResourceText(Language::Russian, id);
        EXPECT_EQ(english.empty(), russian.empty()) << id;
        EXPECT_EQ(english.find(u'\t') == std::u16string::npos, russian.find(u'\t') == std::u16string::npos) << id;
        strings += english.empty() ? 0 : 1;
    }
    EXPECT_GT(strings, 80);
    EXPECT_EQ(ResourceText(Language::Russian, 1010), u"Пожалуйста, переустановите программу.");
    EXPECT_EQ(ResourceText(Language::English, 501), u"Channel");
    EXPECT_EQ(ResourceText(Language::Russian, 501), u"Канал");
    EXPECT_EQ(ResourceText(Language::English, 9), u"Rename");
    for (const Language language : {Language::English, Language::Russian}) {
        m_language = language;
        Start();
        for (const int tabs : {tabPath, tabFile}) {
            RECT last{};
            RECT client{};
            SendPointer(Control(tabs), TCM_GETITEMRECT, 1, &last);
            GetClientRect(Control(tabs), &client);
            EXPECT_LE(last.right, client.right);
        }
        for (const int toolbar : {tbMain, tbGoTo}) {
            RECT last{};
            RECT client{};
            const LRESULT count = SendMessageW(Control(toolbar), TB_BUTTONCOUNT, 0, 0);
            SendPointer(Control(toolbar), TB_GETITEMRECT, static_cast<WPARAM>(count - 1), &last);
            GetClientRect(Control(toolbar), &client);
            EXPECT_LE(last.right, client.right);
            EXPECT_LE(last.bottom, client.bottom);
        }
        TearDown();
    }
}

TEST_F(FrameTest, FoldersOfOpenedRecordingsAreRememberedWhileATypeIsListed) {
    static_cast<void>(m_folder.Write(u"a.bin", Recording()));
    Start();
    const auto& folders = m_global.settings.pathList.Folders();
    ASSERT_EQ(folders.size(), 1U);
    const std::wstring other = Wide(m_folder.Path()) + L"\\Другая папка";
    CreateDirectoryW(other.c_str(), nullptr);
    static_cast<void>(m_folder.Write(u"Другая папка/b.bin", Recording()));
    m_form->OpenPath(other);
    EXPECT_EQ(m_global.file.fileName, u"") << "another folder closes the recording";
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"b.bin"));
    ClickLine(lstFile, 0);
    ASSERT_EQ(folders.size(), 2U);
    // Choosing a remembered folder leads there.
    Command(mnuPathList);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin"));
    // A dropped file opens through the list.
    m_form->OpenPath(other + L"\\b.bin");
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"b.bin - ["));
    EXPECT_EQ(folders.size(), 2U);
}

TEST_F(FrameTest, TheLastThirtyFoldersAreOffered) {
    Start();
    for (int number = 1; number <= 31; ++number) {
        const std::u16string name = u"Папка " + Decimal(number);
        const std::u16string file = Decimal(number) + u".bin";
        std::filesystem::create_directory(m_folder.File(name));
        static_cast<void>(m_folder.Write(name + u'/' + file, Recording(10)));
        m_form->OpenPath(m_folder.File(name).wstring() + L'\\' + Wide(file));
        ASSERT_THAT(Caption(), ::testing::StartsWith(Wide(file) + L" - ["));
    }
    ASSERT_EQ(m_global.settings.pathList.Folders().size(), 30U) << "the first one had to go";
    Command(mnuPathList);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"2.bin"));
    Command(mnuPathList + 29);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"31.bin"));
}

TEST_F(FrameTest, TheTypeBoxLimitsTheList) {
    static_cast<void>(m_folder.Write(u"a.bin", Recording()));
    static_cast<void>(m_folder.Write(u"b.wav", FileBytes().Text("RIFF")));
    Start();
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin", L"b.wav"));
    const HWND types = Control(cboFileType);
    const auto choose = [&](WPARAM type) {
        SendMessageW(types, CB_SETCURSEL, type, 0);
        SendMessageW(m_form->Window(), WM_COMMAND, MAKEWPARAM(cboFileType, CBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(types));
        Pump();
    };
    choose(1);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin"));
    EXPECT_EQ(ItemCount(), 2) << "the shown file still matches and stays open";
    choose(2);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"b.wav"));
    EXPECT_EQ(ItemCount(), 0);
    wchar_t text[128] = {};
    SendPointer(types, CB_GETLBTEXT, 1, text);
    EXPECT_STREQ(text, L"Binary Files (*.bin)");
}

TEST_F(FrameTest, ChangesByOthersAppearAndARecordingThatIsGoneIsClosed) {
    static_cast<void>(m_folder.Write(u"a.bin", Recording()));
    Start();
    static_cast<void>(m_folder.Write(u"Новый.bin", Recording()));
    EXPECT_TRUE(WaitFor([&] { return Lines(lstFile).size() == 2; }));
    EXPECT_EQ(ItemCount(), 2) << "the open recording stays open";
    EXPECT_EQ(SendMessageW(Control(lstFile), LB_GETCURSEL, 0, 0), 0);
    // Moved away, as into the recycle bin; a file that is only deleted keeps its name until everybody has closed it.
    std::filesystem::create_directory(m_folder.File(u"bin"));
    std::filesystem::rename(m_folder.File(u"a.bin"), m_folder.File(u"bin/a.bin"));
    EXPECT_TRUE(WaitFor([&] { return Lines(lstFile).size() == 1; }));
    EXPECT_EQ(ItemCount(), 0);
    EXPECT_THAT(Status(StatusPanel::Status), HasSubstr(L"a.bin: "));
    EXPECT_EQ(Caption(), L"Quillon");
}

TEST_F(FrameTest, DeletesAndRenames) {
    for (const char16_t* name : {u"a.bin", u"b.bin", u"c.bin"}) static_cast<void>(m_folder.Write(name, Recording()));
    Start();
    ClickLine(lstFile, 1);
    {
        DialogAnswer answer([](HWND dialog) { PostMessageW(dialog, WM_COMMAND, IDNO, 0); });
        Command(mnuFileOperation);
    }
    EXPECT_TRUE(Exists(u"b.bin"));
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"b.bin")) << "declined: the file is open again";
    {
        DialogAnswer answer([](HWND dialog) { PostMessageW(dialog, WM_COMMAND, IDYES, 0); });
        Command(mnuFileOperation);
    }
    EXPECT_FALSE(Exists(u"b.bin"));
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin", L"c.bin"));
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"c.bin")) << "the same position is selected";

    const auto rename = [&](const wchar_t* name) {
        DialogAnswer answer([name](HWND dialog) {
            SendMessageW(GetDlgItem(dialog, 101), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name));
            PostMessageW(dialog, WM_COMMAND, name[0] == L'!' ? IDCANCEL : IDOK, 0);
        });
        Command(mnuFileOperation + 1);
    };
    rename(L"Переименован.bin");
    EXPECT_TRUE(Exists(u"Переименован.bin"));
    EXPECT_THAT(Caption(), ::testing::StartsWith(L"Переименован.bin"));
    for (const wchar_t* unchanged : {L"!", L"", L"Переименован.bin"}) rename(unchanged);
    EXPECT_TRUE(Exists(u"Переименован.bin"));
    rename(L"a.bin");
    EXPECT_TRUE(Exists(u"Переименован.bin")) << "another file has that name";
    EXPECT_THAT(Status(StatusPanel::Status), HasSubstr(L"not renamed"));
    EXPECT_EQ(ItemCount(), 2) << "and it is open again";
}

TEST_F(FrameTest, SettingsOutliveTheWindow) {
    static_cast<void>(m_folder.Write(u"a.bin", Recording()));
    const ProgramIdentity program{u"Quillon frame test", 1, 0, 0};
    {
        m_shutdown = [&] { SettingsStore(MakeRegistryObject, program).Save(m_global.settings); };
        Start();
        SetWindowPos(m_form->Window(), nullptr, 44, 55, 900, 600, SWP_NOZORDER);
        m_global.settings.listWidth = 260;
        Command(mnuHelpLang + 2);
        TearDown();
    }
    // Another program finds them, as texts and numbers.
    const std::string key = "reg query \"HKCU\\Software\\Norvik\\Quillon frame test\\1.x";
    EXPECT_THAT(OutputOf(key + "\" /v HelpLanguage"), HasSubstr("HelpLanguage    REG_DWORD    0x"));
    EXPECT_THAT(OutputOf(key + "\" /v FilesPath"), HasSubstr("FilesPath    REG_SZ    "));
    EXPECT_THAT(OutputOf(key + "\\Window\" /v Top"), HasSubstr("REG_DWORD    0x37"));
    QL_Global second;
    SettingsStore(MakeRegistryObject, program).Load(second.settings);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Norvik\\Quillon frame test");
    EXPECT_EQ(std::filesystem::path(second.settings.filesPath), m_folder.File(u"").parent_path());
    EXPECT_EQ(second.settings.windowLeft, 44);
    EXPECT_EQ(second.settings.windowTop, 55);
    EXPECT_EQ(second.settings.windowWidth, 900);
    EXPECT_EQ(second.settings.listWidth, 260);
    ASSERT_EQ(second.settings.pathList.Folders().size(), 1U);
    // A second start shows the same folder at the same place; a place off all screens is moved onto one.
    second.settings.windowTop = 20000;
    m_global.settings = second.settings;
    m_services = std::make_unique<WinServices>(Language::English);
    ASSERT_TRUE(Init(m_global, SystemParts(), *m_services));
    m_form = std::make_unique<frmQLMain>(m_global, *m_services, SystemParts().makeTimer);
    m_form->Create();
    m_form->Show(SW_SHOW);
    Pump();
    RECT place{};
    GetWindowRect(m_form->Window(), &place);
    EXPECT_EQ(place.right - place.left, 900);
    EXPECT_LT(place.top, 2000);
    EXPECT_THAT(Lines(lstFile), ElementsAre(L"a.bin"));
}

}  // namespace
}  // namespace quillon
