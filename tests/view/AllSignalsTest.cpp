#include <filesystem>

#include "norvik/EdfBuilder.h"
#include "norvik/RecordingLibrary.h"
#include "norvik/TemporaryFolder.h"
#include "view/Readout.h"
#include "view/StretchFixture.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

class AllSignalsTest : public FakeStretches {
  protected:
    /// A recording of so many records, one block for each number of samples per record.
    void Make(const std::vector<std::int32_t>& perRecord, std::int32_t records, std::size_t channels) {
        m_blocks.clear();
        for (const std::int32_t samples : perRecord) {
            const std::u16string title{u'T', static_cast<char16_t>(u'a' + m_blocks.size())};
            m_blocks.push_back(Noise(channels, samples * records, samples));
            m_blocks.back()->titles.assign(channels, title);
        }
        OpenBlocks(m_blocks);
    }
    std::int64_t TakeRead() {
        std::int64_t read = 0;
        for (const auto& block : m_blocks) read += std::exchange(block->samplesRead, 0);
        return read;
    }
    std::vector<std::shared_ptr<FakeBlock>> m_blocks;
};

TEST_F(AllSignalsTest, ColumnsOfAllBlocksBeginAtTheSameInstants) {
    for (int round = 0; round < 500; ++round) {
        const std::int64_t records = 1 + Any(round % 2 == 0 ? 40 : 80000);
        const std::int64_t own = records * (1 + Any(600));
        const std::int64_t other = records * (1 + Any(600));
        const ColumnGrid grid(1 + Any(round % 3 == 0 ? 50 : 10000000), 1 + Any(12000000));
        const ColumnGrid there = grid.Scaled(other, own);
        ASSERT_EQ(there.Scaled(own, other), grid);
        ASSERT_EQ(there.ColumnCount(other), grid.ColumnCount(own)) << "the strips are equally long";
        for (int trial = 0; trial < 50; ++trial) {
            const std::int64_t column = Any(std::min<std::int64_t>(grid.ColumnCount(own), 2147483647));
            const Wide instant = static_cast<Wide>(column) * grid.Dividend() * other;  // over divisor x own
            const Wide part = static_cast<Wide>(grid.Divisor()) * own;
            const std::int64_t sample = there.FirstSample(column);
            ASSERT_TRUE(sample * part <= instant && instant < (sample + 1) * part) << "the sample that holds";
            ASSERT_LE(there.FirstColumn(sample), column);
            ASSERT_GE(there.LastColumn(sample), column);
        }
    }
    // Terms beyond 64 bits.
    const ColumnGrid wide = ColumnGrid(2147483647LL << 13, 8191 * 4093).Scaled(61440 * 34952LL, 34952LL);
    EXPECT_EQ(wide.FirstSample(100000),
              static_cast<std::int64_t>(static_cast<Wide>(2147483647LL << 13) * 61440 * 100000 / (8191 * 4093)));
}

TEST_F(AllSignalsTest, EveryColumnOfEverySignalIsThatOfAPlainLoop) {
    const std::vector<std::vector<std::int32_t>> files{
        {200, 100, 1}, {1, 512, 10, 25}, {3, 7}, {100, 100}, {250, 1000}};
    for (int round = 0; round < 20; ++round) {
        const auto& rates = files[static_cast<std::size_t>(Any(5))];
        Make(rates, 1 + Any(round % 4 == 0 ? 2000 : 60), static_cast<std::size_t>(1 + Any(3)));
        for (int view = 0; view < 8; ++view) {
            LoadBlock(Any(static_cast<std::int64_t>(rates.size())));
            Show();
            m_format.sampleIndexes = view % 3 == 1;
            m_format.timeOfDay = view % 3 == 2;
            m_gridStyle = static_cast<GridStyle>(view % 3);
            m_view.SetClip(view % 2 == 0);
            m_view.ScrollLanes(Any(5) - 2);
            ASSERT_NO_FATAL_FAILURE(ExpectPlainColumns()) << round;
            ASSERT_NO_FATAL_FAILURE(ExpectScrollingCopies()) << round;
        }
    }
}

