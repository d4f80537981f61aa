#pragma once

#include <map>

#include "base/Density.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

/// How dense the pixels of the monitor are that a window is on, and what depends on it. Its owner is the window, which
/// changes it when the system tells that another monitor shows it; what it shows asks here each time it is drawn.
class ScreenDensity {
  public:
    explicit ScreenDensity(int dpi = ScreenDpi()) : m_dpi(dpi) {}

    void Set(int dpi) { m_dpi = dpi; }
    /// Pixels per inch.
    [[nodiscard]] int Dpi() const { return m_dpi; }
    /// Pixels of a length at 96 per inch.
    [[nodiscard]] int Scaled(int pixels) const { return ScaledTo(m_dpi, pixels); }
    /// Of the width of a line at 96 per inch, which is never 0.
    [[nodiscard]] int Line(int pixels = 1) const { return LineAt(m_dpi, pixels); }
    /// See GetSystemMetrics.
    [[nodiscard]] int Metric(int index) const { return MetricAt(m_dpi, index); }
    /// That of scales and controls. Controls only borrow it: fonts of all densities there were last as long as this.
    [[nodiscard]] HFONT Font() const { return FontOf(m_dpi).upright.Get(); }
    /// The same for text that runs upwards.
    [[nodiscard]] HFONT VerticalFont() const { return FontOf(m_dpi).vertical.Get(); }

  private:
    struct Fonts {
        GdiFont upright;
        GdiFont vertical;
    };
    [[nodiscard]] const Fonts& FontOf(int dpi) const;

    int m_dpi;
    mutable std::map<int, Fonts> m_fonts;  ///< by density
};

}  // namespace quillon
