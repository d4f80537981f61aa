#include <gmock/gmock.h>

#include <map>

#include "app/KV_Resources.h"
#include "app/win/HelpViewer.h"
#include "app/win/MainWindowFixture.h"
#include "base/StringIds.h"
#include "base/Text.h"
#include "norvik/win/Registry.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using namespace ::quillon::testing;

class FrameTest : public MainWindowTest {
  protected:
    /// Presses a button of a toolbar as the mouse does.
    void PressButton(int toolbar, int command) const {
        RECT button{};
        const LRESULT index = SendMessageW(Control(toolbar), TB_COMMANDTOINDEX, static_cast<WPARAM>(command), 0);
        SendPointer(Control(toolbar), TB_GETITEMRECT, static_cast<WPARAM>(index), &button);
        Click(toolbar, (button.left + button.right) / 2, (button.top + button.bottom) / 2);
    }
    /// A key with a modifier, wherever the focus is.
    void PressWith(int modifier, WPARAM key) const {
        BYTE keys[256]{};
        keys[modifier] = 0x80;
        SetKeyboardState(keys);
        EXPECT_TRUE(m_form->PreTranslate({GetFocus(), WM_KEYDOWN, key, 0, 0, {}}));
        keys[modifier] = 0;
        SetKeyboardState(keys);
        Pump();
    }
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

TEST_F(FrameTest, EveryMenuEntryAndButtonReachesItsHandler) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(20000)));
    Start();
    DialogCloser closer;
    const auto tab = [&](int id) { return TabCtrl_GetCurSel(Control(id)); };
    // Whatever a command may change, as it is after the command is run from one and the same state.
    const auto effect = [&](int command, const std::function<void()>& run) {
        m_global.axis.SelectZoom(3);
        m_global.amplitude.SelectScale(8);
        Command(mnuBaseLine);
        m_global.amplitude.MoveBaseLine(33);
        ScrollTo(500);
        Command(mnuChShow);
        ClickCheckBox(0);
        if (command == mnuChShow + 1) Command(mnuChShow);
        // The page that is not asked for.
        Command(mnuTabPath + (command == mnuTabPath ? 1 : 0));
        Command(mnuTabFile + (command == mnuTabFile ? 1 : 0));
        if (m_global.settings.spectrogramShown) Command(mnuSpectrogram);
        if (command == mnuSoundPlay + 2 && m_global.sound.devices > 0) Command(mnuSoundPlay);
        m_services->SetStatus(u"");
        m_global.settings.helpLanguage = 7;
        closer.Titles();
        run();
        Pump();
        std::wstring seen = closer.Titles() + Status(StatusPanel::Status).substr(0, 7);
        if (m_global.sound.playing) seen = L"playing";
        Command(mnuSelect + 2);
        return std::tuple(m_global.axis.FirstColumn(), m_global.axis.ZoomIndex(), m_global.amplitude.Index(),
                          m_global.amplitude.Shift(), m_global.slots[0].shown, m_global.slots[1].shown, tab(tabPath),
                          tab(tabFile), m_global.settings.spectrogramShown, m_global.settings.helpLanguage, seen);
    };
    std::map<int, int> buttons;
    for (const auto& [toolbar, all] : {std::pair{tbMain, MainButtons()}, {tbGoTo, GoToButtons()}}) {
        for (const ToolbarButton& button : all) buttons[button.command] = toolbar;
    }
    const bool silent = m_global.sound.devices == 0;
    std::size_t pressed = 0;
    for (const MenuEntry& entry : MenuTree()) {
        for (int id = entry.id; id != 0 && id < entry.id + entry.count; ++id) {
            SCOPED_TRACE(id);
            EXPECT_NE(GetMenuState(GetMenu(m_form->Window()), static_cast<UINT>(id), MF_BYCOMMAND), ~0U);
            if (id == mnuExit) continue;  // ends the window; tested elsewhere
            const bool sound = id >= mnuSoundPlay && id < mnuSoundPlay + 3;
            const auto byMenu = effect(id, [&] { Command(id); });
            if (buttons.contains(id)) {
                ++pressed;
                SetFocus(Control(lstFile));
                EXPECT_EQ(byMenu, effect(id, [&] { PressButton(buttons[id], id); }));
                if (!sound || !silent) {
                    EXPECT_EQ(GetFocus(), Control(pbGraph)) << "the keys work on the graph again";
                }
            }
            const bool chosen = id == mnuScaleX + 3 || id == mnuScaleY + 8 || id == mnuSoundCard;
            if (chosen || (sound && silent)) continue;
            EXPECT_NE(byMenu, effect(id, [] {}));
        }
    }
    EXPECT_EQ(pressed, buttons.size());
}

