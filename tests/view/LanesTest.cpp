#include <cmath>
#include <random>
#include <set>
#include <tuple>

#include "data/ChannelSelection.h"
#include "support/ViewFixture.h"
#include "view/GraphGestures.h"
#include "view/LaneFits.h"
#include "view/TraceMapping.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

constexpr std::int32_t kWidth = 500;

/// Blocks of channels with titles, units and scales of their own, in a graph of kWidth columns with lanes.
class LanesTest : public EmptyViewFixture {
  protected:
    struct Wave {
        std::u16string title;
        std::u16string unit;
        double middle;
        double amplitude;
    };
    /// Noise of that amplitude; one stretch of a hundred is an artefact.
    std::shared_ptr<FakeBlock> Make(const std::vector<Wave>& waves, std::int32_t samples = 60000) {
        auto block = std::make_shared<FakeBlock>();
        std::uniform_real_distribution<double> noise(-1.0, 1.0);
        for (const Wave& wave : waves) {
            block->titles.push_back(wave.title);
            block->units.push_back(wave.unit);
            block->scales.push_back(static_cast<float>(wave.amplitude / 1000.0));
            block->offsets.push_back(static_cast<float>(wave.middle));
            std::vector<std::int16_t> codes;
            bool artefact = false;
            for (std::int32_t at = 0; at < samples; ++at) {
                if (at % 137 == 0) artefact = Any(400) == 0;
                codes.push_back(static_cast<std::int16_t>(noise(m_random) * (artefact ? 30000.0 : 1000.0)));
            }
            block->samples.push_back(std::move(codes));
        }
        return block;
    }
    void Load(const std::shared_ptr<FakeBlock>& block, std::int32_t height = 400) {
        EmptyViewFixture::Load(block, height);
        m_height = height;
    }
    [[nodiscard]] std::int32_t Any(std::int32_t below) {
        return static_cast<std::int32_t>(m_random() % static_cast<unsigned>(below));
    }
    [[nodiscard]] const LaneSettings& Settings() const { return m_view.LanesOfChannels().Settings(); }
    /// Part of the visible samples of a lane that lie inside it.
    [[nodiscard]] double Inside(const Lane& lane) {
        const ViewBlock& block = m_document.Block();
        const auto at = static_cast<std::size_t>(lane.channels.front() - 1);
        const SampleSpan seen = m_view.Axis().Visible();
        const auto& codes = static_cast<FakeBlock&>(*block.block).samples[at];
        std::int32_t inside = 0;
        for (std::int32_t sample = seen.first; sample < seen.End(); ++sample) {
            const double code = codes[static_cast<std::size_t>(sample)];
            const double value =
                code / static_cast<double>(block.invScale[at]) + static_cast<double>(block.offsets[at]);
            const double row = lane.RowOf(m_view.RawCodes() ? code / 1000.0 : value);
            inside += row >= lane.top && row < lane.End() ? 1 : 0;
        }
        return static_cast<double>(inside) / seen.count;
    }
    void Random() {
        switch (Any(12)) {
            case 0: m_view.ZoomY(Any(7) - 3); break;
            case 1: m_view.ZoomGroup(static_cast<std::size_t>(Any(9)), Any(7) - 3); break;
            case 2: m_view.ZoomChannel(static_cast<std::size_t>(Any(9)), Any(7) - 3); break;
            case 3: m_view.MoveLane(static_cast<std::size_t>(Any(9)), Any(300) - 150); break;
            case 4: m_view.MoveBaseLine(Any(30) - 15); break;
            case 5: m_view.FindData(); break;
            case 6: m_view.FitLane(static_cast<std::size_t>(Any(9))); break;
            case 7: m_view.ScrollLanes(Any(9) - 4); break;
            case 8: m_view.DragTitle(static_cast<std::int16_t>(Any(9)), static_cast<std::size_t>(Any(9))); break;
            case 9: Any(4) == 0 ? m_view.SetLanes(Any(4) != 0) : m_view.SetBipolar(); break;
            case 10: Any(2) == 0 ? m_view.SetClip(Any(2) == 0) : m_view.SetNegativeUp(Any(2) == 0); break;
            default: m_view.SelectZoomX(Any(8));
        }
    }
    std::mt19937 m_random{7};
    GraphGestures m_gestures{m_view};
    std::int32_t m_height = 0;
};

