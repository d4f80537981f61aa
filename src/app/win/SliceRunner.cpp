#include "app/win/SliceRunner.h"

#include <utility>

#include "app/StringIds.h"
#include "app/win/GraphPane.h"
#include "app/win/OverviewPane.h"
#include "app/win/SpectrogramPane.h"
#include "base/Text.h"

namespace quillon {

namespace {

/// While a menu or a dialog is open, the loop of messages that works between them is not running.
constexpr UINT_PTR kSliceTimer = 2;
constexpr UINT kSlicePeriod = 10;  // ms

std::u16string ProgressText(const UserServices& services, const WorkSlices::Report& progress) {
    return services.Text(progress.text) + u": " + Decimal(progress.percent) + u" %";
}

}  // namespace

SliceRunner::SliceRunner(Document& document, WaveformView& view, const UserServices& services, StatusBar& status,
                         LongCommand& longCommand, GraphPane& graph, SpectrogramPane& spectrogram,
                         OverviewPane& overview)
    : work(document, view),
      m_document(document),
      m_view(view),
      m_services(services),
      m_status(status),
      m_longCommand(longCommand),
      m_graph(graph),
      m_spectrogram(spectrogram),
      m_overview(overview) {}

void SliceRunner::Wire() {
    work.onStart = [this] { SetTimer(m_longCommand.Window(), kSliceTimer, kSlicePeriod, nullptr); };
    work.onRescaled = [this] {
        m_overview.Rescaled();
        onRescaled();
    };
    m_overview.onMore = [this] {
        work.Survey([this] { return m_overview.ReadMore(); }, [this] { return m_overview.ReadShare(); });
    };
    work.onDraw = [this] { return m_graph.DrawMore(); };
    work.onDrawnShare = [this] { return m_graph.DrawnShare(); };
    work.onDrawn = [this] {
        m_graph.FitDrawn() ? onFitted() : onPictures(true);
        if (const auto find = std::exchange(m_findWhenDrawn, nullptr)) find();
    };
    work.onSpectrum = [this] {
        const bool more = m_spectrogram.DrawMore();
        if (!more) onPictures(false);
        return more;
    };
    work.onSpectrumShare = [this] { return m_spectrogram.DrawnShare(); };
    m_spectrogram.onRange = [this](std::int16_t channel) {
        return work.FindRanges(BackgroundWork::RangeUser::Spectrum, {channel}, [this] {
            m_spectrogram.UseRange();
            DrawSpectrogram(true);
            onPictures(false);
        });
    };
}

void SliceRunner::GraphDrawn() {
    work.GraphDrawn(!m_graph.IsIncomplete());
}

void SliceRunner::DrawSpectrogram(bool force) {
    // A search that was dropped begins again with the next view.
    if (m_spectrogram.IsRangeAsked() && !work.IsSearching()) m_spectrogram.ChooseChannel();
    m_spectrogram.Spectrogram_Draw(force);
    work.SpectrumDrawn(!m_spectrogram.IsIncomplete());
}

void SliceRunner::InitSpectrogram() {
    // The waveform first.
    UpdateWindow(m_graph.Graph());
    m_spectrogram.Spectrogram_Init(true);
    work.SpectrumDrawn(!m_spectrogram.IsIncomplete());
    onPictures(false);
}

void SliceRunner::BlockLeft() {
    m_findWhenDrawn = nullptr;
    m_overview.LeaveBlock();
    work.BlockLeft();
}

void SliceRunner::FindData(const std::function<void()>& find) {
    if (m_view.UsesLanes()) {
        // Lanes are fitted to what is seen.
        if (!m_graph.IsIncomplete()) return find();
        m_findWhenDrawn = find;
        return;
    }
    const std::vector<std::int16_t> shown = ChannelsOf(m_view.GetLanes());
    // Other channels may be shown when the ranges are found.
    const auto found = [this, find] {
        m_view.Ranges().IsRecorded(ChannelsOf(m_view.GetLanes())) ? find() : FindData(find);
    };
    if (m_view.RawCodes() || work.FindRanges(BackgroundWork::RangeUser::FindData, shown, found)) find();
}

bool SliceRunner::RunSlice() {
    if (m_longCommand.IsBusy() || m_longCommand.IsGone() || work.IsIdle()) return false;
    try {
        work.RunSlice();
    } catch (const std::exception& error) {
        onFailed(error);
    }
    if (m_longCommand.IsGone()) return false;
    ShowProgress();
    return !work.IsIdle();
}

bool SliceRunner::OnTimer(UINT_PTR timer) {
    if (timer != kSliceTimer) return false;
    if (RunSlice() || !work.IsIdle()) return true;
    // The last pass may have been dropped outside a slice.
    KillTimer(m_longCommand.Window(), kSliceTimer);
    ShowProgress();
    return true;
}

void SliceRunner::ShowProgress() {
    const std::optional<WorkSlices::Report> progress = work.Current();
    const bool changed = std::exchange(m_progress, progress) != progress;
    if (changed || work.IsIdle()) {
        onKnown();
        m_overview.Update();
    }
    if (!changed) return;
    if (progress) {
        m_status.Offer(StatusBar::Topic::Progress, ProgressText(m_services, *progress));
    } else {
        m_status.Retract(StatusBar::Topic::Progress);
    }
}

bool SliceRunner::DropCurrent() {
    if (!work.DropCurrent()) return false;
    ShowProgress();
    return true;
}

bool SliceRunner::CompleteScales() {
    const std::shared_ptr<RecordingBlock> block = m_document.Block().block;
    PrepareStep step = PrepareStep::More;
    bool alive = true;
    while (alive && block->IsProvisional() && step == PrepareStep::More) {
        alive = m_longCommand.StayAlive();
        if (alive) step = m_document.PrepareMore();
        const auto percent = static_cast<int>(block->PreparedShare() * 100.0);
        m_status.Tell(StatusBar::Topic::Progress, ProgressText(m_services, {IDS_WORK_SCALES, percent}));
    }
    m_status.Retract(StatusBar::Topic::Progress);
    if (!alive) return false;
    if (step == PrepareStep::DoneRescaled) work.onRescaled();
    return true;
}

bool SliceRunner::ArePicturesComplete() {
    GraphDrawn();
    work.SpectrumDrawn(!m_spectrogram.IsIncomplete());
    return work.ArePicturesComplete();
}

bool SliceRunner::CompletePictures() {
    while (!work.ArePicturesComplete() && m_longCommand.StayAlive()) {
        work.RunSlice();
        ShowProgress();
    }
    return work.ArePicturesComplete();
}

}  // namespace quillon
