#include "app/BackgroundWork.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

#include "app/StringIds.h"
#include "support/ViewFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;
using namespace std::chrono_literals;

class WorkSlicesTest : public ::testing::Test {
  protected:
    /// Writes its name at every step, and as a capital when it is done. The first step calls `first`.
    WorkSlices::Pass Pass(char name, int steps, const std::function<void()>& first = {}) {
        const auto step = [this, name, steps, first, made = std::make_shared<int>(0)] {
            m_log += name;
            if ((*made)++ == 0 && first) first();
            return *made < steps;
        };
        return {0, step, [] { return 0.0; }, [this, name] { m_log += static_cast<char>(name - 'a' + 'A'); }};
    }
    std::string RunAll() {
        while (m_work.Run(0ms)) {
        }
        return std::exchange(m_log, {});
    }
    WorkSlices m_work;
    std::string m_log;
};

TEST_F(WorkSlicesTest, TheMostUrgentPassRunsWhateverItsStepsDoToThePasses) {
    const auto start = [&](int priority, WorkSlices::Pass pass) {
        return [this, priority, pass] { m_work.Start(priority, pass); };
    };
    m_work.Start(2, Pass('b', 2, start(1, Pass('a', 2))));
    EXPECT_TRUE(m_work.Run(0ms));
    EXPECT_EQ(m_log, "b") << "one step where there is no time";
    EXPECT_EQ(RunAll(), "baaAbB");
    m_work.Start(1, Pass('c', 1, start(1, Pass('d', 2))));
    EXPECT_EQ(RunAll(), "cddD") << "a replaced pass is not done";
    m_work.Start(1, Pass('e', 1, [&] { m_work.Drop(1); }));
    m_work.Start(3, Pass('f', 1, [&] { EXPECT_TRUE(m_work.Run(1h)); }));
    EXPECT_EQ(RunAll(), "efF");
    m_work.Start(1, Pass('g', 2, [&] { m_work.DropAll(); }));
    m_work.Start(3, Pass('h', 1));
    EXPECT_EQ(RunAll(), "g");
    WorkSlices::Pass last = Pass('i', 1);
    last.onDone = start(1, Pass('j', 1));
    m_work.Start(1, last);
    EXPECT_EQ(RunAll(), "ijJ");
    const auto fail = [] { throw std::runtime_error("step"); };
    m_work.Start(1, Pass('k', 2, fail));
    m_work.Start(2, Pass('l', 1));
    EXPECT_THROW(m_work.Run(1h), std::runtime_error);
    EXPECT_EQ(RunAll(), "klL") << "the failed pass alone is dropped";
    m_work.Start(1, Pass('m', 2, [&] { m_work.Start(1, Pass('n', 1)), fail(); }));
    EXPECT_THROW(m_work.Run(1h), std::runtime_error);
    EXPECT_EQ(RunAll(), "mnN") << "not the one that has replaced it";
}

/// Reading its extremes takes longer than what counts as quick, some times.
struct SlowBlock : FakeBlock {
    int naps = 0;
    bool ColumnExtremes(std::span<const std::int16_t> channels, std::int32_t first, std::int32_t count,
                        std::int32_t run, std::span<RunExtremes* const> out) override {
        if (naps > 0 && naps-- > 0) std::this_thread::sleep_for(21ms);
        return FakeBlock::ColumnExtremes(channels, first, count, run, out);
    }
};

class BackgroundWorkTest : public ViewFixture {
  protected:
    using User = BackgroundWork::RangeUser;
    BackgroundWorkTest() {
        m_work.onStart = [] {};
        m_work.onRescaled = [this] { m_log += 'r', m_view.Rescaled(), m_work.Rescaled(); };
        m_work.onFound = [this](const ReadStep&) { m_log += 'f'; };
        m_block->samples.assign(2, std::vector<std::int16_t>(100000, 7));
        m_block->pieceSamples = 10000;
        Load(m_block);
    }
    /// Adds the name to what is logged when the ranges are found.
    bool Find(User user, std::vector<std::int16_t> channels, char name, bool quick) {
        m_block->naps = quick ? 0 : 1;
        return m_work.FindRanges(user, channels, [this, user, channels, name] {
            m_log += name;
            EXPECT_TRUE(m_view.Ranges().IsRecorded(channels));
            // Found for good, or searched again at once where samples cannot be read.
            EXPECT_TRUE(m_work.FindRanges(user, channels, [] { FAIL(); }));
        });
    }
    std::string RunAll() {
        while (m_work.RunSlice()) {
        }
        return std::exchange(m_log, {});
    }
    std::shared_ptr<SlowBlock> m_block = std::make_shared<SlowBlock>();
    BackgroundWork m_work{m_document, m_view};
    std::string m_log;
};

