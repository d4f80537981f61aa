#include "app/BackgroundWork.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "app/StringIds.h"

namespace quillon {

namespace {

void AddTo(std::vector<std::int16_t>& wanted, const std::vector<std::int16_t>& channels) {
    for (const std::int16_t channel : channels) {
        if (std::find(wanted.begin(), wanted.end(), channel) == wanted.end()) wanted.push_back(channel);
    }
}

}  // namespace

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
    // Who waits for ranges gets those of the new codes.
    for (const Priority priority : {kScales, kSpectrum, kSummary}) m_slices.Drop(priority);
    FindScales();
    Summarise();
}

void BackgroundWork::SignalsChanged() {
    FindScales();
    Summarise();
}

void BackgroundWork::FindScales() {
    const RecordingBlock* const block = m_document.Provisional();
    if (block == nullptr) return;
    m_rescaled = false;
    const auto step = [this] {
        const PrepareStep done = m_document.PrepareMore();
        m_rescaled = done == PrepareStep::DoneRescaled;
        return done == PrepareStep::More;
    };
    const auto share = [this] {
        const RecordingBlock* const now = m_document.Provisional();
        return now != nullptr ? now->PreparedShare() : 1.0;
    };
    const auto end = [this, block] {
        if (m_rescaled) onRescaled();
        // The next block of the stretch.
        if (m_document.Provisional() != block) FindScales();
    };
    Start(kScales, {IDS_WORK_SCALES, step, share, end});
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

bool BackgroundWork::ReadRanges() {
    const SampleSpan seen = m_view.Axis().Visible();
    const ViewBlock& block = m_document.Block();
    // Where both are the same there is one search.
    if (block.block == block.stored) AddTo(m_rangeChannels, std::exchange(m_storedChannels, {}));
    if (!m_rangeChannels.empty() && m_view.Ranges().ReadMissing(block, m_rangeChannels, seen)) return true;
    return !m_storedChannels.empty() && m_view.AllExtremes().ReadStored(m_storedChannels, seen);
}

void BackgroundWork::RangesFound() {
    for (const auto& [user, then] : std::exchange(m_rangeUsers, {})) then();
}

bool BackgroundWork::FindRanges(RangeUser user, const std::vector<std::int16_t>& channels,
                                const std::function<void()>& then) {
    constexpr std::chrono::milliseconds quick{8};
    const WorkSlices::Clock::time_point start = WorkSlices::Clock::now();
    const bool running = m_slices.IsRunning(kRange);
    if (!running) {
        m_rangeChannels.clear();
        m_storedChannels.clear();
        m_rangeUsers.clear();
    }
    // One search for all who wait; it begins anew only where a channel is added.
    AddTo(user == RangeUser::Spectrum ? m_storedChannels : m_rangeChannels, channels);
    m_rangeUsers.erase(user);
    bool more = ReadRanges();
    while (more && WorkSlices::Clock::now() - start < quick) more = ReadRanges();
    if (!more) {
        m_slices.Drop(kRange);
        RangesFound();
        return true;
    }
    m_rangeUsers[user] = then;
    if (!running) {
        Start(kRange, {IDS_WORK_RANGE, [this] { return ReadRanges(); },
                       [this] {
                           return m_rangeChannels.empty() ? m_view.AllExtremes().StoredRanges().PassedShare()
                                                          : m_view.Ranges().PassedShare();
                       },
                       [this] { RangesFound(); }});
    }
    return false;
}

void BackgroundWork::Measure(const std::function<bool()>& step, const std::function<double()>& share) {
    Start(kStatistics, {IDS_WORK_STATISTICS, step, share, {}});
}

void BackgroundWork::Analyse(const std::function<bool()>& step, const std::function<double()>& share) {
    Start(kAnalysis, {IDS_WORK_ANALYSIS, step, share, {}});
}

void BackgroundWork::Survey(const std::function<bool()>& step, const std::function<double()>& share) {
    if (!m_slices.IsRunning(kOverview)) Start(kOverview, {IDS_WORK_SUMMARY, step, share, {}});
}

void BackgroundWork::Summarise() {
    const ViewBlock& block = m_document.Block();
    if (!block.block || block.sampleCount < 1 || m_slices.IsRunning(kSummary)) return;
    std::vector<std::int16_t> all(static_cast<std::size_t>(block.channelCount));
    std::iota(all.begin(), all.end(), std::int16_t{1});
    RangeRecords& ranges = m_view.Ranges();
    StretchExtremes& extremes = m_view.AllExtremes();
    const bool known = ranges.IsKnown(all);
    if (known && (!m_view.UsesLanes() || extremes.OthersShare() >= 1.0)) return;
    const auto step = [this, all, &ranges, &extremes, own = !known]() mutable {
        own = own && ranges.ReadMissing(m_document.Block(), all, m_view.Axis().Visible());
        return own || (m_view.UsesLanes() && extremes.ReadOthers(m_view.Axis()));
    };
    const auto share = [this, &ranges, &extremes] {
        const auto others = static_cast<double>(m_document.OtherBlocks().size());
        return (ranges.PassedShare() + others * extremes.OthersShare()) / (1.0 + others);
    };
    Start(kSummary, {IDS_WORK_SUMMARY, step, share, {}});
}

bool BackgroundWork::DropCurrent() {
    if (!m_slices.Current()) return false;
    m_slices.Drop(m_slices.CurrentPriority());
    return true;
}

}  // namespace quillon
