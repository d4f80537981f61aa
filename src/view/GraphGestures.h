#pragma once

#include <cstdint>

#include "view/WaveformView.h"

namespace quillon {

/// Parts of the window in which the mouse moves the view.
enum class GraphZone { Traces, TimeScale, AmplitudeScale, Spectrogram };

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
/// dragging view and base line with the middle one, dragging the base line in the amplitude scale, zooming and
/// scrolling with the wheel. One gesture at a time; while one is under way the pointer may leave the graph.
class GraphGestures {
  public:
    enum class Kind { None, Select, Pan, BaseLine };
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
    /// Ends the gesture; an empty selection is removed.
    ViewChange Release(const GraphPointer& pointer);
    /// Ends the gesture at its last position.
    ViewChange Cancel();
    /// Movement below a notch adds up until the direction changes.
    ViewChange Wheel(int delta, GraphZone zone, const GraphPointer& pointer);
    /// Scrolls towards a pointer outside the graph, faster with its distance, at most one division.
    ViewChange AutoScroll();

  private:
    WaveformView& m_view;
    Kind m_kind = Kind::None;
    std::int32_t m_x = 0;  ///< where a drag began; of a selection, where the pointer is
    std::int32_t m_y = 0;
    std::int32_t m_column = 0;  ///< first column of the view, where the drag began
    std::int64_t m_shift = 0;   ///< shift of the base line where the drag began
    int m_wheelRest = 0;
};

}  // namespace quillon