TEST_F(LanesTest, EveryShownChannelHasOneLaneAndBackRestoresAllOfThem) {
    m_view.SetLanes(true);
    for (int scene = 0; scene < 30; ++scene) {
        std::vector<Wave> waves;
        for (std::int32_t at = 2 + Any(20); at >= 0; --at)
            waves.push_back({Any(3) == 0 ? u"" : u"T" + std::u16string(1, static_cast<char16_t>(u'a' + Any(9))),
                             std::array{u"uV", u"mV", u"%"}[static_cast<std::size_t>(Any(3))], Any(100) - 50.0,
                             1.0 + Any(500)});
        Load(Make(waves, 3000), 20 + Any(700));
        for (std::int16_t at = 1; at <= m_document.Block().channelCount; ++at) m_document.Show(at, Any(4) != 0);
        m_view.Arrange(kWidth, m_height);
        for (int step = 0; step < 15; ++step) {
            const LaneSettings before = Settings();
            const WaveformView::State state = m_view.Keep();
            const bool scrolls = step % 4 == 3;
            scrolls ? static_cast<void>(m_view.ScrollLanes(Any(9) - 4)) : Random();
            const LaneSettings after = Settings();
            m_view.SelectZoomX((m_view.Axis().ZoomIndex() + 1) % 8);
            m_view.MoveBaseLine(Any(100));
            m_view.Back();
            ASSERT_EQ(Settings(), after) << "Back restores what a command left";
            m_view.Restore(state);
            ASSERT_EQ(Settings(), before);
            Random();
        }
        if (!m_view.UsesLanes()) {
            ASSERT_EQ(m_view.GetLanes().size(), 1U);
            m_view.SetLanes(true);
        }
        m_view.ScrollLanes(-100);
        std::multiset<std::int16_t> seen;
        for (bool more = true; more; more = m_view.ScrollLanes(m_view.LanesOfChannels().Layout().Visible()).redraw) {
            const LaneLayout layout = m_view.LanesOfChannels().Layout();
            std::int32_t row = 0;
            const Lanes& lanes = m_view.GetLanes();
            for (std::size_t at = 0; at < lanes.size(); ++at) {
                ASSERT_EQ(lanes[at].top, row);
                row = lanes[at].End();
                ASSERT_TRUE(lanes[at].height > 0 && m_view.LaneAt(lanes[at].top) == at && m_view.LaneAt(row - 1) == at);
                if (layout.Count() > 0) {
                    ASSERT_EQ(lanes[at].channels.size(), 1U);
                    ASSERT_LT(static_cast<std::int32_t>(at), layout.Visible());
                }
                seen.insert(lanes[at].channels.begin(), lanes[at].channels.end());
            }
            ASSERT_EQ(row, m_height);
        }
        const std::vector<std::int16_t> shown = ShownChannels(m_document.Block(), m_document.Slots());
        const std::set<std::int16_t> all(seen.begin(), seen.end());
        ASSERT_EQ(all, std::set<std::int16_t>(shown.begin(), shown.end()));
    }
    // A channel by itself has no other lanes beside it.
    m_document.ShowAll(true);
    Load(Make({{u"T", u"V", 0.0, 1.0}}));
    EXPECT_FALSE(m_view.UsesLanes());
    EXPECT_FALSE(m_view.GetLanes()[0].single);
}

