#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <set>

#include "support/ViewFixture.h"
#include "view/OverviewColumns.h"
#include "view/OverviewPicture.h"
#include "view/OverviewWindow.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using namespace ::quillon::testing;

/// Noise with rare spikes.
std::shared_ptr<FakeBlock> NoiseBlock(std::mt19937& random, std::size_t channels, std::int32_t samples) {
    auto block = std::make_shared<FakeBlock>();
    block->samples.assign(channels, std::vector<std::int16_t>(static_cast<std::size_t>(samples)));
    for (auto& channel : block->samples) {
        for (std::int16_t& code : channel) {
            const int spike = random() % 5000 == 0 ? 100 : 1;
            code = static_cast<std::int16_t>((static_cast<int>(random() % 400) - 200) * spike);
        }
    }
    return block;
}

class OverviewColumnsTest : public EmptyViewFixture {
  protected:
    /// A plain pass over samples from .. end-1.
    static CodeRange Plain(const std::vector<std::int16_t>& codes, std::int32_t from, std::int32_t end) {
        CodeRange range;
        for (std::int32_t at = std::max(from, 0); at < std::min(end, static_cast<std::int32_t>(codes.size())); ++at)
            range.Add(codes[static_cast<std::size_t>(at)]);
        return range;
    }
    /// The same over all cells of that many samples that have samples of a column; cells begin with the second sample.
    static CodeRange OfCells(const std::vector<std::int16_t>& codes, const SampleSpan& column, std::int32_t cell) {
        const std::int32_t first = std::max(column.first, 1);
        const std::int32_t last = std::max(column.End() - 1, first);
        return Plain(codes, (first - 1) / cell * cell + 1, (last - 1) / cell * cell + 1 + cell);
    }
    std::mt19937 m_random{8};
};

TEST_F(OverviewColumnsTest, AreThoseOfAPlainPassOverTheCellsAsFarAsTheseAreKnown) {
    struct Case {
        std::int32_t samples;
        std::int32_t width;
        bool keepsFine = true;
        std::int64_t atOnce = OverviewColumns::kCellsAtOnce;
    };
    for (const Case& now : {Case{300000, 20},
                            {299999, 29},
                            {260001, 700},
                            {130000, 36, false},
                            {91234, 310, true, 50},
                            {40000, 399},
                            {250000, 20, false, 1}}) {
        SCOPED_TRACE(::testing::Message() << now.samples << " over " << now.width);
        const auto block = NoiseBlock(m_random, 2, now.samples);
        block->pieceSamples = 30000;
        Load(block);
        ExtremesCache extremes(now.keepsFine ? ExtremesCache::kDefaultLimit : 0);
        const SceneBlocks blocks{{m_document.Block(), extremes}};
        OverviewColumns columns(now.atOnce);
        const ColumnGrid grid(now.samples, now.width);
        const bool coarse = !now.keepsFine || now.samples / now.width >= ExtremesCache::kCoarseCell;
        const std::int32_t cell = coarse ? ExtremesCache::kCoarseCell : ExtremesCache::kCell;
        const std::vector<std::int16_t> all{1, 2};
        std::int32_t blank = now.width;
        while (blank > 0) {
            block->samplesRead = 0;
            columns.Update(blocks, now.width);
            while (columns.HasMore()) columns.Update(blocks, now.width);
            EXPECT_FALSE(columns.ReadMore(blocks));
            EXPECT_EQ(block->samplesRead, 0) << "long columns are never read";
            blank = 0;
            for (std::int32_t column = 0; column < now.width; ++column) {
                const SampleSpan samples = grid.Samples(column, 1, now.samples);
                const std::int32_t first = std::max(samples.first, 1);
                const bool known =
                    extremes.KnownTo(*block, all, {first, samples.End() - first}, coarse ? cell : 100) >= samples.End();
                blank += known ? 0 : 1;
                for (const std::int16_t channel : all) {
                    const CodeRange expected =
                        known ? OfCells(block->samples[static_cast<std::size_t>(channel - 1)], samples, cell)
                              : CodeRange();
                    ASSERT_EQ(columns.Of(m_document.Block(), channel)[static_cast<std::size_t>(column)], expected)
                        << column;
                }
            }
            const auto from = static_cast<std::int32_t>(m_random() % static_cast<unsigned>(now.samples - 1)) + 1;
            extremes.Fill(*block, all, {from, now.samples - from}, coarse ? cell : 100, ExtremesCache::Eviction::Never);
            if (m_random() % 8 == 0)
                extremes.Fill(*block, all, {1, now.samples - 1}, coarse ? cell : 100, ExtremesCache::Eviction::Never);
        }
        EXPECT_FALSE(columns.Update(blocks, now.width)) << "nothing is new";
        // The same block with other codes, as long as nothing of it is known.
        extremes.Reset();
        columns.Forget();
        columns.Update(blocks, now.width);
        EXPECT_TRUE(columns.Of(m_document.Block(), 1).front().IsEmpty());
    }
}

