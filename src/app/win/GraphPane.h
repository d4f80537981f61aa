#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/GraphNotice.h"
#include "app/Playback.h"
#include "app/ScrollBars.h"
#include "app/win/CommonBand.h"
#include "app/win/GraphMouse.h"
#include "view/DisplaySettings.h"
#include "view/Measurement.h"
#include "view/ScaleLabels.h"
#include "view/win/GraphCursor.h"
#include "view/win/GraphPainter.h"
#include "view/win/ScalePainter.h"
#include "view/win/ucZoomX.h"

namespace quillon {

/// The graph with its scales, scroll bars and zoom control: paints the state of document, view and
/// playback, reads values out under the mouse, and turns the rest of its input into gestures (GraphMouse).
class GraphPane final : private PictureOwner, private ZoomXEvents {
  public:
    /// All arguments must outlive this object. `foldOrigin`: see TraceGeometry.
    GraphPane(const Document& document, WaveformView& view, const Playback& playback, const DisplaySettings& display,
              const FormatOptions& format, HoverCapture& hover, const ScreenDensity& density, bool foldOrigin);

    // To be set by the owner.
    std::function<void(const ViewChange& change)> onChange;  ///< the mouse has changed the view
    std::function<void()> onSelectionStart;
    std::function<void()> onSelectionEnd;  ///< the selection may have been removed
    std::function<void(std::int32_t sample, double place, const std::u16string& mark)> onHover;  ///< see PlaceUnder
    std::function<void(CommonBand which, const std::optional<ColumnBand>& band)> onBand;  ///< shown, moved or hidden
    std::function<std::optional<Measurement>()> onMeasured;                 ///< what is to be drawn over the graph
    std::function<void(POINT screen, std::int16_t channel)> onContextMenu;  ///< channel of the trace there, 0: none
    std::function<void(std::int16_t channel)> onChannel;                    ///< chosen by its lane
    std::function<void(std::int16_t channel)> onAlone;                      ///< to be shown alone, or with the others
    std::function<void(int index)> onZoom;                                  ///< 0 out, 1 in
    std::function<void(HWND control)> onZoomMenu;
    std::function<bool()> onBusy;  ///< whether mouse input is ignored now (a command runs)
    std::function<void(const std::exception& error)> onFailed;

    /// The graph, which the first waveform needs; then scales and zoom control. Scroll bars are made by their parent.
    [[nodiscard]] bool CreateGraph(HWND parent);
    [[nodiscard]] bool CreateRest(HWND parent);
    [[nodiscard]] HWND Graph() const { return m_graph.Window(); }
    [[nodiscard]] HWND ScaleX() const { return m_scaleX.Window(); }
    [[nodiscard]] HWND ScaleY() const { return m_scaleY.Window(); }
    /// The mouse cursor over graph and spectrogram.
    [[nodiscard]] HCURSOR Pointer() { return m_cursors.Get(m_display.waveformCursor); }
    /// Width that the strip left of the graph wants for the titles of lanes; 0 without lanes.
    [[nodiscard]] std::int32_t TitlesWidth() const { return m_view.UsesLanes() ? m_titles.WantedWidth() : 0; }
    void ChannelChanged() const { m_scaleY.Invalidate(); }  ///< another one is the current one
    void Invalidate() const { m_graph.Invalidate(), m_scaleX.Invalidate(), m_scaleY.Invalidate(); }
    /// Size of the graph in pixels.
    void SetSize(std::int32_t width, std::int32_t height);
    void DensityChanged();
    /// Text shown in a graph without traces.
    void SetNotice(GraphNotice notice);