TEST_F(FrameTest, ButtonsAreGreyWhereTheirCommandsCanDoNothing) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    static_cast<void>(m_folder.Write(u"b.bin", FileBytes().Text("no recording")));
    Start();
    const auto enabled = [&](int command) {
        return (SendMessageW(Control(tbMain), TB_GETSTATE, static_cast<WPARAM>(command), 0) & TBSTATE_ENABLED) != 0;
    };
    EXPECT_TRUE(enabled(mnuBaseLine));
    EXPECT_TRUE(enabled(mnuSaveAs));
    ClickLine(lstFile, 1);
    EXPECT_FALSE(enabled(mnuSaveAs));
    EXPECT_FALSE(enabled(mnuBaseLine));
    EXPECT_TRUE(enabled(mnuHelp));
}

TEST_F(FrameTest, BothLanguagesHoldTheSameStringsAndNoneIsTooLongForItsControl) {
    int strings = 0;
    for (int id = 1; id < 6000; ++id) {
        const std::u16string english = ResourceText(Language::English, id);
        const std::u16string russian = ResourceText(Language::Russian, id);
        EXPECT_EQ(english.empty(), russian.empty()) << id;
        EXPECT_EQ(english.find(u'\t') == std::u16string::npos, russian.find(u'\t') == std::u16string::npos) << id;
        strings += english.empty() ? 0 : 1;
    }
    EXPECT_GT(strings, 80);
    EXPECT_EQ(ResourceText(Language::Russian, 1010), u"Пожалуйста, переустановите программу.");
    for (const Language language : {Language::English, Language::Russian}) {
        m_language = language;
        Start();
        const auto expectInside = [&](int control, UINT ask, LRESULT item) {
            RECT last{};
            RECT client{};
            SendPointer(Control(control), ask, static_cast<WPARAM>(item), &last);
            GetClientRect(Control(control), &client);
            EXPECT_TRUE(last.right <= client.right && last.bottom <= client.bottom) << control;
        };
        for (const int tabs : {tabPath, tabFile}) expectInside(tabs, TCM_GETITEMRECT, 1);
        for (const int toolbar : {tbMain, tbGoTo})
            expectInside(toolbar, TB_GETITEMRECT, SendMessageW(Control(toolbar), TB_BUTTONCOUNT, 0, 0) - 1);
        TearDown();
    }
}