TEST_F(AllSignalsTest, AnotherBlockOfTheStretchShowsTheSameTimeAndReadsNothingAgain) {
    Make({1, 200, 64, 10}, 1000, 2);
    for (const auto& block : m_blocks) {
        block->offersExtremes = true;
        block->marks.clear();  // those of the loaded block are drawn
    }
    LoadBlock(0);
    m_view.SetClip(true);
    m_view.FindData();
    m_gridStyle = GridStyle::None;  // its lines lie at samples of the loaded block
    for (int round = 0; round < 40; ++round) {
        Show();
        m_view.ScrollLanes(Any(5) - 2);
        const auto place = [&] {
            const TimeAxis& axis = m_view.Axis();
            return std::tuple(axis.FirstColumn(), axis.StripLength(), m_view.LanesOfChannels().Settings().first);
        };
        const auto before = place();
        const double page = m_view.Axis().PageSeconds();
        const auto image = Drawn();
        m_view.Select(1, 1);
        TakeRead();
        for (int block : {0, 2, 3, 1}) {
            LoadBlock(block);
            ASSERT_EQ(place(), before);
            ASSERT_NEAR(m_view.Axis().PageSeconds(), page, 1e-9 * page);
            ASSERT_FALSE(m_view.Selected().active);
            ASSERT_TRUE(Drawn() == image) << round << ' ' << block << " page " << page;
        }
        if (page > 300.0) {
            ASSERT_EQ(TakeRead(), 0) << page;
        }
    }
    // On one axis a block is shown by itself, from its start.
    m_view.SetLanes(false);
    LoadBlock(2);
    EXPECT_EQ(m_view.Axis().FirstColumn(), 0);
    EXPECT_EQ(ChannelsOf(m_view.GetLanes()).size(), 2U);
    EXPECT_TRUE(m_view.OtherBlocks().empty());
}

TEST_F(AllSignalsTest, AllSignalsComeAndGoWithoutAJump) {
    Make({10, 200}, 3000, 1);
    m_view.SelectPage(30.0);
    m_view.GoToPage(2);
    const auto place = [&] { return std::pair(m_view.Axis().FirstColumn(), m_view.Axis().PageSeconds()); };
    const auto before = place();
    const auto toggle = [&](bool all) {
        m_document.SetAllSignals(all);
        return m_view.SignalsChanged();
    };
    EXPECT_TRUE(m_view.UsesLanes());
    EXPECT_TRUE(toggle(false).redraw);
    EXPECT_FALSE(m_view.UsesLanes()) << "one signal needs no lane";
    EXPECT_EQ(place(), before);
    EXPECT_TRUE(toggle(true).redraw);
    EXPECT_TRUE(m_view.UsesLanes());
    EXPECT_EQ(place(), before);
    for (const LaneChannel& channel : m_view.LanesOfChannels().Channels())
        EXPECT_TRUE(m_view.LanesOfChannels().Scales().channels.contains(channel.key));
    // A page shorter than a sample of the block lasts as long as the faster block is shown.
    m_view.SelectPage(0.05);
    EXPECT_NEAR(m_view.Axis().PageSeconds(), 0.05, 1e-9);
    while (m_view.Axis().CanZoom(true)) m_view.ZoomX(true);
    EXPECT_NEAR(m_view.Axis().PageSeconds(), kWidth / 50.0 / 200.0, 1e-3);
    Make({10, 200}, 3000, 2);
    m_view.SelectPage(0.05);
    toggle(false);
    EXPECT_GE(m_view.Axis().PageSeconds(), 0.1);
    ASSERT_NO_FATAL_FAILURE(ExpectPlainColumns());
}

TEST_F(AllSignalsTest, TheTimeStaysInAStretchAlsoWithoutItsOtherSignals) {
    Make({100, 10}, 60, 2);
    m_document.SetAllSignals(false);
    m_view.SignalsChanged();
    m_view.SelectPage(10.0);
    m_view.GoToPage(2);
    const std::int32_t first = m_view.Axis().FirstColumn();
    EXPECT_GT(first, 0);
    LoadBlock(1);
    EXPECT_EQ(m_view.Axis().FirstColumn(), first);
    EXPECT_NEAR(m_view.Axis().PageSeconds(), 10.0, 1e-9);
    m_view.SetLanes(false);
    LoadBlock(0);
    EXPECT_EQ(m_view.Axis().FirstColumn(), 0) << "on one axis a block begins with its first page";
}

