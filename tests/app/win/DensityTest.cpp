#include <gmock/gmock.h>

#include <map>

#include "app/win/MainWindowFixture.h"
#include "app/win/SpectrumWindow.h"
#include "view/win/GDI_Utils.h"

namespace quillon::testing {
namespace {

using ::testing::Each;

/// Sizes by name.
using Sizes = std::map<std::string, std::vector<LONG>>;

/// What a window consists of, as far as it depends on the density: places, fonts, pictures, rows and columns.
Sizes SizesOf(HWND window) {
    Sizes sizes;
    for (const HWND control : Descendants(window)) {
        const std::wstring kind = ClassOf(control);
        std::string name;
        for (HWND at = control; at != window; at = GetParent(at)) name += std::to_string(GetDlgCtrlID(at)) + ' ';
        const auto send = [&](UINT message, WPARAM wParam = 0) {
            return static_cast<LONG>(SendMessageW(control, message, wParam, 0));
        };
        const auto pictures = [&](UINT message, WPARAM wParam) {
            int width = 0;
            int height = 0;
            const auto list = reinterpret_cast<HIMAGELIST>(SendMessageW(control, message, wParam, 0));
            // The program itself does not import it.
            const auto sizeOf = reinterpret_cast<BOOL(WINAPI*)(HIMAGELIST, int*, int*)>(
                reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"comctl32.dll"), "ImageList_GetIconSize")));
            if (list != nullptr) sizeOf(list, &width, &height);
            sizes[name + "pictures"].insert(sizes[name + "pictures"].end(), {width, height});
        };
        RECT place{};
        GetWindowRect(control, &place);
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
        // The arrows of tabs that do not fit have no place of their own until they are seen.
        if (kind == UPDOWN_CLASSW) {
            sizes[name + "seen"] = {IsWindowVisible(control)};
            continue;
        }
        // Toolbars have no texts; a label that only names what follows has no place.
        if (IsRectEmpty(&place)) continue;
        sizes[name + "place"] = {place.left, place.top, place.right, place.bottom};
        LOGFONTW font{};
        if (GetObjectW(reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)), sizeof font, &font) != 0 &&
            kind != TOOLBARCLASSNAMEW)
            sizes[name + "font"] = {font.lfHeight};
        if (kind == WC_COMBOBOXW)
            sizes[name + "rows"] = {send(CB_GETITEMHEIGHT), send(CB_GETITEMHEIGHT, static_cast<WPARAM>(-1))};
        if (kind == WC_LISTBOXW) sizes[name + "rows"] = {send(LB_GETITEMHEIGHT), send(LB_GETHORIZONTALEXTENT)};
        if (kind == WC_LISTVIEWW) {
            for (int column = 0; column < 4; ++column)
                sizes[name + "columns"].push_back(ListView_GetColumnWidth(control, column));
            RECT item{};
            ListView_GetItemRect(control, 0, &item, LVIR_BOUNDS);
            sizes[name + "rows"] = {item.bottom - item.top};
            if (GetDlgCtrlID(control) == lvCh) pictures(LVM_GETIMAGELIST, LVSIL_SMALL);
        }
        if (kind == TOOLBARCLASSNAMEW) {
            pictures(TB_GETIMAGELIST, 0);
            pictures(TB_GETDISABLEDIMAGELIST, 0);
            RECT last{};
            SendPointer(control, TB_GETITEMRECT, static_cast<WPARAM>(send(TB_BUTTONCOUNT) - 1), &last);
            sizes[name + "buttons"] = {send(TB_BUTTONCOUNT), send(TB_GETBUTTONSIZE), last.right, last.bottom};
        }
    }
    return sizes;
}

/// What is told to a window that comes to a monitor of another density.
void MoveTo(HWND window, int dpi, RECT place) {
    SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
}

