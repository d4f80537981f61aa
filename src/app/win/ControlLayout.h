#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "app/MainSplitters.h"
#include "base/win/Win32.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// Places the controls of the main window, lets the user drag the splitters between them, and frames the one that has
/// the keyboard.
class ControlLayout {
  public:
    /// `placement` stores the splitter positions and must outlive this object.
    explicit ControlLayout(WindowPlacement& placement) : m_placement(placement) {}

    /// `density` of the window.
    void SetWindow(HWND window, const ScreenDensity& density);
    /// Size of the toolbars; 0 before they exist.
    void SetToolSizes(SIZE main, SIZE pages, const std::array<std::int32_t, kFilterControls>& filters);
    /// Width that the titles of lanes want, as far as the user has chosen no other; 0: there are no lanes.
    void SetTitles(std::int32_t width) { m_titles = width; }
    /// Before the other controls exist only the graph is placed, at its final position.
    void Arrange();
    /// The same in three parts, numbered from 0, for the start: moving all controls at once takes too long for one
    /// step. True for the last one.
    bool ArrangePart(int part);
    /// Whether the layout matches the current client area.
    [[nodiscard]] bool IsArranged() const;
    /// Forces a layout at the next size message, even for the same size.
    void Forget() { m_size = {}; }
    [[nodiscard]] const PixelRect& Graph() const { return m_layout.graph; }

    [[nodiscard]] bool IsDragging() const { return m_drag != Splitter::None; }
    /// Sets the shape of the pointer over a splitter; false elsewhere.
    [[nodiscard]] bool SetPointer() const;
    /// A message of the left mouse button, of a move or of a lost capture. True when a splitter has moved.
    bool OnMouse(UINT message, int x, int y);
    /// Paints the window: frames the list or graph that has the focus, in the gap around it. `strip`: colour of the
    /// titles of lanes, which the gap between them and the graph continues.
    void OnPaint(COLORREF strip) const;

  private:
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(m_window, id); }
    bool Move(int x, int y);
    void PaintFocus(HDC dc) const;
    /// Current heights and widths of the controls or, before they exist, the ones they will have.
    void MeasureControls(LayoutInput& input) const;
    void ExpectBars(LayoutInput& input) const;
    void FindPlaces();
    void PlaceControls(std::span<const ControlPlace> places) const;

    WindowPlacement& m_placement;
    HWND m_window = nullptr;
    const ScreenDensity* m_density = nullptr;
    SIZE m_mainTools{};
    SIZE m_pageTools{};
    std::array<std::int32_t, kFilterControls> m_filters{};
    MainLayout m_layout;
    SIZE m_size{};  ///< of the client area that the controls fill
    std::int32_t m_titles = 0;
    Splitter m_drag = Splitter::None;
};

}  // namespace quillon
