#pragma once

#include <cstdint>

#include "view/WaveformView.h"

namespace quillon {

/// What happens on a scroll bar, numbered as the system's scroll messages are.
enum class ScrollAction { LineBack, LineOn, PageBack, PageOn, ThumbSet, ThumbDragged, Start, End };

/// Values of a scroll bar. The position runs from `least` to `most`; the thumb is `page` long.
struct ScrollBarValues {
    int least = 0;
    int most = 0;
    int page = 0;
    int position = 0;
    friend bool operator==(const ScrollBarValues&, const ScrollBarValues&) = default;
};

/// The two scroll bars of the graph: which values they show of the view, and where an action on one moves it.
class ScrollBars {
  public:
    /// The amplitude bar moves the base line this many rows up or down at most.
    static constexpr int kBaseLineReach = 2000;

    /// The view must outlive this object.
    explicit ScrollBars(WaveformView& view) : m_view(view) {}

    [[nodiscard]] ScrollBarValues Time() const;
    /// Where the base line is out of the bar's reach, its place becomes the middle of the bar. In lanes the bar shows
    /// which of them are visible.
    [[nodiscard]] ScrollBarValues Amplitude();
    /// Whether the amplitude bar has somewhere to go.
    [[nodiscard]] bool CanScrollAmplitude() const;
    /// `thumb` is the position of the thumb, which counts when it was moved.
    ViewChange ScrollTime(ScrollAction action, int thumb);
    ViewChange ScrollAmplitude(ScrollAction action, int thumb);

  private:
    ViewChange ScrollLanes(ScrollAction action, int thumb);
    [[nodiscard]] std::int32_t Height() const;

    WaveformView& m_view;
    std::int64_t m_middle = 0;  ///< shift of the base line at which the amplitude bar is in its middle
};

}  // namespace quillon
