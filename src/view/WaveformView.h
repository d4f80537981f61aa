#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "data/Document.h"
#include "view/AmplitudeScale.h"
#include "view/ChannelLanes.h"
#include "view/GraphColors.h"
#include "view/Lane.h"
#include "view/Selection.h"
#include "view/SoloScales.h"
#include "view/StretchExtremes.h"
#include "view/TimeAxis.h"
#include "view/ViewChange.h"
#include "view/ViewHistory.h"

namespace quillon {

/// What keys do to the lane of a channel, in the order of their commands.
enum class LaneStep { ZoomOut, ZoomIn, Fit, TraceUp, TraceDown, LaneUp, LaneDown, Count };

/// Which part of a document's block the graph shows at which scales, what is selected, and the history of views.
/// Samples count from 1. A command that has no effect returns an empty change. The channels share one axis, or each has
/// a lane (see ChannelLanes): commands of the Y scale and of the base line then act on all lanes. The time axis is free
/// while lanes are on, also for a single channel. Lanes count from 0 among the visible ones.
class WaveformView {
  public:
    /// The document must outlive this object.
    explicit WaveformView(const Document& document);
    [[nodiscard]] const TimeAxis& Axis() const { return m_axis; }
    [[nodiscard]] const Lanes& GetLanes() const { return m_lanes; }
    /// Whether every signal has a lane.
    [[nodiscard]] bool UsesLanes() const { return m_channelLanes.IsUsed(); }
    [[nodiscard]] const ChannelLanes& LanesOfChannels() const { return m_channelLanes; }
    [[nodiscard]] std::size_t LaneAt(std::int32_t row) const;  ///< nearest to a row of the graph
    /// Of one axis: index of the amplitude scale, and rows by which the zero level lies below the middle.
    [[nodiscard]] int ScaleY() const { return m_scale.Index(); }
    [[nodiscard]] std::int64_t BaseLineShift() const { return m_scale.Shift(); }
    [[nodiscard]] const Selection& Selected() const { return m_selection; }
    /// Sample that was gone to, until other samples are shown; 0: none.
    [[nodiscard]] std::int32_t GoneTo() const { return m_goneTo; }
    /// The sample that others are measured from; 0: none.
    [[nodiscard]] std::int32_t Pinned() const { return m_pinned; }
    /// 0 removes the pin.
    ViewChange Pin(std::int32_t sample) { return {.redraw = std::exchange(m_pinned, sample) != sample}; }
    [[nodiscard]] bool HasHistory() const { return !m_history.IsEmpty(); }
    [[nodiscard]] ExtremesCache& Extremes() const { return m_extremes.Loaded(); }
    [[nodiscard]] RangeRecords& Ranges() { return m_extremes.Ranges(); }
    /// The other blocks of the stretch, for drawing in lanes. Valid until the document changes.
    [[nodiscard]] SceneBlocks OtherBlocks() const { return UsesLanes() ? m_extremes.Others() : SceneBlocks(); }
    [[nodiscard]] StretchExtremes& AllExtremes() { return m_extremes; }
    [[nodiscard]] bool RawCodes() const { return m_rawCodes; }
    void SetRawCodes(bool rawCodes);
    /// How it is drawn, which changes nothing of what is shown.
    [[nodiscard]] const GraphLook& Look() const { return m_look; }
    void SetLook(const GraphLook& look) { m_look = look; }

    /// Scales the least height of a lane; at first 96. To be called before Arrange.
    void SetDpi(int dpi) { m_channelLanes.SetDpi(dpi); }
    /// Size of the graph in pixels. The lanes hold the signals that are shown now.
    void Arrange(std::int32_t width, std::int32_t height);
    /// The block is about to be closed: clears the selection, the history and the recorded ranges.
    void LeaveBlock();
    void Rescaled();  ///< codes have another scale: clears what was recorded of them
    /// The blocks are shown otherwise: what is known of those before is kept aside.
    void Reshown() { m_extremes.BlockLoaded(); }
    /// Another block is loaded: shows its first page at the previous zoom and scales; in lanes the same time as before
    /// where it is one of the stretch that was left.
    void BlockLoaded();
    /// The signals of the other blocks of the stretch have changed.
    ViewChange SignalsChanged();
    /// Chooses a scale of one axis if `seen`, see CentralRange, is not readable, or none was chosen since the start.
    /// Where `seen` is flat, that of the whole block counts.
    void FitScales(const std::optional<ValueRange>& seen);
    [[nodiscard]] bool HasFittedScales() const { return m_scalesFitted; }

    /// Restored after a reload of the recording, and where it was left when the program ended.
    struct State {
        ViewPlace place;
        ViewHistory history;
        Selection selection;
        std::int32_t pinned = 0;
        bool scaleChosen = false;  ///< that of one axis is not to be fitted, see FitScales
        bool followsEnd = false;   ///< to be moved to the block's end, where that lies behind it
    };
    [[nodiscard]] State Keep() const { return {Place(), m_history, m_selection, m_pinned, m_scalesFitted}; }
    /// Whether nothing is left behind the view.
    [[nodiscard]] bool IsAtEnd() const { return ColumnsBehindView() <= 0; }
    /// After BlockLoaded; positions past the end of the block are clamped.
    void Restore(const State& state);