TEST_F(LanesTest, AFitHolds99PercentOfTheSamplesOfEveryLane) {
    m_view.SetLanes(true);
    for (int scene = 0; scene < 25; ++scene) {
        std::vector<Wave> waves;
        const int channels = 2 + Any(6);
        for (int at = 0; at < channels; ++at)
            waves.push_back({u"E" + std::u16string(1, static_cast<char16_t>(u'a' + at)),
                             std::array{u"uV", u"mV", u"%"}[static_cast<std::size_t>(Any(3))], Any(9000) - 4500.0,
                             std::pow(10.0, Any(7) - 3)});
        m_view.SetRawCodes(scene % 5 == 4);
        m_view.SetNegativeUp(scene % 2 == 1);
        Load(Make(waves), 250 + Any(600));
        m_view.SelectZoomX(Any(9));
        m_view.ScrollBy(Any(3000));
        if (m_view.Axis().Visible().count < 1) m_view.GoToPage(0);
        m_view.ZoomChannel(0, Any(5) - 2);
        m_view.FindData();
        for (const Lane& lane : m_view.GetLanes()) ASSERT_GE(Inside(lane), 0.99) << scene;
        // The scale of a group is no coarser than one of its channels needs.
        const LaneSettings fitted = Settings();
        m_view.ZoomY(1);
        std::set<std::u16string> tight, groups;
        for (const Lane& lane : m_view.GetLanes()) {
            const std::u16string group =
                m_view.LanesOfChannels().Channels()[static_cast<std::size_t>(lane.channels.front() - 1)].group.name;
            groups.insert(group);
            const double rows = lane.height - 2.0;
            const LaneChannel own = m_view.LanesOfChannels().Channels()[static_cast<std::size_t>(lane.channels[0] - 1)];
            TraceReader reader;
            reader.Read(*m_document.Block().block, m_view.Extremes(), lane.channels,
                        StretchOf(m_view.Axis(), 0, kWidth));
            const double half = SpanOfPoints(own, reader.points()[0])->half / (m_view.RawCodes() ? 1000.0 : 1.0);
            if (std::fabs(lane.RowOf(2.0 * half) - lane.RowOf(0.0)) > rows * 0.999) tight.insert(group);
        }
        ASSERT_EQ(tight, groups);
        m_view.Back();
        ASSERT_EQ(Settings(), fitted);
        // One alone uses its own step, and leaves the others as they are.
        const auto lane = static_cast<std::size_t>(Any(static_cast<int>(m_view.GetLanes().size())));
        const Lanes before = m_view.GetLanes();
        m_view.FitLane(lane);
        ASSERT_GE(Inside(m_view.GetLanes()[lane]), 0.99);
        for (std::size_t at = 0; at < before.size(); ++at)
            ASSERT_TRUE(at == lane || before[at].unitsPerDivision == m_view.GetLanes()[at].unitsPerDivision);
    }
}

TEST_F(LanesTest, ABlockIsFittedWhenItIsFirstShown) {
    m_view.SetLanes(true);
    const auto lanes = [&] {
        std::vector<std::string> texts;
        for (const LaneChannel& channel : m_view.LanesOfChannels().Channels()) {
            const LaneScales& scales = m_view.LanesOfChannels().Scales();
            const int own = scales.OwnOf(channel).step;
            texts.push_back(std::to_string(scales.StepOf(channel.group)) + (own == 0 ? "" : "x" + std::to_string(own)));
        }
        return texts;
    };
    using Texts = std::vector<std::string>;
    // Spans that differ by less than 8 share the scale that holds the largest, 2 x 60 uV; units have scales of their
    // own.
    Load(Make({{u"F3", u"uV", 0, 60}, {u"F4", u"uV", 0, 20}, {u"Resp", u"%", 50, 40}, {u"ECG", u"mV", 1, 0.03}}));
    EXPECT_EQ(lanes(), (Texts{"-11", "-11", "6", "-11"}));
    for (const Lane& lane : m_view.GetLanes()) {
        const auto at = static_cast<std::size_t>(lane.channels.front() - 1);
        EXPECT_NEAR(lane.RowOf(static_cast<double>(m_document.Block().offsets[at])), lane.top + lane.height / 2.0, 4.0);
    }
    // The same titles with similar data keep what was chosen, others get an own step where they do not fit.
    m_view.ZoomChannel(1, 1);
    Load(Make({{u"F4", u"uV", 0, 25}, {u"F3", u"uV", 0, 50}, {u"EOG", u"uV", 0, 1.5}, {u"EMG", u"uV", 0, 1200}}));
    EXPECT_EQ(lanes(), (Texts{"-11x1", "-11", "-11x5", "-11x-4"}));
    // Where most of a group would not be readable it begins anew.
    Load(Make({{u"F3", u"mV", 0, 60}, {u"F4", u"mV", 0, 60}, {u"Resp", u"%", 700, 40}}));
    EXPECT_EQ(lanes(), (Texts{"-2", "-2", "6"}));
    EXPECT_GT(Inside(m_view.GetLanes()[2]), 0.9) << "nothing of it was left in the lane";
    // One of many that stands out does not flatten the rest. The median is 2 x 10.
    Load(Make({{u"a", u"N", 0, 10}, {u"b", u"N", 0, 10}, {u"c", u"N", 0, 12}, {u"d", u"N", 0, 9000}}));
    EXPECT_EQ(lanes(), (Texts{"5", "5", "5", "5x-8"}));
    // Nothing can be read: scales are as they were, and it is tried again with the next block only.
    const auto block = Make({{u"e", u"N", 0, 9}, {u"f", u"T", 0, 1}});
    block->failing = {"ReadCodes", "ReadFrames", "ColumnExtremes"};
    Load(block);
    EXPECT_EQ(lanes(), (Texts{"5", "0"}));
    m_view.FindData();
    // Few samples are read, whatever the length.
    const auto large = Make({{u"g", u"N", 0, 9}, {u"h", u"T", 0, 1}}, 500000);
    Load(large);
    EXPECT_LE(large->samplesRead, 2 * 16 * 1024);
}

