#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/FakeRecording.h"
#include "view/GraphPicture.h"
#include "view/QL_ChUtils.h"
#include "view/ScaleLabels.h"
#include "view/Selection.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

constexpr std::int32_t kWidth = 120;
constexpr std::int32_t kHeight = 90;

/// Views of random blocks on a free axis.
class FreeTraceTest : public ::testing::Test {
  protected:
    [[nodiscard]] std::int32_t Any(std::int32_t below) {
        return static_cast<std::int32_t>(m_random() % static_cast<unsigned>(below));
    }
    /// Noise with stretches of one value, of a few values and with spikes, so that extremes occur several times and lie
    /// in cells at the edges of columns.
    void Make(std::size_t channels, std::int32_t samples) {
        m_source = std::make_shared<FakeBlock>();
        m_source->framed = Any(2) == 0;
        m_source->offersExtremes = Any(8) != 0;
        m_source->pieceSamples = 1 + Any(300000);
        for (std::size_t at = 0; at < channels; ++at) {
            std::vector<std::int16_t> codes;
            codes.reserve(static_cast<std::size_t>(samples));
            while (static_cast<std::int32_t>(codes.size()) < samples) {
                const std::int32_t kind = Any(4);
                const std::int32_t reach = kind == 0 ? 1 : kind == 1 ? 4 : 60;
                for (std::int32_t left = 1 + Any(3000); left > 0 && static_cast<std::int32_t>(codes.size()) < samples;
                     --left)
                    codes.push_back(static_cast<std::int16_t>(Any(500) == 0 ? Any(400) - 200 : Any(reach)));
            }
            m_source->samples.push_back(std::move(codes));
        }
        m_block = {};
        m_block.block = m_source;
        m_block.channelCount = static_cast<std::int16_t>(channels);
        m_block.sampleCount = samples;
        m_block.sampleRate = 100.0;
        m_block.invScale.assign(channels, 1.0F);
        m_block.offsets.assign(channels, 0.0F);
        m_lanes = Lanes(channels);
        m_channels.clear();
        for (std::size_t at = 0; at < channels; ++at) {
            const auto number = static_cast<std::int16_t>(at);
            m_block.channelNumbers.push_back(number);
            m_channels.push_back(static_cast<std::int16_t>(number + 1));
            Lane& lane = m_lanes[at];
            lane.height = kHeight / static_cast<std::int32_t>(channels);
            lane.top = number * lane.height;
            lane.zeroRow = lane.top + Any(lane.height + 60) - 30;
            lane.unitsPerDivision = 50.0 + Any(400);
            lane.clip = Any(2) == 0;
            lane.single = true;
            lane.channels = {m_channels[at]};
        }
        m_extremes.Reset();
        m_axis = {};
        m_axis.SetWidth(kWidth);
        m_axis.SetBlock(samples, m_block.sampleRate, true);
    }
    /// A page of any length from the shortest to the whole block, at any place.
    void Show(double shortest = kWidth / 50.0) {
        std::uniform_real_distribution<double> share(0.0, 1.0);
        m_axis.SelectPage(shortest * std::pow(m_block.sampleCount / shortest, share(m_random)) / m_block.sampleRate,
                          Any(kWidth));
        m_axis.ScrollBy(Any(m_axis.StripLength() + 1) - m_axis.FirstColumn());
    }
    /// The points as a plain loop over the samples gives them, those of columns from .. to-1.
    [[nodiscard]] std::vector<TracePoint> Plain(std::size_t channel, std::int32_t from, std::int32_t to) const {
        std::vector<TracePoint> points;
        const auto& codes = m_source->samples[channel];
        for (std::int32_t column = from; column < to; ++column) {
            const std::int64_t strip = std::int64_t{m_axis.FirstColumn()} + column;
            if (strip < 0 || strip >= m_axis.StripLength()) continue;
            const SampleSpan shown = m_axis.Grid().Samples(strip);
            const std::int32_t end = std::min(shown.End(), m_block.sampleCount);
            if (m_axis.Grid().ShowsEverySample()) {
                const bool begins = strip == 0 || m_axis.Grid().FirstSample(strip - 1) < shown.first;
                if (begins) points.push_back({column, codes[static_cast<std::size_t>(shown.first)]});
                continue;
            }
            const auto [first, last] = std::pair(codes.begin() + shown.first, codes.begin() + end);
            const auto highest = std::max_element(first, last);
            const auto lowest = std::min_element(first, last);
            points.push_back({column, lowest < highest ? *lowest : *highest});
            points.push_back({column, lowest < highest ? *highest : *lowest});
        }
        return points;
    }
    /// Those of the wanted columns.
    [[nodiscard]] static std::vector<TracePoint> Within(std::span<const TracePoint> points, std::int32_t from,
                                                        std::int32_t to) {
        std::vector<TracePoint> inside;
        for (const TracePoint& point : points)
            if (point.x >= from && point.x < to) inside.push_back(point);
        return inside;
    }
    [[nodiscard]] GraphScene Scene() { return {m_block, m_axis, m_lanes, m_extremes}; }