    ViewChange ScrollBy(std::int32_t columns);
    ViewChange SetScrollValue(std::int32_t value);
    /// 0 start, 1 previous page, 2 next page, 3 end.
    ViewChange GoToPage(int command);
    ViewChange Move(std::int32_t columns, std::int64_t rows);
    ViewChange MoveBaseLine(std::int64_t rows);
    ViewChange SelectZoomX(int index);
    /// One zoom step, on the axis of the table limited to the zooms of the menu. On a free axis the sample gone to,
    /// else the `hovered` one, stays where it is while it is visible, else the middle.
    ViewChange ZoomX(bool in, std::optional<std::int32_t> hovered = {});
    /// Steps, finer ones positive, here and below; the sample under a column of the graph stays there.
    ViewChange ZoomAbout(int steps, std::int32_t column);
    /// The page of a free axis, see TimeAxis::SelectPage; the same sample stays, else the first one.
    ViewChange SelectPage(double seconds, std::optional<std::int32_t> hovered = {});
    ViewChange ZoomY(int steps);
    /// In lanes the scale of the current channel's group: the table's units, or codes, per lane height.
    ViewChange SelectScaleY(int index);
    /// The selected index; -1 where the table lacks the scale.
    [[nodiscard]] int SelectedScaleY() const;
    ViewChange SetBipolar();
    /// Reads what the ranges of the shown channels lack; in lanes, what the visible columns lack.
    ViewChange FindData();
    /// Shows some samples over the whole width, see TimeAxis::ShowSamples. Without `remember` the view before is not
    /// one to go back to.
    ViewChange FitSamples(const SampleSpan& samples, bool remember = true);
    ViewChange FitBlock() { return FitSamples({0, m_axis.SampleCount()}); }
    ViewChange FitSelection() { return FitSamples(m_selection.Samples()); }
    ViewChange Back();
    ViewChange GoTo(std::int32_t sample);
    /// Goes to the sample that lies some columns from another, at least one sample if it is any; the view scrolls only
    /// as far as needed to show it.
    ViewChange StepFrom(std::int32_t sample, std::int32_t columns);
    ViewChange SetLanes(bool on);
    ViewChange SetClip(bool clip);
    ViewChange SetNegativeUp(bool negativeUp);
    /// In lanes only: steps of the scale of a lane's group, or of its channel alone; moves its trace by rows.
    ViewChange ZoomGroup(std::size_t lane, int steps);
    ViewChange ZoomChannel(std::size_t lane, int steps);
    ViewChange MoveLane(std::size_t lane, std::int64_t rows);
    /// Fits a lane's channel alone to what is visible of it.
    ViewChange FitLane(std::size_t lane);
    ViewChange ScrollLanes(std::int32_t lanes);
    ViewChange DragTitle(std::int16_t channel, std::size_t to);
    /// The same for a channel whose lane may be out of sight, and is not afterwards.
    ViewChange StepLane(std::int16_t channel, LaneStep step);
    /// The mark after or before the sample gone to, else after or before the middle of the view.
    [[nodiscard]] std::optional<std::int32_t> MarkFrom(bool next) const;

    /// Selects from `start` to `end`; the end may be before the start.
    ViewChange Select(std::int32_t start, std::int32_t end);
    ViewChange SelectTo(std::int32_t end);
    ViewChange SelectBlock() { return Select(1, m_axis.SampleCount()); }
    ViewChange SelectVisible();
    ViewChange Deselect();
    /// Moves the end of the selection by columns, and the view with it.
    ViewChange MoveSelectionEnd(std::int32_t columns);

  private:
    [[nodiscard]] ViewPlace Place() const;
    /// Columns of the strip to the right of the graph; less than 0 where it ends within.
    [[nodiscard]] std::int32_t ColumnsBehindView() const;
    void GoBackTo(const ViewPlace& place);
    void MakeLanes();  ///< with the channels that are shown now
    [[nodiscard]] std::int32_t SampleBeside(std::int32_t sample, std::int32_t columns) const;
    ViewChange ScrollIntoView(std::int32_t sample);
    /// The channel of a lane; 0 on one axis, and where there is none.
    [[nodiscard]] std::int16_t ChannelOf(std::size_t lane) const;
    void ShowLane(std::int16_t channel);  ///< which is one of those in lanes
    /// A command on a lane's channel; pushes the view before it.
    ViewChange ChangeLane(std::size_t lane, const std::function<void(std::int16_t channel)>& change);
    [[nodiscard]] std::int32_t SampleToKeep(std::optional<std::int32_t> hovered) const;
    ViewChange Zoomed(const ViewPlace& before, bool newPlace);
    void Push() { m_history.Push(Place()); }
    ViewChange Redraw(bool newPlace = false);

    const Document& m_document;
    TimeAxis m_axis;
    AmplitudeScale m_scale;  ///< of all channels, on one axis
    ChannelLanes m_channelLanes;
    SoloScales m_soloScales;
    Lanes m_lanes;                       ///< what follows from either
    mutable StretchExtremes m_extremes;  ///< reading through it changes nothing that is seen
    Selection m_selection;
    ViewHistory m_history;
    std::int32_t m_goneTo = 0;  ///< 0: none
    std::int32_t m_pinned = 0;  ///< 0: none
    GraphLook m_look;
    bool m_rawCodes = false;
    bool m_scalesFitted = false;
};

}  // namespace quillon
