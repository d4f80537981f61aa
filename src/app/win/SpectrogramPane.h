#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/Settings.h"
#include "app/win/CommonBand.h"
#include "app/win/HoverCapture.h"
#include "data/Document.h"
#include "data/UserServices.h"
#include "spectrum/QL_FFT.h"
#include "spectrum/win/SpectrogramView.h"
#include "view/WaveformView.h"
#include "view/win/PictureBox.h"

namespace quillon {

/// The spectrogram of the current channel below the graph, column for column, with its palette bar and frequency scale.
/// Nothing is computed while it is not shown.
class SpectrogramPane final : private PictureOwner {
  public:
    /// All arguments must outlive this object; the palette is stored in `settings`.
    SpectrogramPane(const Document& document, WaveformView& view, Settings& settings, const FormatOptions& format,
                    const UserServices& services, HoverCapture& hover, const ScreenDensity& density);

    // To be set by the owner.
    std::function<void(std::int32_t sample, const std::u16string& text)> onHover;  ///< a readout
    std::function<bool()> onBusy;        ///< whether mouse input is ignored now (a command runs)
    std::function<HCURSOR()> onPointer;  ///< the shape of the pointer
    std::function<void()> onPress;       ///< request to focus the graph
    /// Asks for the range of a channel (from 1) over the whole block; true when it is recorded in the view's ranges.
    /// Else UseRange has to be called once it is.
    std::function<bool(std::int16_t channel)> onRange;
    std::function<void(const std::exception& error)> onFailed;
    std::function<void(POINT screen)> onMenu;  ///< request for the menu

    [[nodiscard]] bool Create(HWND parent);
    [[nodiscard]] HWND Picture() const { return m_picture.Window(); }
    [[nodiscard]] HWND Palette() const { return m_palette.Window(); }
    [[nodiscard]] HWND Scale() const { return m_scale.Window(); }
    [[nodiscard]] HWND Levels() const { return m_levels.Window(); }

    void BuildPalette() { m_fft.FFT_BuildPalette(); }
    void BuildWindow() { m_fft.FFT_BuildWindow(); }
    void SetOrder(std::int32_t order) { m_fft.FFT_SetOrder(order); }
    /// The settings were these before: rebuilds what differs, and draws.
    void SettingsChanged(const SpectrumSettings& before);
    /// Requests the menu if the picture has the keyboard; else false.
    bool OpenMenu() const;
    /// Adapts to changed settings or screen.
    void Prepare();
    /// Switches to the current channel, and redraws on request.
    void Spectrogram_Init(bool redraw);
    /// Updates the image; `force` recomputes every column.
    void Spectrogram_Draw(bool force);
    /// The current channel has changed.
    void ChooseChannel();
    /// Whether the picture is blank until the range is recorded that onRange was asked for.
    [[nodiscard]] bool IsRangeAsked() const { return m_rangeAsked; }
    /// The range that onRange asked for is recorded.
    void UseRange();
    /// Computes some of the columns that are missing; false when none is.
    bool DrawMore();
    /// Whether columns are missing that DrawMore can compute, and the share of those that are there, 0 to 1.
    [[nodiscard]] bool IsIncomplete() const;
    [[nodiscard]] double DrawnShare() const { return m_fft.ComputedShare(); }
    void NextPalette();
    void InvalidateAll() const;
    /// The block is about to be closed.
    void LeaveBlock() { m_fft.FFT_ClearState(); }
    void ShowBand(CommonBand which, const std::optional<ColumnBand>& band);
    /// The view has scrolled under a resting pointer: updates the readout.
    void HoverAgain();
    /// Reason why some columns could not be computed; empty when all could or the spectrogram is hidden.
    [[nodiscard]] std::string Failure() const;

  private:
    void PaintPicture(int id, HDC dc, const RECT& clip) override;
    bool PictureMouse(int id, UINT message, WPARAM wParam, LPARAM lParam) override;
    void PictureFailed(const std::exception& error) override { onFailed(error); }
    void PaintImage(HDC dc, const RECT& client);
    void PaintScale(HDC dc, const RECT& client);
    void PaintLevels(HDC dc, const RECT& client);
    [[nodiscard]] HWND WindowOf(int id) const;
    /// Bins of the image that are shown.
    [[nodiscard]] std::int32_t Bins() const;
    void Hover(int x, int y);
    /// The line that says that columns from .. to-1 are missing.
    static void PaintMissing(HDC dc, const RECT& client, int from, int to);
    [[nodiscard]] const GraphColors& Colors() const { return *m_view.Look().colors; }
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
    PictureBox m_levels;
    QL_FFT m_fft;
    bool m_rangeAsked = false;  ///< the channel's range is not known yet
    SpectrogramView m_painter;
    std::array<std::optional<ColumnBand>, static_cast<std::size_t>(CommonBand::Count)> m_bands;
};

}  // namespace quillon
