#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "app/win/MainWindowFixture.h"
#include "view/GraphColors.h"
#include "view/ReadableColor.h"
#include "view/win/GDI_Utils.h"

namespace quillon::testing {
namespace {

class LookTest : public MainWindowTest {
  protected:
    /// Share of the pixels of a picture box that are bright.
    [[nodiscard]] double BrightShare(int id) const {
        const Pixels pixels = Capture(id);
        const auto bright = std::count_if(pixels.rgb.begin(), pixels.rgb.end(),
                                          [](std::uint32_t color) { return Contrast(color, 0xFFFFFF) < 3; });
        return static_cast<double>(bright) / std::max<double>(1, static_cast<double>(pixels.rgb.size()));
    }
    /// The graph once it does not change any more: a busy machine draws it in slices.
    [[nodiscard]] Pixels Drawn() const {
        Pixels pixels;
        EXPECT_TRUE(WaitFor([&] {
            const Pixels before = std::exchange(pixels, Capture(pbGraph));
            Sleep(30);
            return pixels == before;
        }));
        return pixels;
    }
    /// What the screen shows between the titles of lanes and the graph, as 0xRRGGBB.
    [[nodiscard]] std::uint32_t Gap() const {
        UpdateWindow(m_form->Window());
        const RECT graph = Place(pbGraph);
        POINT at{graph.left - 2, (graph.top + graph.bottom) / 2};
        ScreenToClient(m_form->Window(), &at);
        const WindowDC dc(m_form->Window());
        const COLORREF color = GetPixel(dc.Get(), static_cast<int>(at.x), static_cast<int>(at.y));
        return static_cast<std::uint32_t>(GetRValue(color) << 16 | GetGValue(color) << 8 | GetBValue(color));
    }
};

TEST_F(LookTest, DarkIsEverythingAroundTheGraphAndNothingThatIsCopied) {
    m_folder.Write(u"a.bin", BinRecording(100, Noise(4000, 3)));
    Start();
    Command(mnuOverview);
    for (const bool lanes : {false, true}) {
        if (lanes) Command(mnuLanes);
        m_global.view->Select(500, 900);
        Command(mnuLineWidth);  // draws anew
        Command(mnuCopy + 1);
        const std::string lightCopy = ClipboardBytes(CF_DIB);
        // Not before: copying takes the cursor away where the pointer happens to rest on the graph.
        const Pixels light = Drawn();
        Command(mnuDarkGraph);
        const Pixels dark = Drawn();
        EXPECT_GT(dark.Count(kDarkColors.paper), light.Count(kLightColors.paper) / 2);
        EXPECT_EQ(dark.Count(kLightColors.paper), 0);
        EXPECT_GT(dark.Count(kDarkColors.Trace(0)), 100);
        for (const int id : {pbGraph, pbScaleX, pbScaleY, pbOverview}) EXPECT_LT(BrightShare(id), 0.4) << id;
        EXPECT_TRUE(!lanes || Gap() == kDarkColors.strip->face) << Gap();
        Command(mnuCopy + 1);
        EXPECT_TRUE(ClipboardBytes(CF_DIB) == lightCopy) << "dark on white";
        EXPECT_TRUE(Drawn() == dark);
        Command(mnuDarkGraph);
        EXPECT_TRUE(Drawn() == light);
        EXPECT_TRUE(!lanes || Gap() == SystemColor(COLOR_BTNFACE)) << Gap();
    }
}

TEST_F(LookTest, TheSpectrogramsMarginsAndTheSpectraFollow) {
    m_folder.Write(u"a.bin", BinRecording(100, Noise(4000, 2)));
    Start();
    Command(mnuSpectrogram);
    Command(mnuSpectrum);
    const HWND plot = GetDlgItem(FindWindowW(L"QuillonSpectrum", nullptr), SpectrumWindow::kPlot);
    ASSERT_TRUE(WaitFor([&] { return PixelsOf(plot).Count(kLightColors.Trace(0)) > 50; }));
    Command(mnuDarkGraph);
    EXPECT_GT(PixelsOf(plot).Count(kDarkColors.Trace(0)), 50);
    EXPECT_EQ(PixelsOf(plot).Count(kLightColors.paper), 0);
    for (const int id : {pbScaleF, pbLevels}) {
        EXPECT_GT(Capture(id).Count(kDarkColors.scaleFace), 100) << id;
        EXPECT_EQ(Capture(id).Count(kLightColors.scaleFace), 0) << id;
    }
}

TEST_F(LookTest, AWiderLineCoversMoreAndIsKept) {
    m_folder.Write(u"a.bin", SawRecording());
    Start();
    int before = 0;
    for (int width = 1; width <= kMostLineWidth; ++width) {
        Command(mnuLineWidth + width - 1);
        const int pixels = Capture(pbGraph).Count(kLightColors.Trace(0));
        EXPECT_GT(pixels, before);
        before = pixels;
        EXPECT_EQ(m_global.settings.window.lineWidth, width);
    }
}

}  // namespace
}  // namespace quillon::testing