TEST_F(AllSignalsTest, ReadoutsTellTheSampleThatHolds) {
    Make({10, 4}, 5, 1);
    for (std::size_t block = 0; block < 2; ++block) {
        auto& codes = m_blocks[block]->samples[0];
        for (std::size_t at = 0; at < codes.size(); ++at) codes[at] = static_cast<std::int16_t>(at);
    }
    ReadoutSource source{m_document.Block(), m_document.Slots(), m_format, true, &m_view.Extremes(), true};
    source.document = &m_document;
    source.others = m_view.OtherBlocks();
    source.signals = {1, 2};
    EXPECT_EQ(HoverReadout(source, 13), u"X:\t1.2 s\r\nTa:\t 12\r\nTb:\t 4\r\n");
    EXPECT_EQ(HoverReadout(source, 13, 12.6), u"X:\t1.2 s\r\nTa:\t 12\r\nTb:\t 5\r\n");
    // 1.2 s to 1.9 s: of the slow one the samples at 1.25, 1.5 and 1.75 s.
    EXPECT_EQ(RangeReadout(source, {true, 1, 13, 19}),
              u"dX:\t0.6 s\r\nTa:\t 12\u2021 18\t 6\r\nTb:\t 5\u2021 7\t 3\r\n1/dX:\t1.667 Hz\r\n");
    LoadBlock(1);
    ReadoutSource slow{m_document.Block(), m_document.Slots(), m_format, true, &m_view.Extremes(), true};
    slow.document = &m_document;
    slow.others = m_view.OtherBlocks();
    slow.signals = m_document.SignalOrder();
    EXPECT_EQ(HoverReadout(slow, 6, 5.5), u"X:\t1.25 s\r\nTa:\t 13\r\nTb:\t 5\r\n") << "in the order of the file";
    slow.signals = {1};
    EXPECT_EQ(HoverReadout(slow, 6), u"X:\t1.25 s\r\nTb:\t 5\r\n");
}

struct Files {
    std::shared_ptr<RecordingLibrary> library = MakeRecordingLibrary(Language::English);
};

class AllSignalsOfFilesTest : public Files, public Stretches {
  protected:
    AllSignalsOfFilesTest() : Stretches(*library) {}
    /// Every block in turn, at random views.
    void Walk() {
        for (int view = 0; view < 12; ++view) {
            const int blocks = std::min<int>(m_document.File().blockCount, 6);
            LoadBlock(Any(blocks));
            if (!m_view.UsesLanes()) continue;
            Show();
            m_view.ScrollLanes(Any(60) - 30);
            ASSERT_NO_FATAL_FAILURE(ExpectPlainColumns());
            ASSERT_NO_FATAL_FAILURE(ExpectScrollingCopies());
        }
    }
};

TEST_F(AllSignalsOfFilesTest, SignalsOfFourRatesStandInTheOrderOfTheFile) {
    const TemporaryFolder folder;
    EdfBuilder edf;
    edf.recordCount = 30;
    for (std::size_t at = 0; at < 48; ++at) {
        EdfBuilder::Signal signal;
        signal.label = "S" + std::to_string(at);
        signal.samplesPerRecord = std::array<std::size_t, 4>{256, 64, 10, 1}[at * 7 % 4];
        for (std::size_t sample = 0; sample < 30 * signal.samplesPerRecord; ++sample)
            signal.samples.push_back(static_cast<std::int32_t>(m_random() % 2000) - 1000);
        edf.signals.push_back(std::move(signal));
    }
    const auto bytes = edf.Bytes();
    Open(folder.Write(u"rates.edf", std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size())));
    ASSERT_EQ(m_document.File().blockCount, 8);
    for (std::int16_t block = 0; block < 8; ++block) {
        LoadBlock(block);
        ASSERT_EQ(m_document.SignalCount(), 48);
        std::size_t place = 0;
        for (const std::int16_t number : m_document.SignalOrder()) {
            const Signal signal = m_document.GetSignal(number);
            const EdfBuilder::Signal& written = edf.signals[place];
            const std::string label = written.label;
            ASSERT_EQ(signal.title, std::u16string(label.begin(), label.end()));
            std::int16_t code = 0;
            signal.block.block->ReadCodes(signal.channel, 0, 1, &code);
            ASSERT_EQ(code, written.samples[0]);
            ++place;
        }
    }
    Walk();
}

TEST_F(AllSignalsOfFilesTest, RealRecordings) {
    const std::filesystem::path folder = "../shared/recordings/edf";
    int found = 0;
    for (const char* const name : {"short_psg.edf", "uneven_rates.edf", "eeg_140ch.edf"}) {
        if (!std::filesystem::exists(folder / name)) continue;
        ++found;
        Open((folder / name).u16string());
        EXPECT_GT(m_document.OtherBlocks().size(), 0U) << name;
        Walk();
    }
    if (found == 0) GTEST_SKIP() << "no recordings in " << folder;
}

}  // namespace
}  // namespace quillon