TEST_F(OverviewColumnsTest, ShortOnesAreReadOnceAndThenExact) {
    for (const bool framed : {false, true}) {
        for (const std::int32_t samples : {1, 2, 99, 500, 777, 12345, 49999}) {
            SCOPED_TRACE(samples);
            const auto block = NoiseBlock(m_random, 3, samples);
            block->framed = framed;
            block->pieceSamples = 1 + static_cast<std::int32_t>(m_random() % 9000);
            Load(block);
            const SceneBlocks blocks = m_view.AllExtremes().All();
            OverviewColumns columns;
            columns.Update(blocks, 500);
            block->samplesRead = 0;
            while (columns.HasMore()) columns.ReadMore(blocks);
            EXPECT_EQ(block->samplesRead, 3 * samples);
            const ColumnGrid grid(samples, 500);
            for (std::int32_t column = 0; column < 500; ++column) {
                const SampleSpan span = grid.Samples(column, 1, samples);
                for (std::int16_t channel = 1; channel <= 3; ++channel) {
                    ASSERT_EQ(columns.Of(m_document.Block(), channel)[static_cast<std::size_t>(column)],
                              Plain(block->samples[static_cast<std::size_t>(channel - 1)], span.first, span.End()));
                }
            }
        }
    }
    // What cannot be read stays as its cells have it, and is not tried for ever.
    const auto block = NoiseBlock(m_random, 1, 30000);
    block->holeFrom = 15000;
    block->holeTo = 15001;
    Load(block);
    const SceneBlocks blocks = m_view.AllExtremes().All();
    m_view.Extremes().Fill(*block, std::vector<std::int16_t>{1}, {1, 9000}, 100, ExtremesCache::Eviction::Never);
    OverviewColumns columns;
    EXPECT_TRUE(columns.Update(blocks, 500));
    EXPECT_LT(columns.ReadShare(), 0.5);
    for (double before = 0.0; columns.HasMore(); before = columns.ReadShare()) {
        columns.ReadMore(blocks);
        EXPECT_GE(columns.ReadShare(), before);
    }
    EXPECT_EQ(columns.ReadShare(), 1.0);
    EXPECT_FALSE(columns.Of(m_document.Block(), 1)[100].IsEmpty());
    EXPECT_TRUE(columns.Of(m_document.Block(), 1)[400].IsEmpty());
    columns.Update({}, 500);
    EXPECT_TRUE(columns.Of(m_document.Block(), 1).empty()) << "other blocks are forgotten";
}

/// A view of 500 columns over 100 000 samples: 200 of them to a column of the strip.
class OverviewWindowTest : public ViewFixture {
  protected:
    using Part = OverviewWindow::Part;
    static constexpr double kPerColumn = 200.0;
    void Show(double seconds, std::int32_t sample) {
        m_view.SetLanes(true);
        m_view.SelectPage(seconds);
        m_view.GoTo(sample);
    }
    /// Presses and moves there; the button stays down.
    ViewChange Drag(std::int32_t from, std::int32_t to) {
        ViewChange change = m_window.Press(from);
        change |= m_window.Move(to);
        return change;
    }
    [[nodiscard]] std::int32_t Middle() const { return (m_window.Band().left + m_window.Band().right) / 2; }
    OverviewWindow m_window{m_view};
};

