// A day's work by the real keyboard alone: no mouse, no messages of the test's own.
#include <gmock/gmock.h>

#include "app/win/User.h"
#include "norvik/EdfBuilder.h"
#include "norvik/win/Registry.h"

#include "base/win/Win32.h"
// After windows.h, on which it depends.
#include <commctrl.h>
#include <mmsystem.h>

namespace quillon::testing {
namespace {

using ::testing::StartsWith;

/// A minute of three channels of an EEG, 100 samples a second, with three marks.
std::string ShortEeg() {
    const auto note = [](const std::string& onset, const std::string& text) {
        return "+" + onset + "\x14" + text + "\x14" + std::string(1, '\0');
    };
    EdfBuilder edf;
    edf.reserved = "EDF+C";
    edf.recordCount = 60;
    for (const char* label : {"EEG Fp1", "EEG F7", "EEG T3"}) {
        edf.signals.push_back({.label = label, .samplesPerRecord = 100});
        for (int sample = 0; sample < 6000; ++sample) edf.signals.back().samples.push_back(sample * 7 % 400 - 200);
    }
    std::vector<std::string> lists;
    for (int second = 0; second < 60; ++second) lists.push_back(note(std::to_string(second), ""));
    lists[5] += note("5.2", "blink"), lists[30] += note("30", "blink"), lists[45] += note("45", "spindle");
    edf.Annotate(lists);
    const auto bytes = edf.Bytes();
    return {bytes.begin(), bytes.end()};
}

/// Folder, file, channel and mark out of their lists.
void FindByLists(User& me) {
    const auto lineOf = [&me](int list) {
        return [&me, list] { return SendMessageW(me.Control(list), LB_GETCURSEL, 0, 0); };
    };
    me.Strike('1', {VK_CONTROL});
    EXPECT_TRUE(WaitUntil([&] { return me.Focus() == lstDir; }));
    EXPECT_TRUE(me.StrikeUntil(VK_DOWN, lineOf(lstDir), [&] {
        wchar_t line[300] = {};
        const auto chosen = static_cast<WPARAM>(SendMessageW(me.Control(lstDir), LB_GETCURSEL, 0, 0));
        SendPointer(me.Control(lstDir), LB_GETTEXT, chosen, line);
        return std::wstring_view(line).ends_with(L"samples");
    }));
    me.Strike(VK_RETURN);
    EXPECT_TRUE(WaitUntil([&] { return me.Files() == 2; }));
    me.Strike('3', {VK_CONTROL});
    EXPECT_TRUE(WaitUntil([&] { return me.Focus() == lstFile; }));
    EXPECT_TRUE(me.StrikeUntil(VK_DOWN, lineOf(lstFile), [&] { return me.Caption().starts_with(L"day.edf"); }));
    me.Strike('2', {VK_CONTROL});
    EXPECT_TRUE(WaitUntil([&] { return me.Focus() == lvCh; }));
    me.Strike(VK_DOWN);
    me.Strike(VK_SPACE);
    const HWND channels = me.Control(lvCh);
    EXPECT_TRUE(WaitUntil([&] { return ListView_GetCheckState(channels, 1) == 0; }));
    me.Strike('5', {VK_CONTROL});
    EXPECT_TRUE(WaitUntil([&] { return me.Focus() == lvMarks; }));
    me.Strike(VK_TAB, {VK_SHIFT});
    EXPECT_TRUE(WaitUntil([&] { return me.Focus() == edtMarks; }));
    me.Write(L"spin");
    EXPECT_TRUE(WaitUntil([&] { return ListView_GetItemCount(me.Control(lvMarks)) == 1; }));
    me.Strike(VK_RETURN);
    EXPECT_TRUE(WaitUntil([&] { return me.Focus() == lvMarks; }));
}

/// A range is selected, measured and sent to somebody.
void MeasureAndSend(User& me, const std::filesystem::path& sent) {
    me.Strike('0', {VK_CONTROL});
    EXPECT_TRUE(WaitUntil([&] { return me.Focus() == pbGraph; }));
    me.Strike('M');
    for (int step = 0; step < 3; ++step) me.Strike(VK_OEM_PERIOD);
    me.Strike('M', {VK_CONTROL});
    EXPECT_TRUE(WaitUntil([] { return ClipboardText().find(L"1/dX:") != std::wstring::npos; }));
    me.Strike(VK_ESCAPE);
    me.Strike('G', {VK_CONTROL});
    const HWND place = me.DialogWithKeys();
    me.Write(L"0:00:10 .. 0:00:12");
    me.Strike(VK_RETURN);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindow(place); }));
    if (OpenClipboard(nullptr)) EmptyClipboard(), CloseClipboard();
    me.Strike('C', {VK_CONTROL, VK_SHIFT});
    EXPECT_TRUE(WaitUntil([] { return !ClipboardBytes(CF_DIB).empty(); }));
    me.Strike('S', {VK_CONTROL});
    const HWND save = me.DialogWithKeys();
    EXPECT_TRUE(WaitUntil([&] { return GetDlgItem(save, 0x47C) != nullptr; }));
    me.Write(sent.wstring());
    const auto type = [&] { return SendDlgItemMessageW(save, 0x470, CB_GETCURSEL, 0, 0); };
    EXPECT_TRUE(me.TabTo(save, [&] { return FocusOf(save) == GetDlgItem(save, 0x470); }));
    EXPECT_TRUE(me.StrikeUntil(VK_DOWN, type, [&] { return type() == 4; }));
    me.Strike(VK_RETURN);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindow(save); }));
    EXPECT_TRUE(WaitUntil([&] {
        wchar_t told[1024] = {};
        SendPointer(me.Control(sbInfo), SB_GETTEXTW, static_cast<WPARAM>(StatusPanel::Status), told);
        return std::wstring_view(told).find(L"sent.edf") != std::wstring_view::npos;
    }));
    // Two of three channels and their marks, two seconds from ten after the start on.
    const std::string header = Contents(sent).substr(0, 256);
    EXPECT_EQ(header.substr(176, 8), "12.00.10");
    EXPECT_EQ(header.substr(236, 8) + header.substr(244, 8), "2       1       ");
    EXPECT_EQ(header.substr(252), "3   ");
    EXPECT_TRUE(WaitUntil([&] { return GetForegroundWindow() == me.Window(); }));
}

