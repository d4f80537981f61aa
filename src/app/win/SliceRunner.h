#pragma once

#include <exception>
#include <functional>
#include <optional>

#include "app/BackgroundWork.h"
#include "app/win/LongCommand.h"
#include "app/win/StatusBar.h"
#include "data/UserServices.h"

namespace quillon {

class GraphPane;
class OverviewPane;
class SpectrogramPane;

/// Runs the work behind what is shown between the messages of the window, tells its progress in "Status", and completes
/// parts of it for commands that need them. The pictures report to it what they lack.
class SliceRunner {
  public:
    /// All arguments must outlive this object.
    SliceRunner(Document& document, WaveformView& view, const UserServices& services, StatusBar& status,
                LongCommand& longCommand, GraphPane& graph, SpectrogramPane& spectrogram, OverviewPane& overview);

    // To be set by the owner, as work.onFound; Wire() sets the others once the panes exist.
    void Wire();
    std::function<void()> onFitted;                  ///< the scales were chosen anew when the graph was complete
    std::function<void(bool wholeView)> onPictures;  ///< more of the pictures is drawn
    std::function<void()> onKnown;                   ///< more of the block may be known
    std::function<void()> onRescaled;                ///< see BackgroundWork
    std::function<void(const std::exception& error)> onFailed;

    /// Goes on for about 10 ms. False when there is nothing to be done now.
    bool RunSlice();
    /// False when it is another's timer.
    bool OnTimer(UINT_PTR timer);
    /// Tells what is under way.
    void ShowProgress();
    /// The graph has been drawn, possibly in part.
    void GraphDrawn();
    /// Updates the spectrogram; `force` recomputes every column.
    void DrawSpectrogram(bool force);
    /// The spectrogram of another block or channel.
    void InitSpectrogram();
    /// Calls `find` once the ranges of the shown channels are recorded.
    void FindData(const std::function<void()>& find);
    /// The block is about to be closed.
    void BlockLeft();
    /// Drops the pass that is told; false when none is.
    bool DropCurrent();
    /// Parts of a long command: find the final scales of the block, and complete the pictures. False when the user has
    /// stopped that.
    bool CompleteScales();
    bool CompletePictures();
    /// Whether there is nothing for CompletePictures; what the user has stopped before is wanted again.
    bool ArePicturesComplete();

    BackgroundWork work;

  private:
    Document& m_document;
    WaveformView& m_view;
    const UserServices& m_services;
    StatusBar& m_status;
    LongCommand& m_longCommand;
    GraphPane& m_graph;
    SpectrogramPane& m_spectrogram;
    OverviewPane& m_overview;
    std::function<void()> m_findWhenDrawn;         ///< see FindData
    std::optional<WorkSlices::Report> m_progress;  ///< told in "Status"
};

}  // namespace quillon
