#include <algorithm>
#include <map>
#include <random>

#include "support/ViewFixture.h"
#include "view/QL_ChUtils.h"
#include "view/ScaleLabels.h"
#include "view/ViewReport.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// The first and last row of a colour per column; the second one behind it.
using Extent = std::pair<std::int32_t, std::int32_t>;

class ViewReportTest : public EmptyViewFixture {
  protected:
    /// Two signals that wander apart, with a mark.
    void LoadNoise() {
        const auto block = Sevens(2, 20000, 100.0);
        std::mt19937 random(7);
        int level = 0;
        for (std::size_t sample = 0; sample < block->samples[0].size(); ++sample) {
            level = std::clamp(level + static_cast<int>(random() % 41U) - 20, -400, 400);
            block->samples[0][sample] = static_cast<std::int16_t>(level);
            block->samples[1][sample] = static_cast<std::int16_t>(level / 2 + 100);
        }
        block->marks = {{300, u"mark"}};
        Load(block);
    }
    [[nodiscard]] GraphScene Scene() {
        return {.block = m_document.Block(),
                .axis = m_view.Axis(),
                .lanes = m_view.GetLanes(),
                .extremes = m_view.Extremes(),
                .gridStyle = GridStyle::Lines,
                .gridColumns = GridColumns(m_view.Axis(), m_document.Block(), {}, 96),
                .others = m_view.OtherBlocks()};
    }
    static ReportLayout Layout() {
        const ReportStyle style{96, {}, [](const std::u16string& text) {
                                    return TextSize{static_cast<std::int32_t>(text.size()) * 6, 13};
                                }};
        return {style, {u"heading"}};
    }
    /// Rows of a signal's pixels, per column of the window; of a picture `scale` times as large.
    static std::vector<Extent> Extents(std::span<const std::uint32_t> pixels, TextSize size, int scale,
                                       std::uint32_t color) {
        std::vector<Extent> extents(static_cast<std::size_t>(size.width / scale), {size.height, 0});
        for (std::int32_t at = 0; at < size.width * size.height; ++at) {
            if (pixels[static_cast<std::size_t>(at)] != color) continue;
            Extent& extent = extents[static_cast<std::size_t>(at % size.width / scale)];
            extent.first = std::min(extent.first, at / size.width / scale);
            extent.second = std::max(extent.second, at / size.width / scale);
        }
        return extents;
    }
};

/// The pixels of boxes, in their order.
std::vector<std::uint32_t> Filled(const std::vector<ReportBox>& boxes, TextSize size) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size.width * size.height), 0xFFFFFF);
    for (const ReportBox& box : boxes) {
        for (std::int32_t y = box.top; y < box.end; ++y)
            std::fill_n(pixels.begin() + std::ptrdiff_t{y} * size.width + box.left, box.right - box.left, box.color);
    }
    return pixels;
}

TEST_F(ViewReportTest, LargerPicturesShowTheSameSamplesAndValues) {
    LoadNoise();
    const ReportLayout layout = Layout();
    for (const char* const mode : {"table", "lanes", "page", "end"}) {
        if (mode == std::string("lanes")) m_view.SetLanes(true);
        if (mode == std::string("page")) m_view.SelectPage(3.0);
        if (mode == std::string("end")) m_view.GoToPage(3);
        m_view.Arrange(500, 400);
        m_view.FitScales(ValueRange{-200.0F, 200.0F});
        const auto never = [] { return false; };
        ViewReport once(m_document, m_view, Scene(), layout, 1);
        ASSERT_TRUE(once.DrawGraph(never));
        // At its own size it is what the window has.
        std::vector<std::uint32_t> window(once.GraphPixels().size());
        GraphPicture graph;
        graph.SetPixels(window.data(), 500, 400);
        graph.Draw(Scene());
        EXPECT_TRUE(std::ranges::equal(window, once.GraphPixels())) << mode;
        for (const int scale : {2, 3, 4}) {
            ViewReport large(m_document, m_view, Scene(), layout, scale);
            ASSERT_TRUE(large.DrawGraph(never));
            EXPECT_EQ(large.Size().width, once.Size().width);
            EXPECT_EQ(large.GraphSize().width, 500 * scale);
            // Background and lines make the same picture; what is drawn of the lines is within them.
            const auto background = Filled(large.Background(), large.GraphSize());
            EXPECT_EQ(background[0], large.GraphPixels()[0]);
            for (std::int16_t channel = 0; channel < 2; ++channel) {
                const std::uint32_t color = TraceColor(channel);
                EXPECT_EQ(std::count(background.begin(), background.end(), color), 0);
                const auto small = Extents(once.GraphPixels(), once.GraphSize(), 1, color);
                const auto fine = Extents(large.GraphPixels(), large.GraphSize(), scale, color);
                int same = 0;
                int seen = 0;
                for (std::size_t column = 1; column + 1 < small.size(); ++column) {
                    if (small[column].first > small[column].second) continue;
                    ++seen;
                    same += std::abs(small[column].first - fine[column].first) <= 4 &&
                                    std::abs(small[column].second - fine[column].second) <= 4
                                ? 1
                                : 0;
                }
                EXPECT_GT(seen, 100) << mode;
                EXPECT_GE(same, seen * 9 / 10) << mode << " x " << scale << ", channel " << channel;
                std::int32_t top = 400 * scale;
                std::int32_t end = 0;
                for (const TraceLine& line : large.Lines()) {
                    if (line.color != color) continue;
                    for (const DevicePoint& point : line.points) {
                        if (point.x < 0 || point.x >= 500 * scale) continue;
                        top = std::min(top, point.y);
                        end = std::max(end, point.y);
                    }
                }
                for (const Extent& extent : fine) {
                    if (extent.first > extent.second) continue;
                    EXPECT_GE(extent.first, top / scale - 1);
                    EXPECT_LE(extent.second, end / scale + 1);
                }
            }
        }
    }
}

TEST_F(ViewReportTest, TheBackgroundIsWhatLiesBelowTheTraces) {
    LoadNoise();
    const ReportLayout layout = Layout();
    for (const bool lanes : {false, true}) {
        m_view.SetLanes(lanes);
        m_view.Arrange(500, 400);
        const GraphScene scene = Scene();
        ViewReport report(m_document, m_view, scene, layout, 2);
        ASSERT_TRUE(report.DrawGraph([] { return false; }));
        const auto background = Filled(report.Background(), report.GraphSize());
        int other = 0;
        std::map<std::uint32_t, int> colors;
        for (std::size_t at = 0; at < background.size(); ++at) {
            const std::uint32_t drawn = report.GraphPixels()[at];
            other += drawn != background[at] && drawn != TraceColor(0) && drawn != TraceColor(1) ? 1 : 0;
            ++colors[background[at]];
        }
        EXPECT_EQ(other, 0);
        EXPECT_GE(colors.size(), lanes ? 4U : 3U) << "grid, zero levels, the mark";
        const auto texts = report.Frame().texts;
        EXPECT_TRUE(std::ranges::any_of(texts, [](const ReportText& text) { return text.text == u"mark"; }));
        // Who asks for a stop gets no picture.
        EXPECT_FALSE(report.DrawGraph([] { return true; }));
    }
}

}  // namespace
}  // namespace quillon