TEST_F(OverviewWindowTest, DragsThereAndBackAtAnyPage) {
    std::mt19937 random(4);
    for (const double page : {0.2, 1.0, 7.3, 40.0, 200.0, 900.0}) {
        SCOPED_TRACE(page);
        const auto sample = static_cast<std::int32_t>(random() % 100000) + 1;
        Show(page, sample);
        const std::int32_t column = m_axis.FirstColumn();
        const double ratio = kPerColumn / m_axis.Grid().SamplesPerColumn();
        const double last = m_axis.StripLength() - m_axis.Width();
        const std::int32_t at = Middle();
        EXPECT_EQ(m_window.PartAt(at), Part::Inside);
        EXPECT_EQ(Drag(at, at).scrolled, 0) << "nothing jumps";
        for (const std::int32_t by : {1, -3, 37, -5000, 5000, 0}) {
            const ViewChange change = m_window.Move(at + by);
            EXPECT_FALSE(change.redraw);
            EXPECT_NEAR(m_axis.FirstColumn(), std::clamp(column + by * ratio, 0.0, last), 0.51) << by;
            EXPECT_NEAR(m_axis.PageSeconds(), page, page * 1e-6);
        }
        EXPECT_EQ(m_axis.FirstColumn(), column);
        EXPECT_TRUE(m_window.IsDragging());
        // A zoom in between begins the drag anew.
        m_view.ZoomX(false);
        const std::int32_t zoomed = m_axis.FirstColumn();
        m_window.Move(at + 9);
        EXPECT_EQ(m_axis.FirstColumn(), zoomed);
        m_window.Release();
        EXPECT_EQ(m_window.Move(at + 50).scrolled, 0);
        EXPECT_EQ(m_axis.FirstColumn(), zoomed);
    }
}

TEST_F(OverviewWindowTest, IsWhereTheViewIsAndWideEnoughToBeTaken) {
    m_view.SetLanes(true);
    for (const int dpi : {96, 192}) {
        m_window.SetDpi(dpi);
        for (const double page : {0.01, 3.0, 20.0, 500.0, 1000.0}) {
            for (const std::int32_t sample : {1, 30000, 99999}) {
                SCOPED_TRACE(::testing::Message() << dpi << ' ' << page << ' ' << sample);
                Show(page, sample);
                const ColumnBand band = m_window.Band();
                const SampleSpan seen = m_axis.Visible();
                EXPECT_GE(band.left, 0);
                EXPECT_LT(band.right, 500);
                EXPECT_GE(band.right - band.left + 1, OverviewWindow::kLeastWidth * dpi / 96);
                // Where it is not wider than what is seen it begins and ends with that.
                EXPECT_LE(band.left, seen.first / kPerColumn);
                EXPECT_GE(band.right, (seen.End() - 1) / kPerColumn - 1.0);
                if (seen.count > 4000) {
                    EXPECT_EQ(band.left, static_cast<int>(seen.first / kPerColumn));
                    EXPECT_EQ(band.right, static_cast<int>((seen.End() - 1) / kPerColumn));
                }
                EXPECT_EQ(m_window.PartAt(Middle()), Part::Inside);
                EXPECT_EQ(m_window.PartAt(band.left - 1), Part::LeftEdge);
                EXPECT_EQ(m_window.PartAt(band.right + 1), Part::RightEdge);
                EXPECT_EQ(m_window.PartAt(band.right + dpi / 10), Part::Beside);
            }
        }
    }
    // On one axis the view may lie behind the last sample; without samples there is nothing to take.
    m_view.SetLanes(false);
    m_view.GoToPage(3);
    EXPECT_EQ(m_window.Band().right, 499);
    EXPECT_EQ(OverviewWindow(m_view).PartAt(497), Part::Inside);
    m_document.CloseCurrentFile();
    m_view.BlockLoaded();
    EXPECT_EQ(m_window.PartAt(100), Part::Nothing);
    EXPECT_FALSE(Drag(100, 110).redraw);
}

