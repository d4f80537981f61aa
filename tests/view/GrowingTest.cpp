#include <gtest/gtest.h>

#include <numeric>

#include "view/StretchFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

/// A recording that another program is still writing: two blocks of other rates become longer.
class GrowingTest : public FakeStretches {
  protected:
    /// The blocks with that share of their samples.
    std::vector<std::shared_ptr<FakeBlock>> Part(double share) const {
        std::vector<std::shared_ptr<FakeBlock>> blocks;
        for (const auto& whole : m_whole) {
            auto& block = *blocks.emplace_back(std::make_shared<FakeBlock>(*whole));
            for (auto& codes : block.samples)
                codes.resize(static_cast<std::size_t>(share * static_cast<double>(codes.size())));
            block.marks.clear();
            block.samplesRead = 0;
        }
        return blocks;
    }
    void Begin(double share) {
        m_whole = {Noise(2, 600000, 200.0), Noise(3, 60000, 20.0)};
        // Only then cells are kept, and samples counted.
        for (auto& block : m_whole) block->offersExtremes = true;
        m_document.SetAllSignals(true);
        OpenBlocks(Part(share));
        m_view.SetLanes(true);
        m_view.SignalsChanged();
        Summarise();
    }
    void Grow(double share, bool keeps) {
        fakes.files[u"C:\\a.fake"]->blocks = m_parts = Part(share);
        WaveformView::State kept = m_view.Keep();
        kept.followsEnd = m_view.IsAtEnd();
        if (keeps) m_view.AllExtremes().FileGrows();
        ASSERT_TRUE(m_document.Reload({}));
        m_view.LeaveBlock();
        m_view.BlockLoaded();
        m_view.Restore(kept);
    }
    void Summarise() {
        std::vector<std::int16_t> all(static_cast<std::size_t>(m_document.Block().channelCount));
        std::iota(all.begin(), all.end(), std::int16_t{1});
        while (m_view.Ranges().ReadMissing(m_document.Block(), all, m_view.Axis().Visible())) {
        }
        while (m_view.AllExtremes().ReadOthers(m_view.Axis())) {
        }
    }
    [[nodiscard]] std::int64_t Read() const {
        return std::accumulate(m_parts.begin(), m_parts.end(), std::int64_t{},
                               [](std::int64_t sum, const auto& block) { return sum + block->samplesRead; });
    }
    std::vector<std::shared_ptr<FakeBlock>> m_whole;
    std::vector<std::shared_ptr<FakeBlock>> m_parts;
};

TEST_F(GrowingTest, WhatIsKnownIsNotReadAgainAndTheRestIsRight) {
    for (int turn = 0; turn < 4; ++turn) {
        double share = 0.3 + 0.1 * turn;
        Begin(share);
        while (share < 1.0) {
            SCOPED_TRACE(share);
            share = std::min(share + (Any(3) == 0 ? 0.15 : 0.003), 1.0);
            ASSERT_NO_FATAL_FAILURE(Grow(share, true));
            Summarise();
            for (int page = 0; page < 3; ++page) {
                Show(20000);
                ASSERT_NO_FATAL_FAILURE(ExpectPlainColumns());
            }
        }
    }
    Begin(0.9);
    ASSERT_NO_FATAL_FAILURE(Grow(0.91, true));
    Summarise();
    // The last chunk, what is new, and some units that are compared.
    EXPECT_LT(Read(), 650000);
    // Whoever reads fine cells where they are known finds those of the last chunk too.
    EXPECT_TRUE(m_view.Extremes().KnownTo(*m_document.Block().block, std::vector<std::int16_t>{1},
                                          {1, m_document.Block().sampleCount - 1},
                                          ExtremesCache::kCell) >= m_document.Block().sampleCount);
    ASSERT_NO_FATAL_FAILURE(Grow(0.92, false));
    Summarise();
    EXPECT_GT(Read(), 2 * 500000);
}

TEST_F(GrowingTest, SamplesThatAreOthersThanBeforeAreSeen) {
    Begin(0.5);
    for (auto& block : m_whole)
        for (auto& codes : block->samples)
            for (std::int16_t& code : codes) code = static_cast<std::int16_t>(100 - code);
    ASSERT_NO_FATAL_FAILURE(Grow(0.6, true));
    for (int page = 0; page < 10; ++page) {
        Show(20000);
        ASSERT_NO_FATAL_FAILURE(ExpectPlainColumns());
    }
}

TEST_F(GrowingTest, AViewOfTheEndStaysAtTheEnd) {
    for (const bool lanes : {true, false}) {
        Begin(0.499);
        m_view.SetLanes(lanes);
        m_view.SignalsChanged();
        m_view.Arrange(kWidth, kHeight);
        if (lanes) m_view.SelectPage(10.0);
        m_view.GoToPage(3);
        const TimeAxis& axis = m_view.Axis();
        // First the page is filled, then the end stays at its edge.
        std::int32_t before = axis.FirstColumn();
        Grow(0.4991, true);
        EXPECT_EQ(axis.FirstColumn(), before);
        Grow(0.6, true);
        EXPECT_EQ(axis.FirstColumn() + kWidth, axis.StripLength());
        EXPECT_EQ(axis.Visible().End(), m_document.Block().sampleCount);
        m_view.GoToPage(1);
        before = axis.FirstColumn();
        Grow(0.7, true);
        EXPECT_EQ(axis.FirstColumn(), before);
    }
}

}  // namespace
}  // namespace quillon
