// The program as its users have it: from its start to its end, and under whatever they may do.
#include <gmock/gmock.h>

#include <cstdlib>
#include <iostream>
#include <random>

#include "base/win/Win32.h"
// After windows.h, on which it depends.
#include <mmsystem.h>

#include "app/GraphKeys.h"
#include "app/win/MainWindowFixture.h"
#include "app/win/User.h"
#include "base/Text.h"
#include "dialogs/OptionsLayout.h"
#include "norvik/EdfBuilder.h"
#include "norvik/win/Registry.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using namespace ::quillon::testing;

/// The recordings in the folder "samples", one after the other.
void Look(User& me) {
    me.Choose(lstDir, L"samples", LBN_DBLCLK);
    EXPECT_TRUE(WaitUntil([&] { return me.Files() == 3; }));
    for (const wchar_t* name : {L"b.bin", L"c.bin", L"a.bin"}) {
        me.Choose(lstFile, name, LBN_SELCHANGE);
        EXPECT_THAT(me.Caption(), StartsWith(name));
    }
    me.Key('G');
}

/// What is seen goes into a text, into pieces and to the loudspeaker.
void Use(User& me, const TemporaryFolder& folder) {
    me.PostCommand(mnuFastExport);
    const HWND save = me.Dialog();
    SendDlgItemMessageW(save, 0x47C, WM_SETTEXT, 0,
                        reinterpret_cast<LPARAM>(Wide(folder.File(u"fast.txt").u16string()).c_str()));
    me.Press(save, IDOK);
    // A file per channel is the layout of a first run.
    EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(folder.File(u"fast2.txt")); }));
    EXPECT_TRUE(WaitUntil([&] { return !IsWindow(save); }));
    me.PostCommand(mnuSplit);
    const HWND split = me.Dialog();
    me.Press(split, IDOK);
    EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(folder.File(u"samples/a/12.bin")); }));
    EXPECT_TRUE(WaitUntil([&] { return IsWindowEnabled(GetDlgItem(split, IDCANCEL)) != FALSE; }));
    me.Press(split, IDCANCEL);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindow(split); }));
    if (waveOutGetNumDevs() > 0) {
        const auto plays = [&] {
            return (SendMessageW(me.Control(tbMain), TB_GETSTATE, mnuSoundPlay + 2, 0) & TBSTATE_ENABLED) != 0;
        };
        for (const bool expected : {true, false}) {
            me.Key(VK_SPACE);
            EXPECT_TRUE(WaitUntil([&] { return plays() == expected; }));
        }
    }
}

/// Every option is changed.
void Choose(User& me) {
    me.PostCommand(mnuOptions);
    const HWND options = me.Dialog();
    for (const int button :
         {optTime + 2, optScale + 1, int{chkUnitScaling}, optDigits + 1, optGridStyle + 2, optSpectrumType + 1,
          optFFTPalette + 2, int{chkXColumn}, optXFormat + 1, int{chkRowHead}, int{chkRowSize}, int{chkRowRate},
          int{chkRowStep}, int{chkAsShown}, optFile + 1, optCh + 1})
        SendMessageW(FindChild(options, button), BM_CLICK, 0, 0);
    for (const auto& [list, line] :
         {std::pair<int, int>{cboTime, 4}, {cboDigits, 3}, {cboFFTWindow, 2}, {cboFFTSize, 6}})
        ChooseLine(FindChild(options, list), line);
    SetWindowTextW(FindChild(options, cboAmpScale), L"12,5");
    SetWindowTextW(FindChild(options, cboDBRange), L"200");
    const HWND cursor = FindChild(options, imgCur + 1);
    SendMessageW(GetParent(cursor), WM_COMMAND, MAKEWPARAM(imgCur + 1, STN_CLICKED), 0);
    me.Press(options, IDOK);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindow(options); }));
}

