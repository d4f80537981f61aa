#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "view/WaveformView.h"

namespace quillon {

/// Parts of the window in which the mouse moves the view. The titles of lanes lie in the amplitude scale.
enum class GraphZone { Traces, TimeScale, AmplitudeScale, Spectrogram, LaneTitles };

enum class GraphButton { Left, Middle };

/// A place of the pointer in pixels of the graph, and the keys that are held.
struct GraphPointer {
    std::int32_t x = 0;
    std::int32_t y = 0;
    bool shift = false;
    bool control = false;
    bool alt = false;
};

/// What the mouse does with the view: selecting with the left button (with Shift, moving the end of a selection),
/// dragging view and base line with the middle one, dragging the base line in the amplitude scale (of the lane under
/// the pointer) and lanes by their titles, zooming and scrolling with the wheel. One gesture at a time; while one is
/// under way the pointer may leave the graph.
class GraphGestures {
  public:
    enum class Kind { None, Select, Pan, BaseLine, Title };
    /// Wheel movement of one notch.
    static constexpr int kNotch = 120;

    /// The view must outlive this object.
    explicit GraphGestures(WaveformView& view) : m_view(view) {}

    /// The current gesture.
    [[nodiscard]] Kind Current() const { return m_kind; }
    /// Whether the pointer is outside the graph while selecting: AutoScroll has to be called every 40 ms.
    [[nodiscard]] bool IsBeside() const;

    /// Starts a gesture if none is under way; Current() returns which one.
    ViewChange Press(GraphButton button, GraphZone zone, const GraphPointer& pointer);
    ViewChange Move(const GraphPointer& pointer);
    /// The lane at whose place a dragged title would be dropped, and whether it comes from above that.
    [[nodiscard]] std::size_t DropLane() const { return m_view.LaneAt(m_y); }
    [[nodiscard]] bool DropsFromAbove() const;
    /// Ends the gesture; an empty selection is removed, a dragged lane is dropped.
    ViewChange Release(const GraphPointer& pointer);
    /// Ends the gesture at its last position.
    ViewChange Cancel();
    /// Movement below a notch adds up until the direction changes. Over a lane Alt zooms its group, Alt and Shift its
    /// channel alone; beside the lanes the wheel scrolls them.
    ViewChange Wheel(int delta, GraphZone zone, const GraphPointer& pointer);
    /// Scrolls towards a pointer outside the graph, faster with its distance, at most one division.
    ViewChange AutoScroll();

  private:
    /// Lane of the dragged channel; none while it is out of sight.
    [[nodiscard]] std::optional<std::size_t> DraggedLane() const;
    [[nodiscard]] std::int64_t ZeroRow() const;
    ViewChange Zoom(int notches, GraphZone zone, const GraphPointer& pointer);

    WaveformView& m_view;
    Kind m_kind = Kind::None;
    std::int32_t m_x = 0;  ///< where a drag began; of a selection or title, where the pointer is
    std::int32_t m_y = 0;
    std::int32_t m_column = 0;   ///< first column of the view, where the drag began
    std::int16_t m_channel = 0;  ///< of the lane where the drag began; 0 on one axis
    std::int64_t m_zeroRow = 0;  ///< of that lane then
    int m_wheelRest = 0;
};

}  // namespace quillon