TEST_F(LanesTest, AnOffsetOf7000WithASpanOf9IsExactToARow) {
    m_view.SetLanes(true);
    Load(Make({{u"p", u"hPa", 7000.0, 4.5}, {u"q", u"V", 0.0, 1.0}}));
    for (const bool negativeUp : {false, true}) {
        m_view.SetNegativeUp(negativeUp);
        const Lane& lane = m_view.GetLanes()[0];
        const std::int32_t centre = lane.top + lane.height / 2;
        const LaneScales& scales = m_view.LanesOfChannels().Scales();
        const double middle = scales.OwnOf(m_view.LanesOfChannels().Channels()[0]).middle;
        const double rowsPerUnit = AmplitudeScale::kDivision / lane.unitsPerDivision;
        EXPECT_GT(9.0 * rowsPerUnit, lane.height / 3.0);
        const ViewBlock& block = m_document.Block();
        const TraceMapping mapping = MapTrace({.zeroRow = lane.zeroRow,
                                               .top = lane.top,
                                               .height = lane.height,
                                               .unitsPerDivision = lane.unitsPerDivision,
                                               .negativeUp = negativeUp,
                                               .samplesPerPixel = 1},
                                              block.invScale[0], block.offsets[0]);
        for (std::int32_t code = -1000; code <= 1000; code += 50) {
            std::vector<DevicePoint> pixels;
            ToPixels(mapping, std::vector<TracePoint>{{0, code}}, pixels);
            const double above = (7000.0 + code * 0.0045 - middle) * rowsPerUnit;
            EXPECT_NEAR(pixels[0].y, centre + (negativeUp ? above : -above), 1.6) << code;
        }
    }
    // Moving there and back leads to the same rows, at whatever scale.
    for (int round = 0; round < 100; ++round) {
        m_view.ZoomGroup(0, Any(5) - 2);
        const std::int64_t before = m_view.GetLanes()[0].zeroRow;
        const std::int32_t rows = Any(2000) - 1000;
        m_view.MoveLane(0, rows);
        ASSERT_EQ(m_view.GetLanes()[0].zeroRow, before + rows);
        m_view.MoveBaseLine(-rows);
        ASSERT_EQ(m_view.GetLanes()[0].zeroRow, before);
    }
}

