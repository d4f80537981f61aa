#include <gmock/gmock.h>

#include <cmath>

#include "view/StretchFixture.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using namespace ::quillon::testing;

/// What is seen of a recording when filters, reference and montage are chosen.
class ShownTest : public FakeStretches {
  protected:
    void Open(std::size_t channels, std::int32_t samples) {
        m_block = Noise(channels, samples, 200.0);
        m_block->titles.clear();
        for (std::size_t at = 0; at < channels; ++at)
            m_block->titles.push_back(std::u16string(1, static_cast<char16_t>(u'A' + at)));
        OpenBlocks({m_block});
        m_view.SetLanes(true);
        m_document.SetPairs(true);
    }
    void ShowAs(const ShownSettings& settings) {
        if (m_document.ShowAs(settings)) m_view.SignalsChanged();
    }
    /// All that the summary is made of.
    void Summarise() {
        const std::vector<std::int16_t> all{1, 2};
        while (m_view.Ranges().ReadMissing(m_document.Block(), all, m_view.Axis().Visible())) {
        }
    }
    std::shared_ptr<FakeBlock> m_block;
};

TEST_F(ShownTest, GoingToAndFroBetweenSettingsReadsNothingAgain) {
    Open(2, 400000);
    Show(200000);
    ShownSettings filtered;
    filtered.filters[GroupOf(m_block->ChannelUnit(1)).name] = {.highPass = 0.5, .lowPass = 30.0};
    Summarise();
    const auto raw = Drawn();
    ShowAs(filtered);
    EXPECT_NE(m_document.Block().block, m_document.Block().stored);
    EXPECT_EQ(m_document.Block().offsets[0], 0.0F);
    Summarise();
    const auto shown = Drawn();
    EXPECT_NE(shown, raw);
    // The range of what is stored is that of before, and known without reading.
    StretchExtremes& extremes = m_view.AllExtremes();
    m_block->samplesRead = 0;
    while (extremes.ReadStored(std::vector<std::int16_t>{1}, {})) {
    }
    const std::vector<std::int16_t> first{1};
    const auto [least, most] = std::minmax_element(m_block->samples[0].begin(), m_block->samples[0].end());
    const float scale = m_block->ChannelScale(1);
    EXPECT_EQ(extremes.StoredRanges().Found(first)->minimum, *least * scale + m_block->ChannelOffset(1));
    EXPECT_EQ(extremes.StoredRanges().Found(first)->maximum, *most * scale + m_block->ChannelOffset(1));
    EXPECT_NE(m_view.Ranges().Found(first)->maximum, extremes.StoredRanges().Found(first)->maximum);
    EXPECT_LT(m_block->samplesRead, 30000);
    m_block->samplesRead = 0;
    for (int turn = 0; turn < 2; ++turn) {
        ShowAs({});
        EXPECT_EQ(m_document.Block().block, m_block);
        EXPECT_EQ(m_document.Block().offsets[1], m_block->ChannelOffset(2));
        EXPECT_EQ(Drawn(), raw);
        ShowAs(filtered);
        EXPECT_EQ(Drawn(), shown);
    }
    // Edges of columns that begin or end within a cell are read.
    EXPECT_LT(m_block->samplesRead, 400000 / 4);
}

TEST_F(ShownTest, WhatIsAskedWhileABlockIsLeftIsNotOfTheNextOne) {
    Open(2, 200000);
    const auto other = Noise(3, 150000, 200.0);
    OpenBlocks({m_block, other});
    Summarise();
    const auto range = [this] { return m_view.Ranges().Found(std::vector<std::int16_t>{1, 2})->maximum; };
    const float first = range();
    m_view.LeaveBlock();
    // A part of the window that does not know yet.
    Summarise();
    EXPECT_EQ(range(), first);
    m_document.LoadBlock(1);
    m_view.BlockLoaded();
    EXPECT_FALSE(m_view.Ranges().IsKnown(std::vector<std::int16_t>{1, 2}));
    const std::vector<std::int16_t> all{1, 2, 3};
    while (m_view.Ranges().ReadMissing(m_document.Block(), all, m_view.Axis().Visible())) {
    }
    EXPECT_TRUE(m_view.Ranges().Found(std::vector<std::int16_t>{3}).has_value());
    EXPECT_NE(range(), first);
}