class DensityTest : public MainWindowTest {
  protected:
    [[nodiscard]] RECT Frame() const {
        RECT frame{};
        GetWindowRect(m_form->Window(), &frame);
        return frame;
    }
    /// As large on a screen of the density as this is at that of the tests.
    static RECT Larger(const RECT& frame, int dpi) {
        const auto grown = [&](LONG length) { return MulDiv(static_cast<int>(length), dpi, ScreenDpi()); };
        return {frame.left, frame.top, frame.left + grown(frame.right - frame.left),
                frame.top + grown(frame.bottom - frame.top)};
    }
    void StartWithEverything() {
        static_cast<void>(m_folder.Write(u"a.bin", SawRecording(60000)));
        m_global.settings.window.spectrogramShown = true;
        Start();
        Command(mnuFilterRow);
        Command(mnuLanes);
        Command(mnuOverview);
        Command(mnuPage + 3);
        Pump();
    }
};

TEST_F(DensityTest, AWindowThatGoesToAnotherMonitorAndBackIsWhatItWas) {
    StartWithEverything();
    const HWND window = m_form->Window();
    m_global.settings.window.listWidth = 203;
    m_global.settings.window.valuesHeight = 97;
    m_global.settings.window.laneLabels = 77;
    const RECT frame{10, 10, 10 + MulDiv(620, ScreenDpi(), 96), 10 + MulDiv(420, ScreenDpi(), 96)};
    MoveTo(window, ScreenDpi(), frame);
    ClickCheckBox(1);
    Pump();
    ScrollTo(1234);
    Pump();
    const Sizes before = SizesOf(window);
    const double page = m_global.view->Axis().PageSeconds();
    for (const int dpi : {192, 144, 192, 120, 192}) {
        SCOPED_TRACE(dpi);
        const RECT larger = Larger(frame, dpi);
        MoveTo(window, dpi, larger);
        const RECT now = Frame();
        EXPECT_TRUE(EqualRect(&now, &larger)) << now.right - now.left << " x " << now.bottom - now.top;
        Sizes grown = SizesOf(window);
        for (const auto& [name, lengths] : grown) {
            if (name.ends_with("font")) {
                EXPECT_THAT(lengths, Each(-MulDiv(11, dpi, 96))) << name;
            }
        }
        const int picture = MulDiv(16, dpi, 96);
        for (const int id : {tbMain, tbGoTo, lvCh})
            EXPECT_THAT(grown[std::to_string(id) + " pictures"], Each(picture)) << id;
        EXPECT_EQ(Place(lvCh).right - Place(lvCh).left, Converted(203, ScreenDpi(), dpi) - ScaledTo(dpi, 4));
        EXPECT_NEAR(m_global.view->Axis().PageSeconds(), page, page / 100) << "the page of lanes";
        EXPECT_EQ(m_global.view->LanesOfChannels().Dpi(), dpi);
        MoveTo(window, ScreenDpi(), frame);
        EXPECT_EQ(SizesOf(window), before);
        EXPECT_EQ(m_global.view->Axis().PageSeconds(), page);
        EXPECT_EQ(m_global.settings.window.listWidth, 203);
        EXPECT_FALSE(ListView_GetCheckState(Control(lvCh), 1)) << "check marks stay";
    }
}

TEST_F(DensityTest, OtherWindowsFollowAndThePlaceTellsItsDensity) {
    StartWithEverything();
    Command(mnuSpectrum);
    const HWND spectrum = FindWindowW(L"QuillonSpectrum", nullptr);
    ASSERT_NE(spectrum, nullptr);
    const int own = ScreenDpi();
    const RECT place{20, 20, 20 + MulDiv(560, own, 96), 20 + MulDiv(380, own, 96)};
    MoveTo(spectrum, own, place);
    const Sizes before = SizesOf(spectrum);
    MoveTo(spectrum, 2 * own, Larger(place, 2 * own));
    EXPECT_NE(SizesOf(spectrum), before);
    MoveTo(spectrum, own, place);
    EXPECT_EQ(SizesOf(spectrum), before);
    // Closed on a dense monitor.
    const RECT frame{10, 10, 10 + MulDiv(600, own, 96), 10 + MulDiv(410, own, 96)};
    MoveTo(m_form->Window(), 2 * own, Larger(frame, 2 * own));
    TearDown();
    const WindowPlace kept = m_global.settings.window.place;
    EXPECT_EQ(kept.dpi, 2 * own);
    EXPECT_EQ(kept.width, 2 * (frame.right - frame.left));
}

}  // namespace
}  // namespace quillon::testing