TEST_F(LanesTest, WhatWasChosenStaysWhileFilesOfTheSameTitlesAreWalkedThrough) {
    m_view.SetLanes(true);
    const std::vector<Wave> waves{
        {u"A1", u"uV", 0, 40}, {u"A2", u"uV", 0, 40}, {u"A2", u"uV", 0, 40}, {u"", u"%", 5, 9}};
    Load(Make(waves));
    m_view.ZoomGroup(0, -1);
    m_view.ZoomChannel(2, 2);
    m_view.MoveLane(1, 12);
    m_view.DragTitle(4, 0);
    m_view.DragTitle(1, 2);
    m_view.SetClip(true);
    m_view.SetNegativeUp(true);
    const LaneSettings chosen = Settings();
    const Lanes lanes = m_view.GetLanes();
    for (int file = 0; file < 10; ++file) {
        Load(Make(waves, 20000 + Any(30000)));
        ASSERT_EQ(Settings(), chosen) << file;
        for (std::size_t at = 0; at < lanes.size(); ++at) {
            ASSERT_EQ(m_view.GetLanes()[at].zeroRow, lanes[at].zeroRow);
            ASSERT_EQ(m_view.GetLanes()[at].channels, lanes[at].channels);
        }
        // Whatever lies between has scales of its own.
        if (file == 5) Load(Make({{u"X", u"Pa", 0, 3}, {u"Y", u"uV", 0, 40}})), m_view.SetNegativeUp(true);
        if (file == 5) m_view.Restore({{{}, 0, 0, chosen}, {}, {}});
    }
    // Codes have scales of their own, which leave those of values alone.
    m_view.SetRawCodes(true);
    m_view.FindData();
    EXPECT_EQ(Settings().values, chosen.values);
    for (const Lane& lane : m_view.GetLanes()) EXPECT_GE(Inside(lane), 0.99);
    // On one axis and back again nothing has changed.
    m_view.SetRawCodes(false);
    m_view.SetLanes(false);
    m_view.ZoomY(2);
    m_view.SetLanes(true);
    EXPECT_EQ(Settings().values, chosen.values);
}

TEST_F(LanesTest, SoundBetweenSilencesIsSeenWhole) {
    const auto block = Make({{u"Left", u"FS", 0, 0.03}, {u"Right", u"FS", 0, 0.02}});
    for (auto& codes : block->samples) {
        for (auto& code : codes) code = std::clamp<std::int16_t>(code, -1000, 1000);
        std::fill(codes.begin() + 5000, codes.end(), std::int16_t{0});
        codes = {codes.rbegin(), codes.rend()};
    }
    m_view.SetLanes(true);
    Load(block);
    for (const Lane& lane : m_view.GetLanes())
        EXPECT_NEAR(lane.unitsPerDivision * lane.height / AmplitudeScale::kDivision, 0.1, 0.041) << "holds 0.06";
}

TEST_F(LanesTest, TheMenusScaleIsThatOfTheChosenChannelsGroup) {
    m_view.SetLanes(true);
    Load(Make({{u"F3", u"uV", 0, 60}, {u"Resp", u"%", 50, 40}, {u"ECG", u"mV", 0, 0.05}}));
    m_document.ChooseChannel(3);
    m_view.SelectScaleY(9);
    EXPECT_EQ(m_view.SelectedScaleY(), 9) << "1 mV a lane";
    m_document.ChooseChannel(1);
    EXPECT_EQ(m_view.SelectedScaleY(), 0) << "which is 1000 uV";
    m_view.ZoomY(-1);
    EXPECT_EQ(m_view.SelectedScaleY(), -1) << "2000 uV is not in the table";
    m_document.ChooseChannel(2);
    EXPECT_EQ(m_view.SelectedScaleY(), 2) << "all groups were zoomed: 200 %";
    EXPECT_TRUE(LanesWouldHelp(m_document)) << "units differ";
    m_document.Show(2, false);
    EXPECT_FALSE(LanesWouldHelp(m_document)) << "uV and mV do not";
}

