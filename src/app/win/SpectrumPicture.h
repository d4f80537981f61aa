#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>

#include "app/SpectrumCommands.h"
#include "base/win/Win32.h"
#include "spectrum/PlotDrag.h"
#include "spectrum/SpectrumPlot.h"
#include "view/win/PictureBox.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// The plot in the window of averaged spectra, and which of its frequencies are shown: a drag shows those dragged over,
/// a double click all.
class SpectrumPicture final : private PictureOwner {
  public:
    /// Both must outlive this object.
    SpectrumPicture(const SpectrumCommands& spectra, const WaveformView& view, const ScreenDensity& density)
        : m_spectra(spectra), m_view(view), m_density(density) {}

    // To be set by the owner.
    std::function<void(std::int32_t x, std::int32_t y)> onClick;
    std::function<void(const std::u16string& readout)> onReadout;  ///< empty: nothing is under the pointer
    std::function<void(const std::exception& error)> onFailed;

    [[nodiscard]] bool Create(HWND parent, int id) { return m_picture.Create(parent, id, *this, false); }
    [[nodiscard]] HWND Window() const { return m_picture.Window(); }
    /// The spectra, how they are drawn or the size have changed: plots them anew.
    void Draw(char16_t separator);
    void Invalidate() const { m_picture.Invalidate(); }
    /// What was plotted is about to go.
    void Reset() { m_plot.reset(); }
    void ForgetBand() { m_band.reset(); }
    [[nodiscard]] const std::optional<SpectrumPlot>& Plot() const { return m_plot; }
    /// Moves the frequencies that are shown so that a peak is among them.
    void ShowPeak(const SpectralPeak& peak);
    /// Keys with Ctrl and the wheel, which change what is shown, and Esc within a drag; false for others.
    [[nodiscard]] bool Translate(const MSG& message);
    /// What is seen, in dark on white, under a line of text, to the clipboard.
    [[nodiscard]] bool Copy(const std::u16string& heading);
    /// In the font of the plot.
    [[nodiscard]] TextSize SizeOf(const std::u16string& text) const;

  private:
    void PaintPicture(int id, HDC dc, const RECT& clip) override;
    void Paint(HDC dc, const GraphColors& colors);
    bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    void PictureFailed(const std::exception& error) override { onFailed(error); }
    void ShowBand(const std::optional<FrequencyBand>& band);
    void Release(std::int32_t x, std::int32_t y);
    bool ZoomByKey(WPARAM key);
    bool ZoomByWheel(const MSG& message);

    const SpectrumCommands& m_spectra;
    const WaveformView& m_view;
    const ScreenDensity& m_density;
    PictureBox m_picture;
    char16_t m_separator = u'.';
    std::optional<SpectrumPlot> m_plot;
    std::optional<FrequencyBand> m_band;  ///< to be shown; none: all
    PlotDrag m_drag;
};

}  // namespace quillon