TEST_F(OverviewWindowTest, AClickBesideItBringsThePlaceToTheMiddle) {
    Show(5.0, 50000);
    const std::int32_t before = m_axis.FirstColumn();
    for (const std::int32_t column : {20, 400, 499, 0}) {
        ASSERT_EQ(m_window.PartAt(column), Part::Beside);
        EXPECT_NE(m_window.Press(column).scrolled, 0);
        const SampleSpan seen = m_axis.Visible();
        const double middle = seen.first + seen.count / 2.0;
        EXPECT_NEAR(middle, std::clamp(column * kPerColumn, 250.0, 99750.0), 2.0) << column;
        // And the drag goes on from there.
        const double ratio = kPerColumn / m_axis.Grid().SamplesPerColumn();
        const std::int32_t first = m_axis.FirstColumn();
        const std::int32_t by = column > 250 ? -10 : 10;
        m_window.Move(column + by);
        EXPECT_NEAR(m_axis.FirstColumn() - first, by * ratio, 0.51);
        m_window.Release();
        m_view.Back();
    }
    EXPECT_EQ(m_axis.FirstColumn(), before) << "each of them is one step back";
}

TEST_F(OverviewWindowTest, ItsEdgesChangeThePageAndTheOtherEdgeStays) {
    Show(200.0, 50000);
    const SampleSpan seen = m_axis.Visible();
    const ColumnBand band = m_window.Band();
    const WaveformView::State before = m_view.Keep();
    for (const bool left : {false, true}) {
        SCOPED_TRACE(left);
        const std::int32_t edge = left ? band.left : band.right;
        EXPECT_FALSE(Drag(edge, edge).redraw);
        for (const std::int32_t to : {edge + 20, edge - 10, edge + 31}) {
            EXPECT_TRUE(m_window.Move(to).redraw);
            const SampleSpan now = m_axis.Visible();
            const double moved = (to - edge) * kPerColumn;
            const double tolerance = 2.0 * m_axis.Grid().SamplesPerColumn() + 1.0;
            EXPECT_NEAR(now.first, seen.first + (left ? moved : 0.0), tolerance);
            EXPECT_NEAR(now.End(), seen.End() + (left ? 0.0 : moved), tolerance);
        }
        EXPECT_FALSE(m_window.Move(edge + 31).redraw) << "nothing new";
        // Past the other edge it is as narrow as it can be taken again; at the ends of the block it stops.
        m_window.Move(left ? 9000 : -9000);
        EXPECT_NEAR(m_axis.Visible().count, OverviewWindow::kLeastWidth * kPerColumn, 5.0);
        m_window.Move(left ? -9000 : 9000);
        EXPECT_NEAR(left ? m_axis.Visible().first : m_axis.Visible().End(), left ? 0 : 100000, 400);
        m_window.Release();
        m_view.Back();
        EXPECT_TRUE(m_view.Keep().place == before.place) << "all of it is one step back";
    }
    // A part that is drawn wider than it is grows, but does not shrink.
    Show(0.5, 50000);
    const SampleSpan narrow = m_axis.Visible();
    Drag(m_window.Band().right, m_window.Band().right - 3);
    EXPECT_EQ(m_axis.Visible(), narrow);
    m_window.Move(m_window.Band().right + 20);
    EXPECT_GT(m_axis.Visible().count, 3000);
    m_window.Release();
    // On one axis the zooms are those of the table.
    m_view.SetLanes(false);
    m_view.SelectZoomX(5);
    m_view.GoTo(50000);
    const SampleSpan one = m_axis.Visible();
    const ColumnBand taken = m_window.Band();
    Drag(taken.right, taken.right + 30);
    EXPECT_EQ(m_axis.ZoomIndex(), 6);
    EXPECT_NEAR(m_axis.Visible().first, one.first, 100);
    m_window.Release();
    Drag(m_window.Band().left, m_window.Band().left + 130);
    EXPECT_LT(m_axis.ZoomIndex(), 6);
}

