#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "data/Document.h"
#include "data/WorkSlices.h"
#include "view/WaveformView.h"

namespace quillon {

/// What is read of the loaded block, and of the others of its stretch, between the messages of the window: what the
/// pictures lack, the extremes of the whole blocks, and what opening has left out. All of it ends with the block.
class BackgroundWork {
  public:
    /// All arguments must outlive this object.
    BackgroundWork(Document& document, WaveformView& view) : m_document(document), m_view(view) {}

    // To be set by the owner. Steps draw or read about a piece; false when nothing is left.
    std::function<bool()> onDraw;          ///< step of the graph
    std::function<double()> onDrawnShare;  ///< share of the graph that is drawn, 0 to 1
    std::function<void()> onDrawn;         ///< the graph is complete
    std::function<bool()> onSpectrum;      ///< step of the spectrogram
    std::function<double()> onSpectrumShare;
    std::function<void()> onRescaled;  ///< the block's scales have changed: all that came of its codes is out of date
    std::function<void(const ReadStep& step)> onFound;  ///< more of the recording is known
    std::function<void()> onStart;                      ///< there is work: RunSlice has to be called from now on

    /// A block is loaded.
    void BlockLoaded();
    /// The scales of the block have changed: what depends on its codes begins anew.
    void Rescaled();
    /// The signals of the other blocks of the stretch have changed.
    void SignalsChanged();
    /// The block is about to be closed: everything is dropped.
    void BlockLeft() { m_slices.DropAll(); }
    /// The graph or the spectrogram has been drawn, possibly in part.
    void GraphDrawn(bool complete);
    void SpectrumDrawn(bool complete);
    /// Who waits for ranges.
    enum class RangeUser { FindData, Spectrum };  // the latter for what is stored
    /// Finds the ranges of channels (from 1) over the whole block. True where that is quick; else `then` is called when
    /// they are recorded, instead of what the same user asked for before.
    bool FindRanges(RangeUser user, const std::vector<std::int16_t>& channels, const std::function<void()>& then);
    [[nodiscard]] bool IsSearching() const { return m_slices.IsRunning(kRange); }
    /// Another pass, for the statistics of a selection.
    void Measure(const std::function<bool()>& step, const std::function<double()>& share);
    void EndMeasure() { m_slices.Drop(kStatistics); }
    /// The pass of averaged spectra.
    void Analyse(const std::function<bool()>& step, const std::function<double()>& share);
    void EndAnalysis() { m_slices.Drop(kAnalysis); }
    /// The pass of the overview.
    void Survey(const std::function<bool()>& step, const std::function<double()>& share);
    /// Reads the extremes of the whole block if they are not known and nobody does.
    void Summarise();

    /// Works for about 10 ms; false when nothing is left to be done.
    bool RunSlice() { return m_slices.Run(kSlice); }
    [[nodiscard]] bool IsIdle() const { return m_slices.IsIdle(); }
    /// Whether the pictures are complete.
    [[nodiscard]] bool ArePicturesComplete() const {
        return !m_slices.IsRunning(kGraph) && !m_slices.IsRunning(kSpectrum) && !m_slices.IsRunning(kRange);
    }
    /// What the user is told of the work under way.
    [[nodiscard]] std::optional<WorkSlices::Report> Current() const { return m_slices.Current(); }
    /// Drops the pass that Current reports; false when it reports none.
    bool DropCurrent();

  private:
    /// In order of priority.
    enum Priority { kGraph, kScales, kRange, kSpectrum, kStatistics, kAnalysis, kMarks, kSummary, kOverview };
    static constexpr std::chrono::milliseconds kSlice{10};

    void Start(Priority priority, WorkSlices::Pass pass);
    void FindScales();
    void ReadOn();
    bool ReadRanges();
    void RangesFound();

    Document& m_document;
    WaveformView& m_view;
    WorkSlices m_slices;
    bool m_rescaled = false;  ///< the pass that found the scales has changed them
    // Those that are searched while kRange is running, as they are shown and as they are stored.
    std::vector<std::int16_t> m_rangeChannels;
    std::vector<std::int16_t> m_storedChannels;
    std::map<RangeUser, std::function<void()>> m_rangeUsers;
};

}  // namespace quillon