TEST_F(BackgroundWorkTest, RangesAreFoundOnceForAllWhoWait) {
    for (const std::int32_t hole : {0, 1}) {
        m_block->holeFrom = 50000, m_block->holeTo = 50000 + hole;
        m_view.Rescaled();
        EXPECT_FALSE(Find(User::FindData, {1}, 'a', false));
        EXPECT_FALSE(Find(User::Spectrum, {2}, 's', false));
        EXPECT_FALSE(Find(User::FindData, {2}, 'b', false)) << "pressed again: the later wish counts";
        EXPECT_EQ(RunAll(), "bs");
        EXPECT_TRUE(Find(User::FindData, {2, 1}, 'c', true));
        m_view.Rescaled();
        EXPECT_FALSE(Find(User::Spectrum, {1}, 's', false));
        EXPECT_TRUE(Find(User::FindData, {1}, 'd', true));
        EXPECT_EQ(RunAll(), "s") << "found meanwhile";
        // Codes of other scales: who waits gets the ranges of these.
        m_view.Rescaled();
        EXPECT_FALSE(Find(User::FindData, {1}, 'e', false));
        m_block->samples[0][99999] = static_cast<std::int16_t>(1000 + hole);
        m_work.onRescaled();
        EXPECT_EQ(RunAll(), "re");
        EXPECT_EQ(m_view.Ranges().Found(std::vector<std::int16_t>{1})->maximum,
                  501.0F + 0.5F * static_cast<float>(hole));
    }
    m_view.Rescaled();
    EXPECT_FALSE(Find(User::FindData, {1}, 'f', false));
    m_work.BlockLeft();
    EXPECT_TRUE(m_work.IsIdle());
    EXPECT_TRUE(Find(User::Spectrum, {1}, 'g', true));
    EXPECT_EQ(RunAll(), "") << "nobody waits any longer";
}

TEST_F(BackgroundWorkTest, ALoadedBlockIsPreparedReadOnAndSummarisedAndEscapeDropsOneOfThese) {
    const std::vector<std::int16_t> both{1, 2};
    for (const bool dropped : {false, true}) {
        m_view.Rescaled();
        m_block->provisional = {2.0F, 2.0F};
        m_block->stepsLeft = 3;
        m_document.LoadBlock(0);
        m_library.files[u"C:\\a.fake"]->steps.assign(2, [this] { m_block->marks.emplace_back(5, u"new"); });
        m_work.BlockLoaded();
        EXPECT_FALSE(m_work.DropCurrent()) << "not told yet";
        if (dropped) {
            std::this_thread::sleep_for(WorkSlices::kReportAfter);
            EXPECT_EQ(m_work.Current(), (WorkSlices::Report{IDS_WORK_SCALES, 99})) << "never 100";
            EXPECT_TRUE(m_work.DropCurrent());
            EXPECT_EQ(m_work.Current(), (WorkSlices::Report{IDS_WORK_MARKS, 0}));
        }
        EXPECT_EQ(RunAll(), dropped ? "ff" : "rff");
        EXPECT_EQ(m_block->IsProvisional(), dropped);
        EXPECT_TRUE(m_view.Ranges().IsKnown(both));
    }
}

TEST_F(BackgroundWorkTest, TheOtherBlocksOfTheStretchFollowTheLoadedOne) {
    const auto slow = Sevens(3, 10000, 10.0);
    slow->provisional = {2.0F, 2.0F, 2.0F};
    slow->stepsLeft = 3;
    slow->pieceSamples = 10000;
    m_block->provisional = {2.0F, 2.0F};
    m_block->stepsLeft = 2;
    m_library.files[u"C:\\a.fake"]->blocks.push_back(slow);
    m_document.SetAllSignals(true);
    m_view.SetLanes(true);
    const auto load = [&](std::int16_t block) {
        m_work.BlockLeft();
        m_view.LeaveBlock();
        m_document.LoadBlock(block);
        m_view.BlockLoaded();
        m_view.Arrange(500, 400);
        m_work.BlockLoaded();
    };
    load(0);
    EXPECT_EQ(RunAll(), "rr") << "the scales of either block";
    EXPECT_EQ(m_document.GetSignal(3).block.invScale[0], 2.0F);
    EXPECT_TRUE(m_view.Ranges().IsKnown(std::vector<std::int16_t>{1, 2}));
    EXPECT_EQ(m_view.AllExtremes().OthersShare(), 1.0);
    m_block->samplesRead = slow->samplesRead = 0;
    load(1);
    EXPECT_EQ(RunAll(), "");
    EXPECT_TRUE(m_view.Ranges().IsKnown(std::vector<std::int16_t>{1, 2, 3}));
    EXPECT_LE(m_block->samplesRead + slow->samplesRead, 5) << "the first samples of a block are in no cell";
}

}  // namespace
}  // namespace quillon
