#include "app/BackgroundWork.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "app/StringIds.h"

namespace quillon {

void BackgroundWork::Start(Priority priority, WorkSlices::Pass pass) {
    m_slices.Start(priority, std::move(pass));
    onStart();
}

void BackgroundWork::BlockLoaded() {
    FindScales();
    ReadOn();
    Summarise();
}

void BackgroundWork::Rescaled() {
    for (const Priority priority : {kScales, kRange, kSpectrum, kSummary}) m_slices.Drop(priority);
    Summarise();
}

void BackgroundWork::FindScales() {
    const std::shared_ptr<RecordingBlock> block = m_document.Block().block;
    if (!block || !block->IsProvisional()) return;
    m_rescaled = false;
    const auto step = [this] {
        const PrepareStep done = m_document.PrepareMore();
        m_rescaled = done == PrepareStep::DoneRescaled;
        return done == PrepareStep::More;
    };
    const auto end = [this] {
        if (m_rescaled) onRescaled();
    };
    Start(kScales, {IDS_WORK_SCALES, step, [block] { return block->PreparedShare(); }, end});
}

void BackgroundWork::ReadOn() {
    const std::shared_ptr<Recording> recording = m_document.File().recording;
    if (!recording || recording->ReadShare() >= 1.0) return;
    const auto step = [this] {
        const ReadStep done = m_document.ReadMore(m_view.Axis().Visible().first);
        if (done.marksChanged || done.blocksChanged || done.titlesChanged || done.infoChanged || done.grown)
            onFound(done);
        return done.more;
    };
    Start(kMarks, {IDS_WORK_MARKS, step, [recording] { return recording->ReadShare(); }, {}});
}

void BackgroundWork::GraphDrawn(bool complete) {
    if (complete) return m_slices.Drop(kGraph);
    // A pass that is under way goes on with the new view.
    if (!m_slices.IsRunning(kGraph)) Start(kGraph, {IDS_WORK_GRAPH, onDraw, onDrawnShare, onDrawn});
}

void BackgroundWork::SpectrumDrawn(bool complete) {
    if (complete) return m_slices.Drop(kSpectrum);
    if (!m_slices.IsRunning(kSpectrum)) Start(kSpectrum, {IDS_WORK_SPECTRUM, onSpectrum, onSpectrumShare, {}});
}

bool BackgroundWork::FindRanges(std::vector<std::int16_t> channels, const std::function<void()>& then) {
    constexpr std::chrono::milliseconds quick{20};
    const WorkSlices::Clock::time_point start = WorkSlices::Clock::now();
    RangeRecords& ranges = m_view.Ranges();
    const auto step = [this, &ranges](const std::vector<std::int16_t>& wanted) {
        return ranges.ReadMissing(m_document.Block(), wanted, m_view.Axis().Visible());
    };
    if (m_slices.IsRunning(kRange)) {
        // One search for all who wait.
        std::copy_if(m_rangeChannels.begin(), m_rangeChannels.end(), std::back_inserter(channels),
                     [&](std::int16_t channel) {
                         return std::find(channels.begin(), channels.end(), channel) == channels.end();
                     });
    } else {
        m_rangeWaiters.clear();
    }
    bool more = step(channels);
    while (more && WorkSlices::Clock::now() - start < quick) more = step(channels);
    if (!more) {
        m_slices.Drop(kRange);
        for (const auto& waiter : std::exchange(m_rangeWaiters, {})) waiter();
        return true;
    }
    m_rangeWaiters.push_back(then);
    m_rangeChannels = std::move(channels);
    Start(kRange,
          {IDS_WORK_RANGE, [this, step] { return step(m_rangeChannels); }, [&ranges] { return ranges.PassedShare(); },
           [this] {
               for (const auto& waiter : std::exchange(m_rangeWaiters, {})) waiter();
           }});
    return false;
}

void BackgroundWork::Measure(const std::function<bool()>& step, const std::function<double()>& share) {
    Start(kStatistics, {IDS_WORK_STATISTICS, step, share, {}});
}

void BackgroundWork::Summarise() {
    const ViewBlock& block = m_document.Block();
    if (!block.block || block.sampleCount < 1 || m_slices.IsRunning(kSummary)) return;
    std::vector<std::int16_t> all(static_cast<std::size_t>(block.channelCount));
    std::iota(all.begin(), all.end(), std::int16_t{1});
    RangeRecords& ranges = m_view.Ranges();
    if (ranges.IsKnown(all)) return;
    Start(kSummary,
          {IDS_WORK_SUMMARY,
           [this, all, &ranges] { return ranges.ReadMissing(m_document.Block(), all, m_view.Axis().Visible()); },
           [&ranges] { return ranges.PassedShare(); },
           {}});
}

bool BackgroundWork::DropCurrent() {
    if (!m_slices.Current()) return false;
    m_slices.Drop(m_slices.CurrentPriority());
    return true;
}

}  // namespace quillon