TEST_F(LanesTest, TheMouseActsOnTheLaneUnderIt) {
    m_view.SetLanes(true);
    Load(Make(std::vector<Wave>(20, {u"T", u"uV", 0, 60})), 300);
    ASSERT_EQ(m_view.GetLanes().size(), 10U);
    const auto zeroRow = [&](std::size_t lane) { return m_view.GetLanes()[lane].zeroRow; };
    const auto rows = [&] { return std::pair(zeroRow(1), zeroRow(2)); };
    const auto start = rows();
    m_gestures.Press(GraphButton::Left, GraphZone::AmplitudeScale, {.y = 70});
    m_gestures.Move({.y = 95});
    m_gestures.Release({.y = 95});
    EXPECT_EQ(rows(), std::pair(start.first, start.second + 25)) << "the lane where the drag began";
    m_gestures.Press(GraphButton::Middle, GraphZone::Traces, {.x = 5, .y = 10});
    m_gestures.Move({.x = 5, .y = 20});
    m_gestures.Move({.x = 5, .y = 14});
    m_gestures.Cancel();
    EXPECT_EQ(rows(), std::pair(start.first + 4, start.second + 29)) << "all of them";
    m_gestures.Press(GraphButton::Left, GraphZone::LaneTitles, {.y = 5});
    m_gestures.Move({.y = 200});
    EXPECT_EQ(m_gestures.DropLane(), 6U);
    m_gestures.Release({.y = 65});
    EXPECT_EQ(m_view.GetLanes()[2].channels, std::vector<std::int16_t>{1});
    EXPECT_EQ(m_view.GetLanes()[0].channels, std::vector<std::int16_t>{2});
    const auto channels = [&] { return m_view.GetLanes()[0].channels[0]; };
    m_gestures.Wheel(-2 * GraphGestures::kNotch, GraphZone::AmplitudeScale, {.y = 5});
    EXPECT_EQ(channels(), 1) << "two lanes further";
    m_gestures.Wheel(GraphGestures::kNotch, GraphZone::LaneTitles, {.y = 5});
    EXPECT_EQ(channels(), 3);
    // A title may be carried beyond the visible lanes by the wheel.
    m_gestures.Press(GraphButton::Left, GraphZone::LaneTitles, {.y = 5});
    m_gestures.Wheel(-3 * GraphGestures::kNotch, GraphZone::LaneTitles, {.y = 5});
    EXPECT_TRUE(m_gestures.DropsFromAbove());
    m_gestures.Release({.y = 5});
    EXPECT_EQ(channels(), 3) << "dropped at the fifth place";
    m_gestures.Press(GraphButton::Left, GraphZone::AmplitudeScale, {.y = 5});
    const std::int64_t next = zeroRow(1);
    m_gestures.Wheel(-GraphGestures::kNotch, GraphZone::AmplitudeScale, {.y = 5});
    m_gestures.Move({.y = 25});
    m_gestures.Cancel();
    EXPECT_EQ(zeroRow(0), next - 30) << "the lane that is dragged is out of sight";
    m_gestures.Wheel(4 * GraphGestures::kNotch, GraphZone::LaneTitles, {.y = 5});
    const double before = m_view.GetLanes()[0].unitsPerDivision;
    m_gestures.Wheel(GraphGestures::kNotch, GraphZone::Traces, {.y = 100, .shift = true, .alt = true});
    EXPECT_EQ(m_view.GetLanes()[0].unitsPerDivision, before);
    EXPECT_LT(m_view.GetLanes()[3].unitsPerDivision, before) << "alone";
    m_gestures.Wheel(GraphGestures::kNotch, GraphZone::AmplitudeScale, {.y = 100, .alt = true});
    EXPECT_LT(m_view.GetLanes()[0].unitsPerDivision, before) << "with its group";
    m_view.SetBipolar();
    for (const Lane& lane : m_view.GetLanes()) EXPECT_EQ(lane.zeroRow, lane.top + lane.height / 2);
}

