#include "app/SpectrumCommands.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "app/SpectrumLayout.h"
#include "app/SpectrumWindowSettings.h"
#include "support/ViewFixture.h"

namespace quillon {
namespace {

/// Sines of 10 and 20 Hz in the first channel, 30 Hz in the second one, from the middle on twice as high.
class SpectrumCommandsTest : public testing::EmptyViewFixture {
  protected:
    SpectrumCommandsTest() {
        m_block = testing::Sevens(2, 100000, 200.0);
        for (int i = 0; i < 100000; ++i) {
            const double height = i < 50000 ? 1000.0 : 2000.0;
            const auto sine = [&](double hertz) {
                return height * std::sin(2.0 * std::numbers::pi * hertz * i / 200.0);
            };
            const auto at = static_cast<std::size_t>(i);
            m_block->samples[0][at] = static_cast<std::int16_t>(sine(10.0) + sine(20.0) / 10.0 + i % 7);
            m_block->samples[1][at] = static_cast<std::int16_t>(sine(30.0) + i % 5);
        }
        m_block->titles = {u"A", u"B"};
        Load(m_block);
        m_spectra.onWork = [this](const auto& step, const auto&) { m_step = step; };
        m_spectra.onWorkEnd = [this] { m_step = nullptr; };
    }
    void Finish() {
        while (m_step && m_step()) static_cast<void>(m_spectra.Update());
        m_step = nullptr;
        m_spectra.Update();
        EXPECT_TRUE(m_spectra.IsDone());
    }
    /// Decibels of the highest peak of a trace.
    double Highest(std::size_t trace) const { return FindPeaks(m_spectra.Traces().at(trace).density).at(0).decibels; }

