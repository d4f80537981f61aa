#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/Settings.h"
#include "app/win/HoverCapture.h"
#include "data/Document.h"
#include "data/UserServices.h"
#include "spectrum/QL_FFT.h"
#include "spectrum/win/SpectrogramView.h"
#include "view/WaveformView.h"
#include "view/win/PictureBox.h"

namespace quillon {

/// Bands that run across graph and spectrogram.
enum class CommonBand { Cursor, Play, Count };

/// The spectrogram of the current channel below the graph, column for column, with its palette bar and frequency scale.
/// Nothing is computed while it is not shown.
class SpectrogramPane final : private PictureOwner {
  public:
    /// All outlive it; `settings` remembers the palette.
    SpectrogramPane(const Document& document, WaveformView& view, Settings& settings, const FormatOptions& format,
                    const UserServices& services, HoverCapture& hover);

    // To be set by the owner.
    std::function<void(std::int32_t sample, const std::u16string& text)> onHover;  ///< a readout
    std::function<bool()> onBusy;        ///< whether the mouse goes nowhere now
    std::function<HCURSOR()> onPointer;  ///< the shape of the pointer
    std::function<void()> onPress;       ///< the keyboard goes to the graph
    std::function<void(const std::exception& error)> onFailed;

    [[nodiscard]] bool Create(HWND parent);
    [[nodiscard]] HWND Picture() const { return m_picture.Window(); }
    [[nodiscard]] HWND Scale() const { return m_scale.Window(); }

    void BuildPalette() { m_fft.FFT_BuildPalette(); }
    void BuildWindow() { m_fft.FFT_BuildWindow(); }
    void SetOrder(std::int32_t order) { m_fft.FFT_SetOrder(order); }
    /// Prepares for the settings and the screen.
    void Prepare();
    /// Takes the current channel, and draws it anew where asked to.
    void Spectrogram_Init(bool redraw);
    /// Brings the picture up to date; `force` computes every column.
    void Spectrogram_Draw(bool force);
    /// The current channel is another one.
    void ChooseChannel();
    void NextPalette();
    /// The block goes.
    void LeaveBlock() { m_fft.FFT_ClearState(); }
    void ShowBand(CommonBand which, const std::optional<ColumnBand>& band);
    /// The view has moved under the pointer.
    void HoverAgain();
    /// Why some of the columns could not be computed; empty when all could or the picture is not shown.
    [[nodiscard]] std::string Failure() const;

  private:
    void PaintPicture(int id, HDC dc, const RECT& clip) override;
    bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    void PictureFailed(const std::exception& error) override { onFailed(error); }
    void PaintImage(HDC dc, const RECT& client);
    void PaintScale(HDC dc, const RECT& client);
    void Hover(int x, int y);
    void InvalidateAll() const;
    /// Time of a sample, frequency of a row of the picture and the level there. What is not in the picture or could not
    /// be read has no level.
    [[nodiscard]] std::u16string Readout(std::int32_t sample, int row) const;
    [[nodiscard]] bool HasSamples() const { return m_document.Block().sampleCount > 0; }

    const Document& m_document;
    WaveformView& m_view;
    Settings& m_settings;
    const FormatOptions& m_format;
    const UserServices& m_services;
    HoverCapture& m_hover;
    PictureBox m_picture;
    PictureBox m_palette;
    PictureBox m_scale;
    QL_FFT m_fft;
    SpectrogramView m_painter;
    std::array<std::optional<ColumnBand>, static_cast<std::size_t>(CommonBand::Count)> m_bands;
};

}  // namespace quillon
