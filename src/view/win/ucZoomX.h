#pragma once

#include <string>

#include "view/win/PictureBox.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// Events of the zoom control.
class ZoomXEvents {
  public:
    virtual ~ZoomXEvents() = default;
    /// 0: the minus side (zoom out), 1: the plus side (zoom in).
    virtual void ZoomDown(int index) = 0;
    /// The caption was pressed: request to show the list of zooms.
    virtual void ZoomButtonDown() = 0;
    /// An event handler threw this exception.
    virtual void ZoomFailed(const std::exception& error) = 0;
};

/// The X zoom beside the time scale: minus, the present zoom, plus.
class ucZoomX final : public PictureOwner {
  public:
    /// `density` must outlive this object.
    explicit ucZoomX(const ScreenDensity& density) : m_density(density) {}
    [[nodiscard]] bool Create(HWND parent, int id, ZoomXEvents& events);
    [[nodiscard]] HWND Window() const { return m_box.Window(); }
    /// "1:1" at first.
    void SetCaption(const std::u16string& caption);

    void PaintPicture(int id, HDC dc, const RECT& clip) override;
    bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    void PictureFailed(const std::exception& error) override { m_events->ZoomFailed(error); }

  private:
    struct Parts {
        RECT minus, caption, plus;
    };
    [[nodiscard]] Parts Split() const;

    const ScreenDensity& m_density;
    PictureBox m_box;
    ZoomXEvents* m_events = nullptr;
    std::u16string m_caption = u"1:1";
};

}  // namespace quillon
