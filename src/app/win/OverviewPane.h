#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <vector>

#include "app/WindowPlacement.h"
#include "data/Document.h"
#include "format/QL_Format.h"
#include "view/OverviewColumns.h"
#include "view/OverviewPicture.h"
#include "view/OverviewWindow.h"
#include "view/win/GDI_Utils.h"
#include "view/win/PictureBox.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// The whole block in a strip under the graph, column below column, with the visible part as a window that the mouse
/// moves. Left of it the block's start and end. It holds what is known of the block, and reads nothing while it paints.
class OverviewPane final : private PictureOwner {
  public:
    /// All arguments must outlive this object.
    OverviewPane(const Document& document, WaveformView& view, const WindowPlacement& placement,
                 const FormatOptions& format, const ScreenDensity& density);

    // To be set by the owner.
    std::function<void(const ViewChange& change)> onChange;  ///< the mouse has changed the view
    std::function<bool()> onBusy;                            ///< whether mouse input is ignored now (a command runs)
    std::function<void()> onPress;                           ///< request to focus the graph
    std::function<void()> onMore;                            ///< ReadMore has to be called until it returns false
    std::function<void(const std::exception& error)> onFailed;

    [[nodiscard]] bool Create(HWND parent);
    [[nodiscard]] HWND Window() const { return m_picture.Window(); }
    /// Shows the view, the channels and what is known of them as they are now.
    void Refresh();
    void DensityChanged();
    /// More of the block may be known.
    void Update();
    bool ReadMore();
    [[nodiscard]] double ReadShare() const { return m_columns.ReadShare(); }
    /// The codes of the block have changed.
    void Rescaled() { m_columns.Forget(); }
    /// The block is about to be closed.
    void LeaveBlock();
    [[nodiscard]] bool HasGesture() const { return m_window.IsDragging(); }

  private:
    void PaintPicture(int id, HDC dc, const RECT& clip) override;
    bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    void PictureFailed(const std::exception& error) override { onFailed(error); }
    void PaintTexts(HDC dc, const RECT& margin) const;
    void Trace(std::int32_t height);
    void SetPointer() const;
    void EndGesture();
    [[nodiscard]] bool IsSeen() const;
    [[nodiscard]] StripColors Strip() const { return StripOf(*m_view.Look().colors); }
    [[nodiscard]] bool HasSamples() const { return m_document.Block().sampleCount > 0; }
    [[nodiscard]] std::int32_t MarginWidth() const;
    [[nodiscard]] std::vector<std::int16_t> ShownSignals() const;

    const Document& m_document;
    WaveformView& m_view;
    const WindowPlacement& m_placement;
    const FormatOptions& m_format;
    const ScreenDensity& m_density;
    PictureBox m_picture;
    OverviewColumns m_columns;
    OverviewWindow m_window;
    OverviewPicture m_traces;
    std::vector<std::int16_t> m_signals;  ///< that the traces are of
    bool m_traced = false;                ///< the traces are those of the columns
};

}  // namespace quillon
