#include <gmock/gmock.h>

#include <cmath>
#include <functional>

#include "app/win/MainWindowFixture.h"

namespace quillon {
namespace {

using ::testing::HasSubstr;
using namespace ::quillon::testing;

class SpectrogramTest : public MainWindowTest {
  protected:
    /// A tone of a quarter of the highest frequency, and one of half of it in the second channel.
    void StartWithTones() {
        std::vector<std::vector<std::int16_t>> frames;
        for (int at = 0; at < 30000; ++at)
            frames.push_back({static_cast<std::int16_t>(std::lround(1000.0 * std::sin(at * 0.785398))),
                              static_cast<std::int16_t>(std::lround(1000.0 * std::sin(at * 1.570796)))});
        static_cast<void>(m_folder.Write(u"a.bin", BinRecording(1000.0F, frames)));
        Start();
    }
    /// Row of the brightest pixel of a column, as a share of the height from the bottom.
    [[nodiscard]] double Brightest(int column) const {
        const Pixels pixels = Capture(pbFFT);
        int best = 0;
        int brightest = -1;
        for (int y = 0; y < pixels.height; ++y) {
            const std::uint32_t pixel = pixels.At(column, y);
            const int sum = static_cast<int>((pixel >> 16 & 255) + (pixel >> 8 & 255) + (pixel & 255));
            if (sum > brightest) best = y;
            brightest = std::max(brightest, sum);
        }
        return 1.0 - (best + 0.5) / pixels.height;
    }
};

TEST_F(SpectrogramTest, ShowsTheChosenChannelColumnForColumn) {
    StartWithTones();
    Command(mnuSpectrogram);
    EXPECT_NE(SendMessageW(Control(tbMain), TB_GETSTATE, mnuSpectrogram, 0) & TBSTATE_CHECKED, 0);
    const RECT graph = Place(pbGraph);
    const RECT picture = Place(pbFFT);
    EXPECT_EQ(graph.left, picture.left);
    EXPECT_EQ(graph.right, picture.right);
    EXPECT_NEAR(Brightest(200), 0.25, 0.02);
    // The second channel is taken by a click on its line.
    RECT line{};
    line.left = LVIR_LABEL;
    SendPointer(Control(lvCh), LVM_GETITEMRECT, 1, &line);
    Click(lvCh, line.left + 10, (line.top + line.bottom) / 2);
    EXPECT_NEAR(Brightest(200), 0.5, 0.02);
    const Pixels taken = Capture(pbFFT);
    m_global.settings.spectrum.decibelRange = 30.0F;
    Click(lvCh, line.left + 10, (line.top + line.bottom) / 2);
    EXPECT_FALSE(Capture(pbFFT) == taken) << "a click on the shown one computes it anew";
    Command(mnuScaleX + 3);
    EXPECT_NEAR(Brightest(200), 0.5, 0.02) << "zoomed";
}

TEST_F(SpectrogramTest, PaletteReadoutAndNoBlock) {
    StartWithTones();
    const std::int16_t palette = m_global.settings.spectrum.palette;
    Click(pbPal, 3, 3);
    EXPECT_EQ(m_global.settings.spectrum.palette, palette) << "nothing while it is off";
    Command(mnuSpectrogram);
    const Pixels before = Capture(pbFFT);
    for (const int next : {1, 2, 0}) {
        Click(pbPal, 3, 3);
        EXPECT_EQ(m_global.settings.spectrum.palette, (palette + next) % 3);
        EXPECT_EQ(Capture(pbFFT) == before, next == 0);
    }
    // The pointer reads time, frequency and level, with the band across both pictures.
    Point(pbFFT, 200, before.height * 3 / 4);
    EXPECT_THAT(Wide(m_form->ValuesText()), HasSubstr(L"F:\t12"));
    EXPECT_THAT(Wide(m_form->ValuesText()), HasSubstr(L" dB"));
    EXPECT_NE(Capture(pbFFT).At(200, 5), before.At(200, 5));
    Point(pbFFT, -100, -100);
    EXPECT_TRUE(Capture(pbFFT) == before);
}

/// Looks at the menu that has opened, and closes it.
struct MenuLook {
    int entries = 0;
    std::vector<SIZE> previews{};
};

LRESULT CALLBACK LookAtMenu(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
    auto& look = *reinterpret_cast<MenuLook*>(data);
    if (message == WM_INITMENUPOPUP && look.entries == 0) {
        const auto menu = reinterpret_cast<HMENU>(wParam);
        look.entries = GetMenuItemCount(menu);
        const HMENU palettes = GetSubMenu(menu, 0);
        for (int line = 0; line < GetMenuItemCount(palettes); ++line) {
            MENUITEMINFOW item{};
            item.cbSize = sizeof item;
            item.fMask = MIIM_BITMAP;
            BITMAP bitmap{};
            if (GetMenuItemInfoW(palettes, static_cast<UINT>(line), TRUE, &item) != FALSE)
                GetObjectW(item.hbmpItem, sizeof bitmap, &bitmap);
            look.previews.push_back({bitmap.bmWidth, bitmap.bmHeight});
        }
    }
    if (message == WM_ENTERIDLE && wParam == MSGF_MENU) PostMessageW(window, WM_KEYDOWN, VK_ESCAPE, 0);
    return DefSubclassProc(window, message, wParam, lParam);
}

TEST_F(SpectrogramTest, ItsMenuOpensByMouseAndKeyAndItsFiguresFollowTheSettings) {
    for (const Language language : {Language::English, Language::Russian}) {
        m_language = language;
        StartWithTones();
        Command(mnuSpectrogram);
        const auto looked = [&](const std::function<void()>& open) {
            MenuLook look;
            SetWindowSubclass(m_form->Window(), LookAtMenu, 1, reinterpret_cast<DWORD_PTR>(&look));
            open();
            Pump();
            RemoveWindowSubclass(m_form->Window(), LookAtMenu, 1);
            return look;
        };
        for (const int id : {pbFFT, pbPal, pbLevels, pbScaleF}) {
            const MenuLook look = looked([&] { SendMessageW(Control(id), WM_RBUTTONUP, 0, MAKELPARAM(3, 3)); });
            EXPECT_EQ(look.entries, 12) << id;
            ASSERT_EQ(look.previews.size(), 3U);
            for (const SIZE& size : look.previews) EXPECT_TRUE(size.cx >= 64 && size.cy >= 12);
        }
        SetFocus(Control(pbFFT));
        EXPECT_EQ(looked([&] {
                      EXPECT_TRUE(m_form->PreTranslate({Control(pbFFT), WM_KEYDOWN, VK_APPS, 0, 0, {}}));
                  }).entries,
                  12);
        // The figures are those of the levels, and drawn whole: none touches the edges.
        const Pixels levels = Capture(pbLevels);
        EXPECT_GT(levels.Count(0xFFFFFF), 100);
        for (int y = 0; y < levels.height; ++y) EXPECT_EQ(levels.At(levels.width - 1, y), 0U);
        Command(mnuTopLevel + 2);
        EXPECT_FALSE(Capture(pbLevels) == levels);
        Command(mnuTopLevel);
        EXPECT_TRUE(Capture(pbLevels) == levels);
        // A tone of an eighth of the rate, 125 Hz: a quarter of the height, more of 200 Hz.
        EXPECT_NEAR(Brightest(200), 0.25, 0.02);
        Command(mnuHighestFrequency + 1);
        EXPECT_NEAR(Brightest(200), 125.0 / 200.0, 0.02);
        Point(pbFFT, 200, static_cast<int>(Capture(pbFFT).height * 3 / 8));
        EXPECT_THAT(Wide(m_form->ValuesText()), HasSubstr(L"F:\t12"));
        Command(mnuHighestFrequency);
        // Without the spectrogram Tab does not go there, nor stays the keyboard.
        SetFocus(Control(pbFFT));
        Command(mnuSpectrogram);
        EXPECT_EQ(GetFocus(), Control(pbGraph));
        EXPECT_FALSE(IsWindowVisible(Control(pbFFT)));
        MainWindowTest::TearDown();
    }
}

}  // namespace
}  // namespace quillon
