#include "view/StretchFixture.h"

#include <algorithm>
#include <cmath>

#include "view/GraphPicture.h"
#include "view/ScaleLabels.h"

namespace quillon::testing {

Stretches::Stretches(RecordingLibrary& library) : m_document(library, m_services) {
    m_document.SetAllSignals(true);
    m_view.SetLanes(true);
}

void Stretches::Open(const std::u16string& path) {
    m_view.LeaveBlock();
    m_document.OpenFile(path, {});
    m_view.BlockLoaded();
    m_view.Arrange(kWidth, kHeight);
}

void Stretches::LoadBlock(int block) {
    m_view.LeaveBlock();
    m_document.LoadBlock(static_cast<std::int16_t>(block));
    m_view.BlockLoaded();
    m_view.Arrange(kWidth, kHeight);
}

void Stretches::Show(double fewest) {
    const TimeAxis& axis = m_view.Axis();
    const double rate = m_document.Block().sampleRate;
    double fastest = rate;
    for (const OtherBlock& other : m_document.OtherBlocks()) fastest = std::max(fastest, other.block.sampleRate);
    const double shortest = fewest / fastest;
    const double whole = m_document.Block().sampleCount / rate;
    std::uniform_real_distribution<double> share(0.0, 1.0);
    m_view.SelectPage(shortest * std::pow(whole / shortest, share(m_random)));
    m_view.ScrollBy(Any(std::int64_t{axis.StripLength()} + 1) - axis.FirstColumn());
}

GraphScene Stretches::Scene() {
    GraphScene scene{m_document.Block(), m_view.Axis(), m_view.GetLanes(), m_view.Extremes()};
    scene.line = m_line;
    scene.gridStyle = m_gridStyle;
    scene.gridColumns = GridColumns(m_view.Axis(), m_document.Block(), m_format);
    scene.others = m_view.OtherBlocks();
    return scene;
}

std::vector<std::uint32_t> Stretches::Drawn() {
    std::vector<std::uint32_t> image(std::size_t{kWidth} * kHeight);
    GraphPicture picture;
    picture.SetPixels(image.data(), kWidth, kHeight);
    picture.Draw(Scene());
    return image;
}

std::vector<TracePoint> Stretches::Plain(const Signal& signal, std::int32_t from, std::int32_t to) const {
    // Sample s holds from s n / n' on, in samples of the loaded block; a column c begins at c q.
    const TimeAxis& axis = m_view.Axis();
    const Wide dividend = static_cast<Wide>(axis.Grid().Dividend()) * signal.block.sampleCount;
    const Wide divisor = static_cast<Wide>(axis.Grid().Divisor()) * axis.SampleCount();
    std::vector<std::int16_t> codes(static_cast<std::size_t>(signal.block.sampleCount));
    signal.block.block->ReadCodes(signal.channel, 0, signal.block.sampleCount, codes.data());
    std::vector<TracePoint> points;
    for (std::int32_t column = from; column < to; ++column) {
        const Wide strip = axis.FirstColumn() + column;
        if (strip < 0 || strip >= axis.StripLength()) continue;
        const auto holds = [&](Wide at) { return static_cast<std::int64_t>(at * dividend / divisor); };
        const std::int64_t first = holds(strip);
        EXPECT_TRUE(first * divisor <= strip * dividend && strip * dividend < (first + 1) * divisor);
        if (dividend <= divisor) {
            if (strip == 0 || holds(strip - 1) < first)
                points.push_back({column, codes[static_cast<std::size_t>(first)]});
            continue;
        }
        const std::int64_t end = std::min<std::int64_t>(holds(strip + 1), signal.block.sampleCount);
        const auto [begin, stop] = std::pair(codes.begin() + first, codes.begin() + end);
        const auto highest = std::max_element(begin, stop);
        const auto lowest = std::min_element(begin, stop);
        points.push_back({column, lowest < highest ? *lowest : *highest});
        points.push_back({column, lowest < highest ? *highest : *lowest});
    }
    return points;
}

std::vector<TracePoint> Stretches::Within(std::span<const TracePoint> points, std::int32_t from, std::int32_t to) {
    std::vector<TracePoint> inside;
    for (const TracePoint& point : points)
        if (point.x >= from && point.x < to) inside.push_back(point);
    return inside;
}

void Stretches::ExpectPlainColumns() {
    const SceneBlocks blocks = Scene().Blocks();
    for (const SignalsOfBlock& group : GroupsOf(blocks, ChannelsOf(m_view.GetLanes()))) {
        TraceReader reader;
        reader.Read(*group.of.block.block, group.of.extremes, group.channels, group.Stretch(m_view.Axis(), 0, kWidth));
        ASSERT_EQ(reader.Failure(), "");
        for (std::size_t at = 0; at < group.channels.size(); ++at) {
            const auto number = static_cast<std::int16_t>(group.of.before + group.channels[at]);
            ASSERT_EQ(Within(reader.points()[at], 0, kWidth), Plain(m_document.GetSignal(number), 0, kWidth))
                << "page " << m_view.Axis().PageSeconds();
        }
    }
}

void Stretches::ExpectScrollingCopies() {
    std::vector<std::uint32_t> image(std::size_t{kWidth} * kHeight);
    GraphPicture picture;
    picture.SetPixels(image.data(), kWidth, kHeight);
    picture.SetPatience(std::chrono::milliseconds(Any(2) == 0 ? 0 : 100000));
    m_line = 1 + Any(3);
    picture.Draw(Scene());
    for (int step = 0; step < 3; ++step) {
        const ViewChange change = m_view.ScrollBy(Any(2 * kWidth) - kWidth);
        picture.Scroll(Scene(), change.scrolled);
        for (int slice = 0; picture.IsIncomplete() && slice < 3000; ++slice) picture.DrawMore(Scene());
        ASSERT_FALSE(picture.IsIncomplete());
        std::vector<std::uint32_t> expected(image.size());
        GraphPicture anew;
        anew.SetPixels(expected.data(), kWidth, kHeight);
        anew.Draw(Scene());
        ASSERT_TRUE(image == expected) << "page " << m_view.Axis().PageSeconds();
        ASSERT_EQ(picture.Arrows(96).size(), anew.Arrows(96).size());
    }
}

std::shared_ptr<FakeBlock> FakeStretches::Noise(std::size_t channels, std::int32_t samples, double rate) {
    auto block = std::make_shared<FakeBlock>();
    block->rate = rate;
    block->framed = Any(2) == 0;
    block->offersExtremes = Any(8) != 0;
    block->pieceSamples = 1 + Any(300000);
    const auto count = static_cast<std::size_t>(samples);
    for (std::size_t at = 0; at < channels; ++at) {
        auto& codes = block->samples.emplace_back();
        while (codes.size() < count) {
            const std::int32_t kind = Any(4);
            const std::int32_t reach = kind == 0 ? 1 : kind == 1 ? 4 : 60;
            for (std::int32_t left = 1 + Any(3000); left > 0 && codes.size() < count; --left)
                codes.push_back(static_cast<std::int16_t>(Any(500) == 0 ? Any(400) - 200 : Any(reach)));
        }
    }
    for (std::int32_t at = Any(900); at < samples; at += 1 + Any(900)) block->marks.emplace_back(at, u"");
    return block;
}

void FakeStretches::OpenBlocks(std::vector<std::shared_ptr<FakeBlock>> blocks) {
    const auto recording = std::make_shared<FakeRecording>();
    recording->name = u"C:\\a.fake";
    recording->blocks = std::move(blocks);
    fakes.files[recording->name] = recording;
    Open(recording->name);
}

}  // namespace quillon::testing
