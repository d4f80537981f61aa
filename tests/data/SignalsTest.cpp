#include <gmock/gmock.h>

#include "data/Document.h"
#include "support/FakeRecording.h"

namespace quillon {
namespace {

using ::testing::ElementsAre;
using namespace ::quillon::testing;

/// Recordings whose stretches have several blocks.
class SignalsTest : public ::testing::Test {
  protected:
    /// A block from a second of the recording on.
    std::shared_ptr<FakeBlock> Add(std::size_t channels, double rate, std::int32_t samples, double second = 0.0) {
        auto block = std::make_shared<FakeBlock>();
        block->rate = rate;
        block->start = 45000.5 + second / 86400.0;
        block->samples.assign(channels, std::vector<std::int16_t>(static_cast<std::size_t>(samples), 1));
        for (std::size_t at = 0; at < channels; ++at) block->titles.push_back(u"S" + std::u16string(1, m_letter++));
        m_recording->blocks.push_back(block);
        return block;
    }
    void Open() {
        m_recording->name = u"C:\\a.fake";
        m_library.files[m_recording->name] = m_recording;
        m_document.OpenFile(m_recording->name, {});
    }
    [[nodiscard]] std::u16string Titles() const {
        std::u16string titles;
        for (const std::int16_t number : m_document.SignalOrder()) titles += m_document.GetSignal(number).title[1];
        return titles;
    }
    /// The titles of those that are shown.
    [[nodiscard]] std::u16string Shown() const {
        std::u16string titles;
        for (const std::int16_t number : m_document.SignalOrder()) {
            const Signal signal = m_document.GetSignal(number);
            EXPECT_EQ(signal.shown, m_document.IsShown(number));
            if (signal.shown) titles += signal.title[1];
        }
        return titles;
    }