    /// What the graph shows; valid until the view changes.
    [[nodiscard]] GraphScene Scene() const;
    /// Chooses scales for a block that is not readable at the present ones; once it is drawn if reading takes long.
    void FitScales();
    /// Draws some of the columns that are missing; false when none is.
    bool DrawMore();
    [[nodiscard]] bool IsIncomplete() const { return m_painter.IsIncomplete(); }
    [[nodiscard]] double DrawnShare() const { return 1.0 - m_painter.MissingShare(); }
    /// Chooses the scales that had to wait until the graph was complete; false when there were none.
    bool FitDrawn();
    /// Whether scales wait for that; stays so when the block is left, for its successor.
    [[nodiscard]] bool IsFitPending() const { return m_fitWhenDrawn; }
    /// Redraws everything for the current view. A shift means that the view was only scrolled since the last drawing.
    void Refresh(std::int32_t shift);
    /// Whether the marks to be seen differ from those drawn by Refresh.
    [[nodiscard]] bool SeesOtherMarks() const;
    /// The codes of the block have changed: what was read of them is out of date.
    void Rescaled() { m_painter.ForgetBlock(); }
    /// The block is about to be closed.
    void LeaveBlock();
    void ShowSelection();
    /// The playback line at a sample from 1; 0 hides it.
    void ShowPlayLine(std::int32_t sample);
    void ShowCursor(const std::optional<ColumnBand>& band);
    /// Shows the readout of a sample, independent of the pointer.
    void ShowSample(std::int32_t sample);
    [[nodiscard]] std::optional<std::int32_t> HoveredSample() const;  ///< from 1, while values are read out
    /// The one whose values are read out: its point is nearest to the pointer.
    [[nodiscard]] std::optional<std::int32_t> PointedSample() const;
    /// Values are not read out under the pointer any more until it is moved.
    void LeavePointer() const { m_hover.End(), m_hover.HoldUntilMoved(); }
    /// Asks for the context menu at the corner of the graph, for no channel.
    void OpenContextMenu() const;
    /// The view has scrolled under a resting pointer: updates the readout.
    void HoverAgain();
    /// Reason why some of the drawn samples could not be read; empty when all were read.
    [[nodiscard]] std::string Failure() const;

    [[nodiscard]] bool HasGesture() const { return m_mouse.HasGesture(); }
    void EndGesture() { m_mouse.EndGesture(); }
    /// A lane is dragged by its title; ReleaseCapture leaves it where it is.
    [[nodiscard]] bool DragsLane() const { return m_gestures.Current() == GraphGestures::Kind::Title; }
    /// Another command is about to use the selection: ends the gesture that changes it.
    void EndSelecting() { m_mouse.EndSelecting(); }
    void Wheel(int delta, GraphZone zone, const GraphPointer& pointer) { m_mouse.Wheel(delta, zone, pointer); }
    void OnScroll(int bar, int code);
    void OnTimer(UINT_PTR timer) { m_mouse.OnTimer(timer); }

  private:
    void PaintPicture(int id, HDC dc, const RECT& clip) override;
    bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    void PictureFailed(const std::exception& error) override { onFailed(error); }
    void ZoomDown(int index) override { onZoom(index); }
    void ZoomButtonDown() override { onZoomMenu(m_zoomX.Window()); }
    void ZoomFailed(const std::exception& error) override { onFailed(error); }
    void WireMouse();
    /// Marks the title of the channel in whose lane the pointer is; 0: in none.
    void Point(std::int16_t channel);
    void Hover(int x, int y);
    void ReadOut(std::int32_t sample, int x, int row);
    void SetBand(GraphBand which, const std::optional<ColumnBand>& band);
    [[nodiscard]] const GraphColors& Colors() const { return *m_view.Look().colors; }
    [[nodiscard]] bool HasSamples() const { return m_document.Block().sampleCount > 0; }

    const Document& m_document;
    WaveformView& m_view;
    const Playback& m_playback;
    const DisplaySettings& m_display;
    const FormatOptions& m_format;
    HoverCapture& m_hover;
    const ScreenDensity& m_density;
    bool m_foldOrigin;
    GraphGestures m_gestures;
    LaneTitles m_titles;
    GraphMouse m_mouse;
    ScrollBars m_scrollBars;
    PictureBox m_graph;
    PictureBox m_scaleX;
    PictureBox m_scaleY;
    ucZoomX m_zoomX;
    GraphPainter m_painter;
    ScalePainter m_scales;
    GraphCursor m_cursors;
    GraphNotice m_notice;
    SIZE m_size{};
    std::vector<MarkLine> m_marks;  ///< those of the last Refresh
    bool m_fitWhenDrawn = false;    ///< see FitScales
};

}  // namespace quillon