    std::shared_ptr<testing::FakeBlock> m_block;
    FormatOptions m_format;
    SpectrumCommands m_spectra{m_document, m_view, m_format, m_services, Language::English};
    std::function<bool()> m_step;
};

TEST_F(SpectrumCommandsTest, TheSelectionIsAnalysedElseWhatIsSeen) {
    m_view.Select(50001, 100000);
    m_spectra.Analyse();
    EXPECT_FALSE(m_spectra.IsOutdated());
    Finish();
    ASSERT_EQ(m_spectra.Traces().size(), 2U);
    const double high = Highest(0);
    EXPECT_NEAR(m_spectra.Peaks().at(0).frequency, 10.0, 0.02);
    m_spectra.ListPeaksOf(1);
    EXPECT_NEAR(m_spectra.Peaks().at(0).frequency, 30.0, 0.02);
    m_view.Select(1, 40000);
    EXPECT_TRUE(m_spectra.IsOutdated());
    m_spectra.Analyse();
    Finish();
    EXPECT_NEAR(high - Highest(0), 20.0 * std::log10(2.0), 0.01);
    m_view.Deselect();
    EXPECT_TRUE(m_spectra.IsOutdated());
    // What is analysed stays the same although something else is seen meanwhile.
    m_view.Select(1, 300);
    m_spectra.Analyse();
    EXPECT_EQ(m_spectra.Lengths(), (std::vector<std::int32_t>{0, 256}));
    m_view.Select(1, 100);
    Finish();
    EXPECT_EQ(m_spectra.Traces()[0].density.segments, 1);
    m_spectra.Analyse();
    EXPECT_FALSE(m_step);
    EXPECT_FALSE(m_spectra.Refusal().empty());
}

TEST_F(SpectrumCommandsTest, ChoicesAnalyseAnewWhereTheyNeedTo) {
    m_view.Select(1, 40000);
    m_spectra.Analyse();
    EXPECT_FALSE(m_spectra.SetChoices({.scales = {true, LevelScale::Linear}}));
    EXPECT_TRUE(m_spectra.SetChoices({.signal = 2, .length = 8192, .window = 2}));
    m_spectra.Analyse();
    Finish();
    ASSERT_EQ(m_spectra.Traces().size(), 1U);
    EXPECT_EQ(m_spectra.Traces()[0].title, u"B");
    EXPECT_EQ(m_spectra.Traces()[0].density.power.size(), 4097U);
    EXPECT_EQ(m_spectra.LengthText(8192), u"8192 (0.0244 Hz)");
    // A channel that is hidden meanwhile, and a length that no longer fits.
    m_document.Show(2, false);
    m_view.Select(1, 5000);
    EXPECT_TRUE(m_spectra.IsOutdated());
    m_spectra.Analyse();
    Finish();
    EXPECT_EQ(m_spectra.Traces().at(0).title, u"A");
    EXPECT_EQ(m_spectra.Traces()[0].density.power.size(), 2049U);
    m_document.ShowAll(false);
    m_spectra.Analyse();
    EXPECT_FALSE(m_spectra.Refusal().empty());
    EXPECT_TRUE(m_spectra.IsDone());
}

TEST_F(SpectrumCommandsTest, PeaksHaveHarmonicsAndTheTableAllLevels) {
    m_view.Select(1, 40000);
    m_spectra.Analyse();
    m_step();
    m_step();
    m_step();
    EXPECT_TRUE(m_spectra.Update());
    m_spectra.ChoosePeak(0);
    ASSERT_TRUE(m_spectra.ChosenPeak());
    Finish();
    ASSERT_TRUE(m_spectra.ChosenPeak()) << "it stays chosen while more is averaged";
    const Harmonics& harmonics = m_spectra.HarmonicsOfPeak();
    ASSERT_EQ(harmonics.list.size(), 9U);
    EXPECT_NEAR(harmonics.distortion, 0.1, 0.003);
    m_spectra.SetChoices({.scales = {false, LevelScale::Linear}});
    const std::u16string table = m_spectra.TableText();
    EXPECT_EQ(std::count(table.begin(), table.end(), u'\n'), 1 + 2049);
    EXPECT_EQ(table.substr(0, table.find(u'\r')), u"Hz\tA, V/sqrt(Hz)\tB, V/sqrt(Hz)");
    m_block->holeTo = 100000;
    m_spectra.Analyse();
    Finish();
    EXPECT_FALSE(m_spectra.Refusal().empty());
    EXPECT_TRUE(m_spectra.Peaks().empty());
    m_spectra.Leave();
    EXPECT_TRUE(m_spectra.Traces().empty());
}

TEST(SpectrumLayout, ControlsDoNotOverlapAndStayInside) {
    for (const std::int32_t width : {500, 700, 940, 1900}) {
        for (const std::int32_t height : {320, 560, 1000}) {
            for (const std::int32_t dpi : {96, 144}) {
                const SpectrumLayout layout = ArrangeSpectrum({width * dpi / 96,
                                                               height * dpi / 96,
                                                               dpi,
                                                               21 * dpi / 96,
                                                               13 * dpi / 96,
                                                               {150, 140, 100, 160, 170},
                                                               90,
                                                               280});
                std::vector<PixelRect> all(layout.boxes.begin(), layout.boxes.end());
                all.insert(all.end(), layout.labels.begin(), layout.labels.end());
                for (const PixelRect& rect : {layout.heading, layout.plot, layout.peaksTitle, layout.peaks,
                                              layout.harmonicsTitle, layout.harmonics, layout.readout, layout.refresh})
                    all.push_back(rect);
                for (std::size_t at = 0; at < all.size(); ++at) {
                    const PixelRect& rect = all[at];
                    EXPECT_TRUE(rect.left >= 0 && rect.Right() <= width * dpi / 96 && rect.top >= 0 &&
                                rect.Bottom() <= height * dpi / 96 && rect.width > 0 && rect.height > 0)
                        << width << ' ' << height << ' ' << at;
                    for (std::size_t other = 0; other < at; ++other) {
                        EXPECT_TRUE(all[other].Right() <= rect.left || rect.Right() <= all[other].left ||
                                    all[other].Bottom() <= rect.top || rect.Bottom() <= all[other].top)
                            << width << ' ' << height << ' ' << at << ' ' << other;
                    }
                }
            }
        }
    }
}

TEST(SpectrumWindowSettings, ChoicesComeBackAndSpoiledOnesAreTheFirst) {
    SpectrumWindowSettings settings;
    EXPECT_EQ(settings.Choices(3).window, 3) << "the spectrogram's until one is chosen";
    EXPECT_EQ(settings.Choices(9).window, 3);
    const SpectrumChoices chosen{.length = 2048, .window = 1, .scales = {true, LevelScale::Linear}};
    settings.Remember(chosen);
    EXPECT_EQ(settings.Choices(3), chosen);
    for (const std::int32_t length : {-256, 255, 1000, 131072}) {
        settings.length = length;
        settings.levels = static_cast<std::int16_t>(length);
        EXPECT_EQ(settings.Choices(3).length, 0);
        EXPECT_EQ(settings.Choices(3).scales.levels, LevelScale::Decibels);
    }
}

}  // namespace
}  // namespace quillon
