#pragma once

#include <cstdint>
#include <functional>

#include "base/win/Win32.h"
#include "data/Document.h"
#include "format/QL_Format.h"
#include "view/GraphGestures.h"
#include "view/LaneLabels.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// The strip left of the graph while every channel has a lane: titles and scale bars. It paints them and handles the
/// mouse there; the graph's pane owns the window.
class LaneTitles {
  public:
    /// All arguments must outlive this object.
    LaneTitles(const Document& document, WaveformView& view, GraphGestures& gestures, const FormatOptions& format,
               const ScreenDensity& density);

    // To be set by the owner.
    std::function<void(std::int16_t channel)> onChannel;  ///< a click on a title or a scale
    std::function<void(std::int16_t channel)> onAlone;    ///< a double click on a title
    std::function<void(POINT screen, std::int16_t channel)> onMenu;
    std::function<void(GraphZone zone, const GraphPointer& pointer)> onPress;  ///< a gesture begins
    std::function<void(const GraphPointer& pointer)> onDrag;
    std::function<void(const ViewChange& change)> onChange;
    std::function<void()> onCancel;  ///< the capture is lost

    /// Width in which all titles of the block have room.
    [[nodiscard]] std::int32_t WantedWidth() const;
    void Paint(HDC dc, const RECT& client) const;
    /// A mouse message of the strip; true when it was handled.
    bool Mouse(HWND strip, UINT message, const GraphPointer& pointer);
    /// The channel of the lane at a row; 0 where there is none.
    [[nodiscard]] std::int16_t ChannelAt(std::int32_t row) const;
    /// The pointer is in the lane of this channel (0: in none), whose title is marked; returns whether that is new.
    bool Point(std::int16_t channel);

  private:
    /// Title or scale of the lane at a point of the strip.
    [[nodiscard]] GraphZone ZoneAt(HWND strip, std::int32_t x, std::int32_t y) const;
    bool Press(HWND strip, UINT message, const GraphPointer& pointer);
    void Move(HWND strip, const GraphPointer& pointer);
    void SetPointer(HWND strip) const;
    [[nodiscard]] LaneStrip Strip(HDC dc, std::int32_t width) const;
    void PaintLane(HDC dc, const RECT& client, const Lane& lane, const LaneLabel& label) const;

    const Document& m_document;
    WaveformView& m_view;
    GraphGestures& m_gestures;
    const FormatOptions& m_format;
    const ScreenDensity& m_density;
    std::int16_t m_pointed = 0;
};

}  // namespace quillon
