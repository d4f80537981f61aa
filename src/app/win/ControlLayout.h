#pragma once

#include "app/MainSplitters.h"
#include "base/win/Win32.h"

namespace quillon {

/// Places the controls of the main window, lets the user drag the splitters between them, and frames the one that has
/// the keyboard.
class ControlLayout {
  public:
    /// The placement holds what the user has dragged, and outlives it.
    explicit ControlLayout(WindowPlacement& placement) : m_placement(placement) {}

    void SetWindow(HWND window, HFONT font, int dpi);
    /// What the toolbars need; before there are any, none.
    void SetToolSizes(SIZE main, SIZE pages);
    /// Before the other controls exist only the graph is placed, where it is going to be.
    void Arrange();
    /// Whether the controls fill the client area as it is now.
    [[nodiscard]] bool IsArranged() const;
    /// The next size is to be arranged for, whatever it is.
    void Forget() { m_size = {}; }
    [[nodiscard]] const PixelRect& Graph() const { return m_layout.graph; }

    [[nodiscard]] bool IsDragging() const { return m_drag != Splitter::None; }
    /// Sets the shape of the pointer over a splitter; false elsewhere.
    [[nodiscard]] bool SetPointer() const;
    void Press(int x, int y);
    /// True when a splitter has moved.
    bool Move(int x, int y);
    void Release(bool released);
    /// Frames the list or graph that has the focus, in the gap around it.
    void PaintFocus(HDC dc) const;

  private:
    [[nodiscard]] HWND Control(int id) const { return GetDlgItem(m_window, id); }
    /// Heights and widths that the controls have, or, before they exist, are going to have.
    void MeasureControls(LayoutInput& input) const;
    void ExpectBars(LayoutInput& input) const;
    void PlaceControls() const;

    WindowPlacement& m_placement;
    HWND m_window = nullptr;
    HFONT m_font = nullptr;
    int m_dpi = 96;
    SIZE m_mainTools{};
    SIZE m_pageTools{};
    MainLayout m_layout;
    SIZE m_size{};  ///< of the client area that the controls fill
    Splitter m_drag = Splitter::None;
};

}  // namespace quillon
