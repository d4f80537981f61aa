#include <algorithm>
#include <chrono>
#include <numeric>

#include "view/GraphPicture.h"
#include "view/Selection.h"
#include "view/StretchFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// Views of random blocks.
class FreeTraceTest : public FakeStretches {
  protected:
    void Make(std::size_t channels, std::int32_t samples) {
        m_source = Noise(channels, samples, 100.0);
        OpenBlocks({m_source});
        m_channels.resize(channels);
        std::iota(m_channels.begin(), m_channels.end(), std::int16_t{1});
    }
    [[nodiscard]] std::vector<TracePoint> PlainOf(std::int16_t channel, std::int32_t from, std::int32_t to) const {
        return Plain(m_document.GetSignal(channel), from, to);
    }
    std::shared_ptr<FakeBlock> m_source;
    std::vector<std::int16_t> m_channels;
    const TimeAxis& m_axis = m_view.Axis();
};

TEST_F(FreeTraceTest, EveryColumnHoldsTheExtremesOfItsSamplesInTheirOrder) {
    for (int round = 0; round < 25; ++round) {
        // Many channels whose columns are made of cells, else a few at any zoom.
        const bool many = round % 5 == 4;
        if (many) {
            Make(static_cast<std::size_t>(9 + Any(8)), 120000 + Any(120000));
        } else {
            Make(static_cast<std::size_t>(1 + Any(3)), 1 + Any(round % 5 == 0 ? 4000000 : 60000));
        }
        TraceReader reader;
        for (int view = 0; view < 12; ++view) {
            if (Any(3) == 0) {
                m_view.ScrollBy(Any(2 * kWidth) - kWidth);  // what was found before is used again
            } else if (many) {
                Show(kWidth * 400.0);
            } else {
                Show();
            }
            const std::int32_t from = Any(3) == 0 ? Any(kWidth) : 0;
            const std::int32_t to = Any(3) == 0 ? from + 1 + Any(kWidth - from) : kWidth;
            std::vector<std::int16_t> shown = m_channels;
            std::shuffle(shown.begin(), shown.end(), m_random);
            if (Any(2) == 0) shown.pop_back();
            const TraceStretch stretch = StretchOf(m_axis, from, to);
            for (int slice = Any(3); slice > 0; --slice)
                TraceReader::Approach(*m_source, m_view.Extremes(), shown, stretch);
            reader.Read(*m_source, m_view.Extremes(), shown, stretch);
            ASSERT_EQ(reader.Failure(), "");
            for (std::size_t at = 0; at < shown.size(); ++at) {
                // And what lines from outside begin at.
                const auto reach = Within(reader.points()[at], from - 1, to + 1);
                ASSERT_EQ(reach, PlainOf(shown[at], from - 1, to + 1))
                    << round << ' ' << view << ", page " << m_axis.PageSeconds();
            }
        }
    }
}

TEST_F(FreeTraceTest, ATruncatedFileIsShownUpToItsEnd) {
    for (int round = 0; round < 60; ++round) {
        Make(2, 1000 + Any(200000));
        Show();
        const SampleSpan seen = m_axis.Visible();
        const std::vector<TracePoint> plain[] = {PlainOf(1, 0, kWidth), PlainOf(2, 0, kWidth)};
        const std::int32_t samples = m_source->SampleCount();
        m_source->holeFrom = Any(samples);
        m_source->holeTo = round % 2 == 0 ? samples : m_source->holeFrom + 1;
        TraceReader reader;
        ExtremesCache extremes;
        reader.Read(*m_source, extremes, m_channels, StretchOf(m_axis, 0, kWidth));
        for (std::size_t at = 0; at < 2; ++at) {
            const auto shown = Within(reader.points()[at], 0, kWidth);
            if (m_source->holeFrom >= seen.End() + 2 * m_axis.Grid().SamplesPerColumn() + 2) {
                ASSERT_EQ(shown, plain[at]) << "all that is visible can be read";
                ASSERT_EQ(reader.Failure(), "");
                continue;
            }
            // Columns before that of the first unreadable sample.
            std::int32_t whole = m_axis.ColumnOf(m_source->holeFrom);
            if (m_source->holeTo <= seen.first - 2 * m_axis.Grid().SamplesPerColumn() - 2) whole = kWidth;
            const auto readable = Within(plain[at], 0, std::clamp(whole, 0, kWidth));
            ASSERT_TRUE(shown.size() >= readable.size() && std::equal(readable.begin(), readable.end(), shown.begin()))
                << round << ' ' << m_axis.PageSeconds();
        }
    }
}