TEST_F(FrameTest, TheKeyboardIsNeverLost) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    Start();
    SetFocus(Control(lstFile));
    Command(mnuTabFile + 1);
    EXPECT_EQ(GetFocus(), Control(pbGraph)) << "the list that had the focus is hidden";
    SetFocus(m_form->Window());
    EXPECT_EQ(GetFocus(), Control(pbGraph));
    // A click that has done its work gives it back; a list that was asked for keeps it, at any page.
    Command(mnuTabFile);
    const int lists[] = {lstDir, lvCh, lstFile, lstBlock};
    for (int list = 0; list < 4; ++list) {
        PressWith(VK_CONTROL, static_cast<WPARAM>('1' + list));
        EXPECT_EQ(GetFocus(), Control(lists[list]));
        EXPECT_TRUE(IsWindowVisible(GetFocus()));
        if (list == 0) continue;
        list == 1 ? ClickCheckBox(0) : ClickLine(lists[list], 0);
        EXPECT_EQ(GetFocus(), Control(pbGraph));
    }
    // The release of a key that was part of a command opens no menu, whichever way it is told.
    BYTE keys[256]{};
    keys[VK_MENU] = 0x80;
    SetKeyboardState(keys);
    EXPECT_TRUE(m_form->PreTranslate({Control(pbGraph), WM_SYSKEYDOWN, VK_RIGHT, 0, 0, {}}));
    EXPECT_TRUE(m_form->PreTranslate({Control(pbGraph), WM_KEYUP, VK_MENU, 0, 0, {}}));
    EXPECT_FALSE(m_form->PreTranslate({Control(pbGraph), WM_KEYUP, VK_MENU, 0, 0, {}}));
    keys[VK_MENU] = 0;
    SetKeyboardState(keys);
    // The window's own menu is left to the system.
    const HMENU system = GetSystemMenu(m_form->Window(), FALSE);
    const UINT before = GetMenuState(system, SC_CLOSE, MF_BYCOMMAND);
    SendMessageW(m_form->Window(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(system), MAKELPARAM(0, TRUE));
    EXPECT_EQ(GetMenuState(system, SC_CLOSE, MF_BYCOMMAND), before);
}

TEST_F(FrameTest, SettingsAreKeptWhenTheSessionEnds) {
    int saved = 0;
    m_shutdown = [&] { ++saved; };
    m_global.settings.filesPath.clear();
    Start();
    SendMessageW(m_form->Window(), WM_ENDSESSION, FALSE, 0);
    EXPECT_EQ(saved, 0) << "called off";
    SendMessageW(m_form->Window(), WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(saved, 1);
    // A folder on a drive that is not there today is remembered.
    TearDown();
    Start(L"C:\\no such folder");
    EXPECT_NE(Status(StatusPanel::Status), L"");
    TearDown();
    EXPECT_EQ(m_global.settings.filesPath, u"C:\\no such folder");
    // Until the user has opened something in the folder that stands for it.
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(m_folder.Path());
    for (const bool chosen : {false, true}) {
        Start(L"C:\\no such folder");
        EXPECT_EQ(m_global.block.sampleCount, 2000);
        if (chosen) ClickLine(lstFile, 0);
        TearDown();
        EXPECT_EQ(m_global.settings.filesPath, chosen ? m_folder.Path() : u"C:\\no such folder");
    }
    std::filesystem::current_path(before);
}

TEST_F(FrameTest, AFolderIsNoHelpFile) {
    for (const char16_t* name : {u"Kelvo.chm", u"KelvoA.chm"}) std::filesystem::create_directory(m_folder.File(name));
    WinDirectoryLookup lookup;
    std::int16_t language = 0;
    EXPECT_EQ(ChooseHelpFile(lookup, m_folder.Path(), language, u"RU"), u"");
    static_cast<void>(m_folder.Write(u"KelvoZ.chm", "help"));
    EXPECT_EQ(ChooseHelpFile(lookup, m_folder.Path(), language, u"RU"), m_folder.Path() + u"\\KelvoZ.chm");
}

TEST_F(FrameTest, SettingsOutliveTheWindow) {
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording()));
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
    EXPECT_THAT(OutputOf(key + "\" /v FilesPath"), HasSubstr("FilesPath    REG_SZ    "));
    EXPECT_THAT(OutputOf(key + "\\Window\" /v Top"), HasSubstr("REG_DWORD    0x37"));
    QL_Global second;
    SettingsStore(MakeRegistryObject, program).Load(second.settings);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Norvik\\Quillon frame test");
    EXPECT_EQ(std::filesystem::path(second.settings.filesPath), m_folder.File(u"").parent_path());
    EXPECT_EQ(second.settings.windowLeft, 44);
    EXPECT_EQ(second.settings.windowTop, 55);
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