    std::mt19937 m_random{21};
    std::shared_ptr<FakeBlock> m_source;
    ViewBlock m_block;
    std::vector<std::int16_t> m_channels;
    Lanes m_lanes;
    TimeAxis m_axis;
    ExtremesCache m_extremes;
    FormatOptions m_format;
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
                m_axis.ScrollBy(Any(2 * kWidth) - kWidth);  // what was found before is used again
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
            for (int slice = Any(3); slice > 0; --slice) TraceReader::Approach(*m_source, m_extremes, shown, stretch);
            reader.Read(*m_source, m_extremes, shown, stretch);
            ASSERT_EQ(reader.Failure(), "");
            for (std::size_t at = 0; at < shown.size(); ++at) {
                const auto channel = static_cast<std::size_t>(shown[at] - 1);
                const auto points = reader.points()[at];
                // And what lines from outside begin at.
                const auto reach = Within(points, from - 1, to + 1);
                ASSERT_EQ(reach, Plain(channel, from - 1, to + 1))
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
        m_source->holeFrom = Any(m_block.sampleCount);
        m_source->holeTo = round % 2 == 0 ? m_block.sampleCount : m_source->holeFrom + 1;
        TraceReader reader;
        reader.Read(*m_source, m_extremes, m_channels, StretchOf(m_axis, 0, kWidth));
        for (std::size_t at = 0; at < 2; ++at) {
            const auto shown = Within(reader.points()[at], 0, kWidth);
            if (m_source->holeFrom >= seen.End() + 2 * m_axis.Grid().SamplesPerColumn() + 2) {
                ASSERT_EQ(shown, Plain(at, 0, kWidth)) << "all that is visible can be read";
                ASSERT_EQ(reader.Failure(), "");
                continue;
            }
            // Columns before that of the first unreadable sample.
            std::int32_t whole = m_axis.ColumnOf(m_source->holeFrom);
            if (m_source->holeTo <= seen.first - 2 * m_axis.Grid().SamplesPerColumn() - 2) whole = kWidth;
            const auto readable = Plain(at, 0, std::clamp(whole, 0, kWidth));
            ASSERT_TRUE(shown.size() >= readable.size() && std::equal(readable.begin(), readable.end(), shown.begin()))
                << round << ' ' << m_axis.PageSeconds();
        }
    }
}

/// Scrolled and drawn in slices, with dots and lines over many columns, it is what it is drawn at once.
TEST_F(FreeTraceTest, ThePictureDoesNotDependOnHowItCameAbout) {
    using Image = std::vector<std::uint32_t>;
    constexpr auto size = static_cast<std::size_t>(kWidth * kHeight);
    std::size_t slices = 0;
    for (int round = 0; round < 60; ++round) {
        Make(static_cast<std::size_t>(1 + Any(3)), 5 + Any(round % 2 == 0 ? 3000 : 300000));
        for (std::int32_t at = Any(900); at < m_block.sampleCount; at += 1 + Any(900))
            m_block.marks.push_back({at, {}});
        Show();
        m_format.timeOfDay = round % 3 == 1;
        m_format.sampleIndexes = round % 3 == 2;
        GraphScene scene = Scene();
        scene.gridStyle = static_cast<GridStyle>(round % 3);
        scene.gridColor = 0x4080C0;
        scene.gridColumns = GridColumns(m_axis, m_block, m_format);
        GraphPicture picture, anew;
        Image image(size), expected(size);
        picture.SetPixels(image.data(), kWidth, kHeight);
        anew.SetPixels(expected.data(), kWidth, kHeight);
        picture.SetPatience(std::chrono::milliseconds(round % 4 < 2 ? 0 : 100000));
        picture.Draw(scene);
        for (int step = 0; step < 5; ++step) {
            const std::int32_t shift = m_axis.ScrollBy(Any(2 * kWidth) - kWidth);
            scene.gridColumns = GridColumns(m_axis, m_block, m_format);
            picture.Scroll(scene, shift);
            for (int slice = 0; picture.IsIncomplete() && slice < 3000; ++slice, ++slices) picture.DrawMore(scene);
            ASSERT_FALSE(picture.IsIncomplete());
            anew.Draw(scene);
            ASSERT_TRUE(image == expected) << round << ", page " << m_axis.PageSeconds();
            ASSERT_EQ(picture.Arrows(96).size(), anew.Arrows(96).size());
            // Nothing that was kept is missed by a reader that knows nothing.
            ExtremesCache fresh;
            GraphScene first{m_block, m_axis, m_lanes, fresh};
            first.gridStyle = scene.gridStyle;
            first.gridColor = scene.gridColor;
            first.gridColumns = scene.gridColumns;
            anew.Draw(first);
            ASSERT_TRUE(image == expected) << round;
        }
    }
    EXPECT_GT(slices, 20U);
}

/// From four columns per sample on a square marks each sample, at the column that pointing at it finds.
TEST_F(FreeTraceTest, SamplesAreDotsAtTheirColumns) {
    Make(1, 1000);
    for (auto& code : m_source->samples[0]) code = static_cast<std::int16_t>(code % 20);
    m_lanes[0].zeroRow = kHeight / 2;
    m_lanes[0].unitsPerDivision = 100.0;
    for (const double columns : {4.0, 7.5, 50.0}) {
        m_axis.SelectPage(kWidth / columns / m_block.sampleRate, 0);
        m_axis.ScrollBy(37);
        TracePicture picture;
        std::vector<std::uint32_t> image(static_cast<std::size_t>(kWidth * kHeight), 0xFFFFFF);
        picture.Reset(1, kWidth, kHeight);
        picture.Draw(Scene(), 0, kWidth);
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