    char16_t m_letter = u'a';
    std::shared_ptr<FakeRecording> m_recording = std::make_shared<FakeRecording>();
    FakeLibrary m_library;
    FakeServices m_services;
    Document m_document{m_library, m_services};
};

TEST_F(SignalsTest, AStretchIsTheNeighboursOfTheSameTime) {
    Add(1, 100.0, 1000, -20.0);
    Add(2, 100.0, 1000);
    Add(2, 10.0, 100, 0.0049);  // half a sample of the faster one
    Add(1, 1.0, 10);
    Add(1, 100.0, 1000, 0.006);
    Add(1, 10.0, 101, 40.0);
    Add(1, 100.0, 1000, 40.0);
    Add(1, 10.0, 100, 40.0);
    Open();
    m_document.LoadBlock(1);
    EXPECT_EQ(Titles(), u"bc") << "unless all signals are wanted";
    EXPECT_EQ(m_document.StretchSignals(), 5);
    EXPECT_THAT(m_recording->blocks[2]->calls, ::testing::Not(::testing::Contains("Prepare")));
    m_document.SetAllSignals(true);
    EXPECT_EQ(Titles(), u"bcdef");
    EXPECT_EQ(m_document.SignalCount(), 5);
    m_document.LoadBlock(3);
    EXPECT_EQ(Titles(), u"bcdef");
    const Signal signal = m_document.GetSignal(5);
    EXPECT_EQ(signal.title, u"Se");
    EXPECT_EQ(signal.channel, 2);
    EXPECT_EQ(signal.block.sampleRate, 10.0);
    EXPECT_EQ(signal.block.invScale[1], 2.0F);
    EXPECT_EQ(m_document.GetSignal(1).title, u"Sf") << "the channels of the loaded block come first";
    EXPECT_FALSE(m_document.IsShown(0) || m_document.IsShown(6));
    m_document.LoadBlock(0);
    EXPECT_EQ(Titles(), u"a");
    m_document.LoadBlock(6);
    EXPECT_EQ(Titles(), u"ij") << "durations differ by a sample of the slower one";
    m_document.SetAllSignals(false);
    EXPECT_EQ(Titles(), u"i");
    EXPECT_TRUE(m_document.OtherBlocks().empty());
}

TEST_F(SignalsTest, ManyStretchesAndSignalsStayBounded) {
    for (int stretch = 0; stretch < 300; ++stretch) {
        Add(1, 100.0, 1000, stretch * 20.0);
        Add(1, 10.0, 100, stretch * 20.0);
    }
    for (int block = 0; block < 20; ++block) Add(30, 100.0, 1000, -1000.0);
    m_document.SetAllSignals(true);
    Open();
    for (const auto& block : m_recording->blocks) block->calls.clear();
    m_document.LoadBlock(200);
    EXPECT_EQ(m_document.SignalCount(), 2);
    const auto looked = std::count_if(m_recording->blocks.begin(), m_recording->blocks.end(),
                                      [](const auto& block) { return !block->calls.empty(); });
    EXPECT_EQ(looked, 4) << "the two of the stretch and one at either end";
    for (const std::int16_t block : {std::int16_t{600}, std::int16_t{610}, std::int16_t{619}}) {
        m_document.LoadBlock(block);
        EXPECT_EQ(m_document.SignalCount(), 17 * 30);
        EXPECT_EQ(m_document.SignalOrder().size(), 17U * 30U);
    }
}

TEST_F(SignalsTest, TheOrderIsThatOfTheRecording) {
    Add(3, 100.0, 1000)->inputs = {1, 3, 6};
    Add(2, 10.0, 100)->inputs = {2, 4};
    Add(1, 1.0, 10)->inputs = {5};
    m_document.SetAllSignals(true);
    Open();
    for (std::int16_t block = 0; block < 3; ++block) {
        m_document.LoadBlock(block);
        EXPECT_EQ(Titles(), u"adbefc") << block;
    }
    m_recording->blocks[2]->inputs = {1};
    m_document.LoadBlock(0);
    m_document.LoadBlock(1);
    EXPECT_EQ(Titles(), u"abcdef") << "inputs of blocks that are counted each by itself tell nothing";
}

TEST_F(SignalsTest, CheckMarksStayWithTheirSignals) {
    Add(2, 100.0, 1000)->inputs = {1, 2};
    Add(2, 10.0, 100)->inputs = {3, 4};
    Add(1, 1.0, 10)->inputs = {5};
    Add(2, 100.0, 1000, 30.0);
    Add(2, 10.0, 100, 30.0);
    Open();
    m_document.Show(2, false);
    m_document.LoadBlock(1);
    EXPECT_EQ(Shown(), u"c") << "blocks share the slots";
    m_document.LoadBlock(0);
    m_document.SetAllSignals(true);
    EXPECT_EQ(Shown(), u"acde");
    m_document.Show(3, false);  // c
    EXPECT_EQ(Shown(), u"ade");
    m_document.LoadBlock(1);
    EXPECT_EQ(Shown(), u"ade");
    m_document.Show(5, false);  // e
    m_document.Show(1, true);   // c
    m_document.LoadBlock(2);
    EXPECT_EQ(Shown(), u"acd");
    m_document.LoadBlock(4);
    EXPECT_EQ(Shown(), u"fhi") << "the next stretch shows the same signals";
    m_document.LoadBlock(0);
    EXPECT_EQ(Shown(), u"acd");
    m_document.Solo(std::int16_t{4});
    EXPECT_EQ(Shown(), u"d");
    m_document.Reload({});
    EXPECT_EQ(Shown(), u"d");
    EXPECT_TRUE(m_document.IsSolo());
    m_document.LoadBlock(1);
    EXPECT_EQ(Shown(), u"acd") << "another block ends a solo";
    m_document.Reload({});
    EXPECT_EQ(Shown(), u"acd");
    m_document.InvertShown();
    EXPECT_EQ(Shown(), u"be");
    m_document.ShowAll(false);
    EXPECT_EQ(Shown(), u"");
    m_document.ShowAll(true);
    EXPECT_EQ(Shown(), u"abcde");
    m_document.Show(4, false);  // b
    m_document.SetAllSignals(false);
    m_document.SetAllSignals(true);
    EXPECT_EQ(Shown(), u"acde");
    Open();
    EXPECT_EQ(Shown(), u"abcde") << "of another recording all are shown at first";
}

TEST_F(SignalsTest, ScalesOfAllBlocksBecomeFinal) {
    Add(1, 100.0, 1000);
    Add(1, 10.0, 100);
    Add(1, 1.0, 10);
    for (const auto& block : m_recording->blocks) {
        block->provisional = {8.0F};
        block->stepsLeft = 2;
    }
    m_recording->blocks[2]->provisional = {0.5F};
    m_document.SetAllSignals(true);
    Open();
    EXPECT_EQ(m_document.GetSignal(2).block.invScale[0], 0.125F);
    std::vector<PrepareStep> steps;
    while (m_document.Provisional() != nullptr) steps.push_back(m_document.PrepareMore());
    using enum PrepareStep;
    EXPECT_THAT(steps, ElementsAre(More, DoneRescaled, More, DoneRescaled, More, Done));
    for (std::int16_t number = 1; number <= 3; ++number)
        EXPECT_EQ(m_document.GetSignal(number).block.invScale[0], 2.0F);
    EXPECT_EQ(m_document.PrepareMore(), Done);
    m_document.CloseCurrentFile();
    EXPECT_EQ(m_document.PrepareMore(), Done);
    EXPECT_EQ(m_document.StretchSignals(), 0);
    EXPECT_EQ(m_document.SignalCount(), 0);
}

/// While the rest of a recording is read, the blocks of its last stretch grow together.
TEST_F(SignalsTest, AStretchGrowsWithItsBlock) {
    Add(1, 100.0, 1000);
    Add(1, 10.0, 100);
    const auto grow = [&](std::int32_t seconds) {
        m_letter = u'a';
        m_recording->blocks.clear();
        Add(1, 100.0, 100 * seconds);
        Add(1, 10.0, 10 * seconds);
    };
    m_recording->steps = {[&] { Add(1, 100.0, 1000, 90.0); }, [&] { grow(30); }, [&] { grow(11); }, [] {}};
    m_document.SetAllSignals(true);
    Open();
    ReadStep step = m_document.ReadMore(0);
    EXPECT_FALSE(step.signalsChanged);
    step = m_document.ReadMore(0);
    EXPECT_FALSE(step.grown || step.signalsChanged) << "too little to load the block again";
    EXPECT_EQ(Titles(), u"ab");
    EXPECT_EQ(m_document.GetSignal(2).block.sampleCount, 100);
    step = m_document.ReadMore(0);
    EXPECT_TRUE(step.grown && step.signalsChanged);
    EXPECT_EQ(m_document.GetSignal(2).block.sampleCount, 300);
    step = m_document.ReadMore(0);
    EXPECT_FALSE(step.grown || step.signalsChanged);
    EXPECT_TRUE(step.blocksChanged);
    EXPECT_EQ(Titles(), u"ab");
}

}  // namespace
}  // namespace quillon
