#pragma once

#include <cstdint>
#include <optional>

#include "data/Document.h"
#include "view/AmplitudeScale.h"
#include "view/DataRange.h"
#include "view/ExtremesCache.h"
#include "view/Lane.h"
#include "view/Selection.h"
#include "view/TimeAxis.h"
#include "view/ViewHistory.h"

namespace quillon {

/// What a command has changed of the view.
struct ViewChange {
    std::int32_t scrolled = 0;  ///< columns by which the view was moved along the block, where that is all
    bool redraw = false;        ///< more than a scroll: zoom or scales have changed
    bool newPlace = false;      ///< the user has gone to another part of the block
    bool selection = false;
    ViewChange& operator|=(const ViewChange& other);
};

/// Which part of a document's block the graph shows at which scales, what is selected, and the history of views.
/// Samples count from 1. A command that has no effect returns an empty change.
class WaveformView {
  public:
    /// The document must outlive this object.
    explicit WaveformView(const Document& document);

    [[nodiscard]] const TimeAxis& Axis() const { return m_axis; }
    [[nodiscard]] const Lanes& GetLanes() const { return m_lanes; }
    /// Index of the amplitude scale, and rows by which the zero level lies below the middle.
    [[nodiscard]] int ScaleY() const { return m_scale.Index(); }
    [[nodiscard]] std::int64_t BaseLineShift() const { return m_scale.Shift(); }
    [[nodiscard]] const Selection& Selected() const { return m_selection; }
    [[nodiscard]] bool HasHistory() const { return !m_history.IsEmpty(); }
    /// Extremes of the block that are known.
    [[nodiscard]] ExtremesCache& Extremes() const { return m_extremes; }
    [[nodiscard]] RangeRecords& Ranges() { return m_ranges; }
    [[nodiscard]] bool RawCodes() const { return m_rawCodes; }
    void SetRawCodes(bool rawCodes) { m_rawCodes = rawCodes; }

    /// Size of the graph in pixels. The lanes share its height, and hold the channels that are shown now.
    void Arrange(std::int32_t width, std::int32_t height);
    /// The block is about to be closed: clears the selection, the history and the recorded ranges.
    void LeaveBlock();
    /// The block's codes have another scale: clears what was recorded of them.
    void Rescaled();
    /// Another block is loaded: shows its first page at the previous zoom and scales.
    void BlockLoaded();
    /// Chooses a new scale if the data are not readable at the previous one, or none has been chosen since the start.
    /// `seen` is the range of the visible data, see CentralRange.
    void FitScales(const std::optional<ValueRange>& seen);
    /// Whether FitScales has had data to choose a scale by since the start.
    [[nodiscard]] bool HasFittedScales() const { return m_scalesFitted; }

    /// State that is restored after a reload of the recording.
    struct State {
        ViewPlace place;
        ViewHistory history;
        Selection selection;
    };
    [[nodiscard]] State Keep() const { return {Place(), m_history, m_selection}; }
    /// To be called after BlockLoaded; positions past the end of the block are clamped.
    void Restore(const State& state);

    ViewChange ScrollBy(std::int32_t columns);
    ViewChange SetScrollValue(std::int32_t value);
    /// 0 start, 1 previous page, 2 next page, 3 end.
    ViewChange GoToPage(int command);
    ViewChange Move(std::int32_t columns, std::int64_t rows);
    /// Moves the zero level by rows.
    ViewChange MoveBaseLine(std::int64_t rows);
    ViewChange SelectZoomX(int index);
    /// One zoom step, limited to the zooms of the menu.
    ViewChange ZoomX(bool in);
    /// Steps of the X zoom, finer ones positive; the sample under a column of the graph stays there.
    ViewChange ZoomAbout(int steps, std::int32_t column);
    /// Steps of the Y scale, finer ones positive.
    ViewChange ZoomY(int steps);
    ViewChange SelectScaleY(int index);
    ViewChange SetBipolar();
    /// Reads what the ranges of the shown channels lack, unless they are recorded.
    ViewChange FindData();
    ViewChange FitBlock();
    ViewChange FitSelection();
    /// Returns to the previous view.
    ViewChange Back();
    ViewChange GoTo(std::int32_t sample);
    /// The next or previous mark, searched from the target of the last GoTo while the view has not changed since, else
    /// from the middle of the view.
    [[nodiscard]] std::optional<std::int32_t> MarkFrom(bool next) const;

    /// Selects from `start` to `end`; the end may be before the start.
    ViewChange Select(std::int32_t start, std::int32_t end);
    /// Moves the end of the selection.
    ViewChange SelectTo(std::int32_t end);
    ViewChange SelectBlock() { return Select(1, m_axis.SampleCount()); }
    ViewChange SelectVisible();
    ViewChange Deselect();
    /// Moves the end of the selection by columns, and the view with it.
    ViewChange MoveSelectionEnd(std::int32_t columns);

  private:
    [[nodiscard]] ViewPlace Place() const;
    void GoBackTo(const ViewPlace& place);
    /// Makes the lanes anew: of the scale, with the channels that are shown now.
    void MakeLanes();
    /// Saves the current view in the history.
    void Push() { m_history.Push(Place()); }
    ViewChange Redraw(bool newPlace = false);

    const Document& m_document;
    TimeAxis m_axis;
    AmplitudeScale m_scale;            ///< of all channels, on one axis
    Lanes m_lanes;                     ///< what follows from it
    mutable ExtremesCache m_extremes;  ///< reading through it changes nothing that is seen
    RangeRecords m_ranges{m_extremes};
    Selection m_selection;
    ViewHistory m_history;
    std::int32_t m_goneTo = 0;  ///< sample that was gone to, until the view changes; 0: none
    bool m_rawCodes = false;
    bool m_scalesFitted = false;
};

}  // namespace quillon
