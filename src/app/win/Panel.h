#pragma once

#include <cstdint>
#include <string>

#include "app/Announcer.h"
#include "view/win/PictureBox.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// A panel that only displays the text it is given: lines separated by CR LF, cells by tabs. Lines of cells that do not
/// fit in one column are set in a smaller font and in several columns as far as none is clipped; the wheel scrolls
/// through the rest. Other text is wrapped.
class Panel final : public PictureOwner {
  public:
    /// `density` must outlive this object.
    explicit Panel(const ScreenDensity& density) : m_density(density) {}

    [[nodiscard]] bool Create(HWND parent, int id);
    [[nodiscard]] HWND Window() const { return m_box.Window(); }
    [[nodiscard]] const std::u16string& Text() const { return m_text; }
    /// Shown by the next Refresh.
    void Text(const std::u16string& text);
    /// From now on the window's name, for programs that read the screen aloud, is this one with the text behind it, and
    /// they are told when that changes.
    void AnnounceBy(const TimerFactory& makeTimer, const std::u16string& name);
    /// Kept for callers of the family's interface; the program itself does not use it.
    void FontBold(bool bold) { m_bold = bold; }
    void Refresh() const { m_box.Invalidate(); }

    void PaintPicture(int id, HDC dc, const RECT& clip) override;
    bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    bool PictureKey(WPARAM key) override;
    void PictureFailed(const std::exception&) override {}

  private:
    void PaintTable(HDC dc, const RECT& place);

    const ScreenDensity& m_density;
    PictureBox m_box;
    std::u16string m_text;
    Announcer m_announcer;
    bool m_bold = false;
    std::int32_t m_first = 0;  ///< first visible line
    std::int32_t m_page = 1;   ///< lines that were seen last, less one
    int m_wheelRest = 0;       ///< wheel movement of less than one line
};

}  // namespace quillon