TEST(WholeProgram, AUsersDayFromTheFirstStartToTheSecond) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.File(u"samples"));
    for (const char16_t* name : {u"samples/a.bin", u"samples/b.bin", u"samples/c.bin"})
        static_cast<void>(folder.Write(name, SawRecording(6000)));
    StartUpParts parts = SystemParts();
    parts.program.name = u"Quillon day test";
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Norvik\\Quillon day test");
    parts.path = folder.Path();
    const std::u16string fast = folder.File(u"fast.txt").u16string();
    {
        const User user([&](User& me) {
            Look(me);
            Use(me, folder);
            Choose(me);
            SetWindowPos(me.Window(), nullptr, 44, 55, 900, 600, SWP_NOZORDER);
        });
        EXPECT_EQ(QL_Main(parts, SW_SHOW), 0);
    }
    parts.path.clear();
    parts.crashFile = folder.Write(u"crash.txt", "a crash");
    Settings stored;
    SettingsStore(MakeRegistryObject, parts.program).Load(stored);
    EXPECT_EQ(stored.filesPath, folder.File(u"samples").u16string());
    EXPECT_EQ(stored.display, (DisplaySettings{2, 4, 1, true, 1, 3, 0, 2, 1}));
    EXPECT_EQ(stored.text, (TextExportSettings{1, 1, 1, 1, 1, 1, 1, 1, stored.text.folder, fast, 1}));
    EXPECT_EQ(stored.spectrum, (SpectrumSettings{1, 2, 2, 12.5F, 200.0F, 11}));
    EXPECT_TRUE(stored.window.spectrogramShown);
    // What no choice of the dialog gives is repaired at the start, shown or not.
    stored.window.spectrogramShown = false;
    stored.spectrum.amplitudeScale = -5.0F;
    stored.spectrum.decibelRange = 300.0F;
    stored.spectrum.order = 31;
    // A place off all screens is moved onto one.
    EXPECT_TRUE(stored.window.place.left == 44 && stored.window.place.top == 55);
    stored.window.place.top = 20000;
    SettingsStore(MakeRegistryObject, parts.program).Save(stored);
    {
        const User user([&](User& me) {
            EXPECT_TRUE(WaitUntil([&] { return me.Caption().starts_with(L"a.bin"); }));
            EXPECT_EQ(me.Files(), 3);
            // A crash is told when all is to be seen.
            const HWND told = me.Dialog();
            EXPECT_THAT(WindowText(GetDlgItem(told, 0xFFFF)), HasSubstr(folder.File(u"crash-told.txt").wstring()));
            EXPECT_TRUE(IsWindowVisible(me.Control(lstFile)));
            me.Press(told, IDOK);
            EXPECT_TRUE(WaitUntil([&] { return !IsWindow(told); }));
            RECT place{};
            GetWindowRect(me.Window(), &place);
            EXPECT_TRUE(place.top < 2000 && place.right - place.left == 900);
            me.Command(mnuFastExport);
            EXPECT_GT(Contents(folder.File(u"fast.txt")).size(), 6000U * 6);
        });
        EXPECT_EQ(QL_Main(parts, SW_SHOW), 0);
    }
    SettingsStore(MakeRegistryObject, parts.program).Load(stored);
    EXPECT_EQ(std::tuple(stored.spectrum.amplitudeScale, stored.spectrum.decibelRange, stored.spectrum.order),
              std::tuple(100.0F, 120.0F, 11));
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Norvik\\Quillon day test");
}

class RandomActions : public MainWindowTest {
  protected:
    int Below(int limit) { return std::uniform_int_distribution(0, limit - 1)(m_random); }

    void MouseAction() {
        constexpr std::array boxes{pbGraph, pbGraph, pbScaleY, pbScaleX, pbFFT, pbPal, pbScaleF, btnZoomX};
        constexpr std::array<UINT, 9> messages{WM_LBUTTONDOWN, WM_LBUTTONUP,   WM_MOUSEMOVE,
                                               WM_MOUSEMOVE,   WM_MBUTTONDOWN, WM_MBUTTONUP,
                                               WM_CANCELMODE,  WM_MOUSEWHEEL,  WM_LBUTTONDBLCLK};
        const HWND box = Control(boxes[static_cast<std::size_t>(Below(static_cast<int>(boxes.size())))]);
        const UINT message = messages[static_cast<std::size_t>(Below(static_cast<int>(messages.size())))];
        const WPARAM keys = message == WM_MOUSEWHEEL ? MAKEWPARAM(Below(16), 120 - 240 * Below(2))
                                                     : static_cast<WPARAM>(MK_LBUTTON * Below(2));
        PostMessageW(box, message, keys, MAKELPARAM(Below(900) - 100, Below(500) - 50));
    }

    void Act() {
        switch (Below(8)) {
            case 0:
            case 1: MouseAction(); break;
            case 2: {
                const auto bindings = KeyBindings();
                const KeyBinding& binding =
                    bindings[static_cast<std::size_t>(Below(static_cast<int>(bindings.size())))];
                if (binding.command != mnuFileOperation) Command(binding.command);
                break;
            }
            case 3: {
                const auto menu = MenuTree();
                const MenuEntry& entry = menu[static_cast<std::size_t>(Below(static_cast<int>(menu.size())))];
                // The window and its files are to stay; a dialog now and then is enough.
                const bool dialog =
                    entry.id == mnuOptions || entry.id == mnuSplit || entry.id == mnuAbout || entry.id == mnuOpen;
                if (entry.id == 0 || entry.id == mnuExit || entry.id == mnuFileOperation || (dialog && Below(8) != 0))
                    break;
                Command(entry.id + Below(entry.count));
                break;
            }
            case 4: {
                const int list = Below(2) == 0 ? lstBlock : lstFile;
                if (const auto lines = Lines(list).size(); lines > 0) ClickLine(list, Below(static_cast<int>(lines)));
                break;
            }
            case 5:
                if (ItemCount() > 0) ClickCheckBox(Below(ItemCount()));
                break;
            case 6: {
                constexpr std::array keys{VK_LEFT, VK_RIGHT, VK_UP,  VK_DOWN,     VK_PRIOR, VK_NEXT,
                                          VK_HOME, VK_END,   VK_ADD, VK_SUBTRACT, VK_BACK,  VK_ESCAPE};
                Key(static_cast<WPARAM>(keys[static_cast<std::size_t>(Below(static_cast<int>(keys.size())))]));
                break;
            }
            default:
                if (Below(4) == 0)
                    SetWindowPos(m_form->Window(), nullptr, 0, 0, 500 + Below(700), 300 + Below(500),
                                 SWP_NOMOVE | SWP_NOZORDER);
        }
    }

