#pragma once

#include <functional>

#include "app/WindowPlacement.h"
#include "view/WaveformView.h"

namespace quillon {

/// The commands that choose how the graph is drawn, which is remembered between runs.
class LookCommands {
  public:
    /// Both must outlive this object.
    LookCommands(WaveformView& view, WindowPlacement& remembered) : m_view(view), m_remembered(remembered) {}

    // To be set by the owner.
    std::function<void()> onChange;  ///< everything has to be drawn anew

    /// Takes what was remembered; at the start.
    void Restore();
    void ToggleDark();
    /// In pixels at 96 dpi, 1 to kMostLineWidth.
    void SetLineWidth(std::int32_t width);

  private:
    void Change();

    WaveformView& m_view;
    WindowPlacement& m_remembered;
};

/// Gives a view other colours as long as it lives, for a picture of it.
class LookScope {
  public:
    LookScope(WaveformView& view, const GraphColors& colors) : m_view(view), m_before(view.Look()) {
        m_view.SetLook({&colors, m_before.lineWidth});
    }
    ~LookScope() { m_view.SetLook(m_before); }
    LookScope(const LookScope&) = delete;
    LookScope& operator=(const LookScope&) = delete;

  private:
    WaveformView& m_view;
    GraphLook m_before;
};

}  // namespace quillon