TEST_F(ShownTest, WhatAFilterRemembersForLongIsDrawnInSlices) {
    Open(2, 500000);
    m_block->rate = 20000.0;
    LoadBlock(0);
    for (const bool bothWays : {false, true}) {
        ShownSettings filtered;
        filtered.filters[GroupOf(m_block->ChannelUnit(1)).name] = {.highPass = 5.0, .bothWays = bothWays};
        ShowAs(filtered);
        // Single samples, runs of them, columns made of cells; then again with all cells known.
        for (const double fewest : {20.0, 20000.0, 300000.0, 250000.0}) {
            SCOPED_TRACE(fewest);
            Show(fewest);
            ExpectScrollingCopies();
            if (fewest == 300000.0) Summarise();
        }
    }
}

TEST_F(ShownTest, BehindAHighPassTracesLieInTheirLanesAndGoBackToWhereTheyWere) {
    Open(2, 20000);
    m_block->offsets = {5000.0F, -30000.0F};
    LoadBlock(0);
    Show(5000);
    m_view.FindData();
    const auto zeroRows = [this] {
        std::vector<std::int32_t> rows;
        const GraphScene scene = Scene();
        for (const Lane& lane : scene.lanes)
            rows.push_back(static_cast<std::int32_t>(lane.zeroRow) - lane.top - lane.height / 2);
        return rows;
    };
    const std::vector<std::int32_t> raw = zeroRows();
    EXPECT_GT(std::abs(raw[0]), 100);
    ShownSettings filtered;
    filtered.filters[GroupOf(m_block->ChannelUnit(1)).name] = {.highPass = 0.5};
    ShowAs(filtered);
    EXPECT_THAT(zeroRows(), ElementsAre(0, 0));
    filtered.unfiltered = {u"B"};
    ShowAs(filtered);
    EXPECT_THAT(zeroRows(), ElementsAre(0, raw[1]));
    filtered.filters.begin()->second = {.lowPass = 30.0};
    ShowAs(filtered);
    EXPECT_EQ(zeroRows(), raw);
    ShowAs({});
    EXPECT_EQ(zeroRows(), raw);
}

TEST_F(ShownTest, PairsOfAMontageAreSignalsInFrontOfTheOthers) {
    Open(3, 5000);
    ShownSettings settings;
    settings.montage = {u"mine", u"A-B, B-C"};
    ShowAs(settings);
    ASSERT_EQ(m_document.SignalCount(), 5);
    EXPECT_THAT(m_document.SignalOrder(), ElementsAre(4, 5, 1, 2, 3));
    EXPECT_EQ(m_document.GetSignal(5).title, u"B-C");
    m_document.Show(4, false);
    EXPECT_FALSE(m_document.IsShown(4));
    ExpectPlainColumns();
    settings.montage->pairs = u"A-C";
    ShowAs(settings);
    EXPECT_THAT(m_document.SignalOrder(), ElementsAre(4, 1, 2, 3));
    m_document.SetPairs(false);
    EXPECT_TRUE(m_document.Reshow());
    EXPECT_EQ(m_document.SignalCount(), 3);
}

TEST_F(ShownTest, AnAverageFollowsTheShownChannelsButNotASolo) {
    Open(3, 1000);
    ShownSettings settings;
    settings.reference.kind = Reference::Kind::Average;
    ShowAs(settings);
    const auto all = m_document.Block().block;
    m_document.Show(3, false);
    EXPECT_TRUE(m_document.Reshow());
    const auto two = m_document.Block().block;
    EXPECT_NE(two, all);
    m_document.Solo(std::int16_t{1});
    EXPECT_FALSE(m_document.Reshow());
    m_document.Solo({});
    m_document.Show(3, true);
    EXPECT_TRUE(m_document.Reshow());
    EXPECT_EQ(m_document.Block().block, all);
    // Found scales make what was computed of the provisional ones useless.
    m_block->provisional = {1.0F, 2.0F, 3.0F};
    m_block->stepsLeft = 1;
    m_document.LoadBlock(0);
    const auto provisional = m_document.Block().block;
    EXPECT_EQ(m_document.PrepareMore(), PrepareStep::DoneRescaled);
    EXPECT_NE(m_document.Block().block, provisional);
}

}  // namespace
}  // namespace quillon