/// What the keys do to a channel's lane is what the mouse does to it, wherever the lane is.
TEST_F(LanesTest, KeysActOnALaneLikeTheMouseAndBringItIntoView) {
    m_view.SetLanes(true);
    std::vector<Wave> waves;
    for (int channel = 1; channel <= 20; ++channel)
        waves.push_back({u"A", channel % 2 == 0 ? u"uV" : u"mV", 0, 10.0 * channel});
    for (int round = 0; round < 300; ++round) {
        if (round % 50 == 0) Load(Make(waves, 5000), 200);
        const auto channel = static_cast<std::int16_t>(1 + Any(20));
        const auto step = static_cast<LaneStep>(Any(static_cast<int>(LaneStep::Count)));
        const auto order = m_view.LanesOfChannels().Order();
        const WaveformView::State before = m_view.Keep();
        ASSERT_TRUE(m_view.StepLane(channel, step).redraw);
        const auto places = m_view.LanesOfChannels().Visible();
        ASSERT_EQ(std::count(places.begin(), places.end(), channel), 1) << "its lane is out of sight";
        const LaneSettings byKey = Settings();
        const std::int32_t first = m_view.LanesOfChannels().Layout().First();
        // By the mouse, after the wheel has brought it into view.
        m_view.Restore(before);
        const auto scroll = [&] { m_view.ScrollLanes(first - m_view.LanesOfChannels().Layout().First()); };
        scroll();
        const auto laneOf = [&](std::int16_t wanted) {
            const auto now = m_view.LanesOfChannels().Visible();
            return static_cast<std::size_t>(std::find(now.begin(), now.end(), wanted) - now.begin());
        };
        const auto at = std::find(order.begin(), order.end(), channel);
        switch (step) {
            case LaneStep::ZoomOut: m_view.ZoomChannel(laneOf(channel), -1); break;
            case LaneStep::ZoomIn: m_view.ZoomChannel(laneOf(channel), 1); break;
            case LaneStep::Fit: m_view.FitLane(laneOf(channel)); break;
            case LaneStep::TraceUp: m_view.MoveLane(laneOf(channel), -20); break;
            case LaneStep::TraceDown: m_view.MoveLane(laneOf(channel), 20); break;
            case LaneStep::LaneUp:
                if (at != order.begin()) m_view.DragTitle(channel, laneOf(*(at - 1)));
                break;
            default:
                if (at + 1 != order.end()) m_view.DragTitle(channel, laneOf(*(at + 1)));
        }
        scroll();
        ASSERT_EQ(Settings(), byKey) << "step " << static_cast<int>(step) << " of " << channel;
    }
    m_document.Show(3, false);
    m_view.Arrange(kWidth, 200);
    EXPECT_FALSE(m_view.StepLane(3, LaneStep::ZoomIn).redraw) << "it has no lane";
    m_view.SetLanes(false);
    EXPECT_FALSE(m_view.StepLane(4, LaneStep::ZoomIn).redraw);
}

TEST_F(LanesTest, AChannelThatIsFittedAloneLeavesTheOthersAsTheyWere) {
    Load(Make({{u"a", u"V", 0.0, 2.0}, {u"b", u"V", 5.0, 0.5}, {u"c", u"mV", 0.0, 1.0}}));
    for (const bool lanes : {true, false}) {
        m_view.SetLanes(lanes);
        m_view.Arrange(kWidth, m_height);
        if (lanes) m_view.ZoomChannel(1, -4);  // low in its lane, unless it is fitted alone
        m_view.FindData();
        const auto scales = [&] {
            m_view.Arrange(kWidth, m_height);
            return std::tuple(m_view.ScaleY(), m_view.BaseLineShift(), Settings().values);
        };
        const auto before = scales();
        for (int round = 0; round < 2; ++round) {
            m_document.Solo(std::int16_t{2});
            EXPECT_EQ(scales(), before);
            m_view.FindData();
            EXPECT_NE(scales(), before);
            m_view.FindData();
            if (round == 0) m_document.Solo({});
            if (round == 1) m_document.Show(1, true);
            EXPECT_EQ(scales(), before);
        }
        m_document.ShowAll(true);
        // What is chosen for all of them stays.
        m_view.ZoomY(1);
        EXPECT_NE(scales(), before);
    }
    // Another recording ends it; its own scale is chosen after that.
    m_document.Solo(std::int16_t{2});
    m_view.FindData();
    Load(Make({{u"a", u"V", 0.0, 2.0}}));
    m_view.FitScales(ValueRange{-30000.0F, 30000.0F});
    const int fitted = m_view.ScaleY();
    m_view.Arrange(kWidth, m_height);
    EXPECT_EQ(m_view.ScaleY(), fitted);
}

}  // namespace
}  // namespace quillon