TEST(OverviewPicture, SpreadsEachChannelOverItsOwnRangeAndLeavesUnknownColumnsBlank) {
    constexpr std::int32_t width = 300;
    constexpr std::int32_t height = 30;
    constexpr std::int32_t markRows = 4;
    // One is small, the other large; one column is an artefact, and some are not known.
    std::vector<CodeRange> small(width, CodeRange{-10, 10});
    std::vector<CodeRange> large(width, CodeRange{0, 20000});
    small[7] = {-32000, 32000};
    for (std::int32_t column = 100; column < 120; ++column) small[static_cast<std::size_t>(column)] = CodeRange();
    large[150] = {0, 0};
    EXPECT_EQ(SpreadOf(small), (CodeRange{-10, 10}));
    EXPECT_EQ(SpreadOf(large), (CodeRange{0, 20000}));
    EXPECT_EQ(SpreadOf(std::vector<CodeRange>(50)), std::nullopt);
    OverviewScene scene;
    scene.colors = {0xF0F0F0, 0xFFFFFF, 0x000000, 0x0000FF, 0xFF0000, 0x00FF00};
    OverviewPicture picture;
    const auto draw = [&](const std::vector<std::span<const CodeRange>>& traces) {
        picture.SetTraces(traces, width, height, markRows);
        return picture.Draw(scene);
    };
    const auto at = [](const std::vector<std::uint32_t>& pixels, std::int32_t column, std::int32_t row) {
        return pixels.at(static_cast<std::size_t>(row * width + column));
    };
    const auto alone = draw({small});
    for (const std::int32_t column : {0, 7, 299}) {
        for (std::int32_t row = 0; row < height; ++row)
            EXPECT_EQ(at(alone, column, row), row > markRows && row < height - 1 ? 0U : 0xF0F0F0U) << row;
    }
    EXPECT_EQ(at(alone, 110, 15), 0xF0F0F0U);
    const auto both = draw({small, large});
    EXPECT_EQ(at(both, 0, 15), 0U);
    EXPECT_GT(at(both, 110, 15), 0U) << "only one of them lies there";
    EXPECT_LT(at(both, 110, 15), 0xC0C0C0U);
    EXPECT_EQ(at(both, 150, 15), at(both, 110, 15));
    EXPECT_EQ(at(both, 150, height - 2), 0U);
    // Marks, selection and window.
    const std::vector<std::int32_t> marks{3, 299};
    scene.marks = marks;
    scene.window = ColumnBand{100, 109};
    scene.selection = ColumnBand{105, 115};
    const auto full = draw({small});
    EXPECT_EQ(at(full, 3, 0), 0xFF0000U);
    EXPECT_EQ(at(full, 3, markRows), 0xF0F0F0U);
    EXPECT_EQ(at(full, 102, 15), 0xFFFFFFU);
    for (const auto& [column, row] : {std::pair(100, 15), {109, 3}, {104, 0}, {104, height - 1}})
        EXPECT_EQ(at(full, column, row), 0x00FF00U);
    EXPECT_EQ((std::set{at(full, 112, 15), at(full, 106, 15), 0xF0F0F0U, 0xFFFFFFU}).size(), 4U)
        << "what is selected differs inside and outside";
    // Of every size, and without traces.
    picture.SetTraces({}, 0, 0, 5);
    EXPECT_TRUE(picture.Draw(scene).empty());
    picture.SetTraces({}, 3, 2, 5);
    EXPECT_EQ(picture.Draw(scene).size(), 6U);
}

TEST(OverviewPicture, MarksStandInTheirColumns) {
    std::mt19937 random(6);
    for (const std::int32_t samples : {40, 1000, 123456}) {
        for (const int count : {0, 1, 30, 5000}) {
            std::vector<BlockMark> marks;
            std::set<std::int32_t> expected;
            const ColumnGrid grid(samples, 250);
            for (int mark = 0; mark < count; ++mark)
                marks.push_back({static_cast<std::int32_t>(random() % static_cast<unsigned>(samples)), u""});
            std::sort(marks.begin(), marks.end(),
                      [](const BlockMark& a, const BlockMark& b) { return a.position < b.position; });
            for (const BlockMark& mark : marks)
                expected.insert(static_cast<std::int32_t>(grid.FirstColumn(mark.position)));
            EXPECT_EQ(MarkColumns(marks, grid, 250), std::vector<std::int32_t>(expected.begin(), expected.end()));
        }
    }
}

}  // namespace
}  // namespace quillon
