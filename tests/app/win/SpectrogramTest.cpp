#include <gmock/gmock.h>

#include <cmath>

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

}  // namespace
}  // namespace quillon