TEST_F(FreeTraceTest, OnlyTheColumnsOfAHoleAreMissing) {
    const auto drawn = [&] {
        std::vector<std::uint32_t> image(std::size_t{kWidth} * kHeight);
        GraphPicture picture;
        picture.SetPixels(image.data(), kWidth, kHeight);
        picture.SetPatience(std::chrono::milliseconds(100000));
        picture.Draw(Scene());
        for (int slice = 0; picture.IsIncomplete() && slice < 3000; ++slice) picture.DrawMore(Scene());
        EXPECT_EQ(picture.Traces().Failure().empty(), m_source->holeTo == 0);
        return image;
    };
    for (int round = 0; round < 60; ++round) {
        Make(static_cast<std::size_t>(1 + Any(3)), 3000 + Any(300000));
        if (round % 3 == 0) {
            m_view.SetLanes(false);
            m_view.SelectZoomX(Any(9));
        } else {
            m_view.SetLanes(true);
            Show();
        }
        ASSERT_EQ(m_axis.IsFree(), round % 3 != 0);
        const SampleSpan seen = m_axis.Visible();
        if (seen.count < 10) continue;
        m_source->holeFrom = seen.first + Any(seen.count);
        m_source->holeTo = std::min(m_source->holeFrom + 1 + Any(seen.count / 10 + 1), seen.End());
        const ColumnRange hole{m_axis.ColumnOf(m_source->holeFrom), m_axis.ColumnOf(m_source->holeTo - 1) + 1};
        const std::vector<std::uint32_t> image = drawn();
        m_source->holeFrom = m_source->holeTo = 0;
        const std::vector<std::uint32_t> whole = drawn();
        // A column needs those beside it, and the line from a sample to the next both.
        const int beside = 4 + static_cast<int>(2.0 / m_axis.Grid().SamplesPerColumn());
        int missing = 0;
        for (std::int32_t column = 0; column < kWidth; ++column) {
            bool same = true;
            for (std::int32_t row = 0; row < kHeight; ++row) {
                const auto at = static_cast<std::size_t>(row * kWidth + column);
                same = same && image[at] == whole[at];
            }
            missing += same ? 0 : 1;
            const bool isNear = column >= hole.from - beside && column < hole.to + beside;
            ASSERT_TRUE(same || isNear) << round << ": column " << column << ", hole " << hole.from << " to "
                                        << hole.to;
        }
        EXPECT_LE(missing, hole.to - hole.from + 2 * beside);
    }
}

TEST_F(FreeTraceTest, ThePictureDoesNotDependOnHowItCameAbout) {
    for (int round = 0; round < 60; ++round) {
        Make(static_cast<std::size_t>(1 + Any(3)), 5 + Any(round % 2 == 0 ? 3000 : 300000));
        m_view.SetClip(Any(2) == 0);
        for (std::size_t lane = 0; lane < m_view.GetLanes().size(); ++lane)
            m_view.MoveLane(lane, Any(kHeight) - kHeight / 2);
        m_view.ZoomY(Any(5));
        m_gridStyle = static_cast<GridStyle>(round % 3);
        Show();
        ASSERT_NO_FATAL_FAILURE(ExpectScrollingCopies()) << round;
    }
}

/// From four columns per sample on a square marks each sample, at the column that pointing at it finds.
TEST_F(FreeTraceTest, SamplesAreDotsAtTheirColumns) {
    Make(1, 1000);
    for (auto& code : m_source->samples[0]) code = static_cast<std::int16_t>(code % 20);
    m_source->scales = {1.0F};
    m_source->offsets = {0.0F};
    OpenBlocks({m_source});
    Lanes lanes = m_view.GetLanes();
    lanes[0].zeroRow = kHeight / 2;
    lanes[0].unitsPerDivision = AmplitudeScale::kDivision;
    for (const double columns : {4.0, 7.5, 50.0}) {
        m_view.SelectPage(kWidth / columns / m_source->rate);
        m_view.ScrollBy(37);
        TracePicture picture;
        std::vector<std::uint32_t> image(static_cast<std::size_t>(kWidth * kHeight), 0xFFFFFF);
        picture.Reset(1, kWidth, kHeight);
        picture.Draw({m_document.Block(), m_axis, lanes, m_view.Extremes()}, 0, kWidth);
        picture.Compose(image.data());
        const SampleSpan seen = m_axis.Visible();
        for (std::int32_t sample = seen.first; sample < seen.End(); ++sample) {
            const std::int32_t column = m_axis.ColumnOf(sample);
            if (column < 1 || column + 1 >= kWidth) continue;
            EXPECT_EQ(SampleUnder(m_axis, column), sample + 1);
            const std::int32_t row = kHeight / 2 - m_source->samples[0][static_cast<std::size_t>(sample)];
            for (std::int32_t at = 0; at < 9; ++at) {
                const std::int32_t pixel = (row - 1 + at / 3) * kWidth + column - 1 + at % 3;
                ASSERT_NE(image[static_cast<std::size_t>(pixel)], 0xFFFFFFU) << columns << ' ' << sample;
            }
        }
    }
}

}  // namespace
}  // namespace quillon