/// Filters, the spectrum, sound and another look.
void LookOtherwise(User& me) {
    EXPECT_EQ(me.Focus(), pbGraph);
    me.Strike('F');
    EXPECT_TRUE(WaitUntil([&] { return IsWindowVisible(me.Control(cboHighPass)) != FALSE; }));
    EXPECT_TRUE(me.TabTo(cboHighPass));
    me.Write(L"2");
    me.Strike(VK_RETURN);
    EXPECT_TRUE(WaitUntil([&] { return WindowText(me.Control(cboHighPass)).starts_with(L"2 "); }));
    // What was typed is taken when the keyboard goes elsewhere, by a key that works from anywhere.
    EXPECT_TRUE(me.TabTo(cboLowPass));
    me.Write(L"30");
    me.Strike('3', {VK_CONTROL});
    EXPECT_TRUE(WaitUntil([&] { return me.Focus() == lstFile; }));
    EXPECT_THAT(WindowText(me.Control(cboLowPass)), StartsWith(L"30 "));
    EXPECT_TRUE(me.TabTo(pbGraph));
    me.Strike('P', {VK_CONTROL, VK_SHIFT});
    const HWND spectrum = me.DialogWithKeys();
    me.Strike(VK_ESCAPE);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindowVisible(spectrum) && me.Focus() == pbGraph; }));
    me.StrikeMenu(mnuDarkGraph);
    if (waveOutGetNumDevs() == 0) return;
    const auto plays = [&] {
        return (SendMessageW(me.Control(tbMain), TB_GETSTATE, mnuSoundPlay + 2, 0) & TBSTATE_ENABLED) != 0;
    };
    for (const bool expected : {true, false}) {
        me.Strike(VK_SPACE);
        EXPECT_TRUE(WaitUntil([&] { return plays() == expected; }));
    }
}

TEST(WholeProgram, ADayByTheKeyboardAlone) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.File(u"samples"));
    static_cast<void>(folder.Write(u"samples/a.bin", SawRecording(6000)));
    static_cast<void>(folder.Write(u"samples/day.edf", ShortEeg()));
    StartUpParts parts = SystemParts();
    parts.program.name = u"Quillon keyboard test";
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Norvik\\Quillon keyboard test");
    parts.path = folder.Path();
    {
        const User user([&](User& me) {
            SetForegroundWindow(me.Window());
            FindByLists(me);
            MeasureAndSend(me, folder.File(u"sent.edf"));
            LookOtherwise(me);
            me.Strike(VK_F4, {VK_MENU});
            EXPECT_TRUE(WaitUntil([&] { return !IsWindow(me.Window()); }));
        });
        EXPECT_EQ(QL_Main(parts, SW_SHOW), 0);
    }
    Settings stored;
    SettingsStore(MakeRegistryObject, parts.program).Load(stored);
    EXPECT_TRUE(stored.window.darkGraph);
    parts.path.clear();
    {
        const User user([&](User& me) {
            EXPECT_TRUE(WaitUntil([&] { return me.Caption().starts_with(L"day.edf"); }));
            EXPECT_THAT(WindowText(me.Control(cboHighPass)), StartsWith(L"2 "));
        });
        EXPECT_EQ(QL_Main(parts, SW_SHOW), 0);
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Norvik\\Quillon keyboard test");
}

}  // namespace
}  // namespace quillon::testing