    /// 40 signals in four blocks of the same time.
    [[nodiscard]] static auto RecordingOfThreeRates() {
        EdfBuilder edf;
        edf.recordCount = 20;
        for (std::size_t at = 0; at < 40; ++at) {
            EdfBuilder::Signal signal;
            signal.label = "S" + std::to_string(at);
            signal.samplesPerRecord = at < 35 ? 100 : at < 38 ? 8 : 1;
            for (std::size_t sample = 0; sample < edf.recordCount * signal.samplesPerRecord; ++sample)
                signal.samples.push_back(static_cast<std::int32_t>(sample * (at + 1) % 2000) - 1000);
            edf.signals.push_back(std::move(signal));
        }
        return edf.Bytes();
    }

    /// Objects of the graphics system, windows, and handles of other kinds that this process has. The functions that
    /// are made for it count nothing where there is no real Windows.
    static std::size_t Handles() {
        struct Object {
            std::uint64_t object;
            std::uint32_t owner;
            std::uint16_t unique;
            std::uint8_t type;
            std::uint8_t flags;
            std::uint64_t user;
        };
        struct Handle {
            std::uint32_t process;
            std::uint32_t kind;
            std::uint64_t object;
            std::uint64_t access;
        };
        const auto function = [](const char* name) {
            return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name));
        };
        const auto currentPeb = reinterpret_cast<const std::uint8_t* (*)()>(function("RtlGetCurrentPeb"));
        const auto query = reinterpret_cast<LONG (*)(int, void*, ULONG, ULONG*)>(function("NtQuerySystemInformation"));
        const auto* objects = *reinterpret_cast<const Object* const*>(currentPeb() + 0xF8);
        const auto graphics = std::count_if(objects, objects + 65536, [](const Object& at) { return at.type != 0; });
        // The first entry holds the number of the others in its first field; handles of the whole system follow.
        std::vector<Handle> handles(1 << 16);
        EXPECT_EQ(query(16, handles.data(), static_cast<ULONG>(handles.size() * sizeof(Handle)), nullptr), 0);
        const auto* first = reinterpret_cast<const Handle*>(reinterpret_cast<const std::uint64_t*>(handles.data()) + 1);
        const auto own = std::count_if(first, first + handles[0].process,
                                       [](const Handle& at) { return at.process == GetCurrentProcessId(); });
        EXPECT_GT(own, 0);
        return static_cast<std::size_t>(graphics + own) + Descendants(GetDesktopWindow()).size();
    }

    std::mt19937 m_random;
};

TEST_F(RandomActions, AThousandLeaveTheProgramWhole) {
    // QUILLON_SEED repeats the actions of a failure.
    const char* given = std::getenv("QUILLON_SEED");
    const auto seed =
        static_cast<std::uint32_t>(given != nullptr ? std::strtoul(given, nullptr, 10) : GetTickCount64());
    // Printed, as a failed assertion of a library ends the program.
    std::cout << "seed " << seed << std::endl;
    m_random.seed(seed);
    static_cast<void>(m_folder.Write(u"a.bin", SawRecording(50000)));
    static_cast<void>(m_folder.Write(u"b.bin", SawRecording(1)));
    static_cast<void>(m_folder.Write(u"c.bin", FileBytes().Text("no recording")));
    static_cast<void>(
        m_folder.Write(u"d.bin", BinRecording(0.5F, {{1, -32768, 32767, 0}, {7, 0, 0, 0}, {9, 1, 2, 3}})));
    const auto edf = RecordingOfThreeRates();
    static_cast<void>(
        m_folder.Write(u"e.edf", std::string_view(reinterpret_cast<const char*>(edf.data()), edf.size())));
    Start();
    DialogCloser closer;
    m_saveDialog->answer = [](SaveFileDialog&) { return false; };
    m_global.settings.text.fastFile = m_folder.File(u"fast.txt").u16string();
    std::size_t handles = 0;
    for (int action = 0; action < 1000; ++action) {
        Act();
        Pump();
        ASSERT_NE(m_form->Window(), nullptr) << "action " << action;
        if (action == 300) handles = Handles();
    }
    EXPECT_LE(Handles(), handles + 100);
    // It still shows what it is asked for.
    ReleaseCapture();
    m_global.settings.display.gridStyle = 0;
    SetWindowPos(m_form->Window(), nullptr, 0, 0, 1000, 640, SWP_NOMOVE | SWP_NOZORDER);
    SendMessageW(Control(lstFile), LB_SETTOPINDEX, 0, 0);
    ClickLine(lstFile, 0);
    Command(mnuGoTo);
    Command(mnuChShow);
    Command(mnuBaseLine + 1);
    EXPECT_THAT(Caption(), StartsWith(L"a.bin"));
    EXPECT_GT(Capture(pbGraph).Count(m_global.view->Look().colors->Trace(0)), 100);
}

}  // namespace
}  // namespace quillon
