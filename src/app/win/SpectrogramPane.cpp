#include "app/win/SpectrogramPane.h"

#include <algorithm>

#include "app/ControlIds.h"
#include "app/StringIds.h"
#include "base/Text.h"
#include "view/Readout.h"
#include "view/win/GDI_Utils.h"

namespace quillon {

SpectrogramPane::SpectrogramPane(const Document& document, WaveformView& view, Settings& settings,
                                 const FormatOptions& format, const UserServices& services, HoverCapture& hover)
    : m_document(document),
      m_view(view),
      m_settings(settings),
      m_format(format),
      m_services(services),
      m_hover(hover),
      m_fft(settings.spectrum) {}

bool SpectrogramPane::Create(HWND parent) {
    return m_picture.Create(parent, pbFFT, *this, false) && m_palette.Create(parent, pbPal, *this, false) &&
           m_scale.Create(parent, pbScaleF, *this, false);
}

void SpectrogramPane::Prepare() {
    // As wide as the graph can become, so that widening the window computes only the new columns.
    m_fft.FFT_Init(std::max(GetSystemMetrics(SM_CXVIRTUALSCREEN), static_cast<int>(m_view.Axis().Width())));
}

void SpectrogramPane::Spectrogram_Init(bool redraw) {
    if (!m_settings.window.spectrogramShown) return;
    Prepare();
    if (!HasSamples()) return Spectrogram_Draw(false);
    ChooseChannel();
    if (redraw) Spectrogram_Draw(true);
}

void SpectrogramPane::ChooseChannel() {
    Prepare();
    const std::int16_t channel = m_document.CurrentChannel();
    // A channel without a value range stays blank; the range is computed only when the spectrogram is visible.
    ValueRange limits;
    if (m_settings.window.spectrogramShown) {
        // If nothing can be read, any range will do: it allows the columns to be tried again.
        const auto range = m_view.Ranges().Of(m_document.Block(), channel);
        limits = range ? *range : m_view.Ranges().Failure().empty() ? ValueRange{} : ValueRange{-1.0F, 1.0F};
    }
    m_fft.FFT_SetChannel(m_document.Block().block.get(), m_document.File().currentBlockIndex,
                         static_cast<std::int16_t>(channel - 1), limits);
    m_scale.Invalidate();
    m_palette.Invalidate();
}

void SpectrogramPane::InvalidateAll() const {
    m_picture.Invalidate();
    m_scale.Invalidate();
    m_palette.Invalidate();
}

void SpectrogramPane::Spectrogram_Draw(bool force) {
    if (!m_settings.window.spectrogramShown) return;
    if (!HasSamples()) return InvalidateAll();
    const TimeAxis& axis = m_view.Axis();
    const bool zoomed = m_fft.State().samplesPerColumn != axis.SamplesPerPixel();
    const bool moved = m_fft.State().firstColumn != axis.FirstColumn();
    const auto update = [&](bool all) {
        return m_fft.FFT_Update(axis.FirstColumn(), axis.Width(), axis.SamplesPerPixel(), all);
    };
    std::int32_t computed = update(force || zoomed);
    if (m_fft.HasRecovered() && !m_view.Ranges().Failure().empty()) {
        // Samples that could not be read before are readable again, so the range covered only a part.
        ChooseChannel();
        computed = update(true);
    }
    if (computed > 0 || moved || force) m_picture.Invalidate();
}

void SpectrogramPane::NextPalette() {
    if (!m_settings.window.spectrogramShown) return;
    Prepare();
    m_fft.FFT_NextPalette();
    m_palette.Invalidate();
    m_picture.Invalidate();
}

std::string SpectrogramPane::Failure() const {
    return m_settings.window.spectrogramShown && HasSamples() ? m_fft.ReadFailure() : std::string();
}

void SpectrogramPane::ShowBand(CommonBand which, const std::optional<ColumnBand>& band) {
    std::optional<ColumnBand>& shown = m_bands[static_cast<std::size_t>(which)];
    if (shown == band) return;
    for (const auto& part : {shown, band}) {
        if (!part || m_picture.Window() == nullptr) continue;
        RECT columns{};
        GetClientRect(m_picture.Window(), &columns);
        columns.left = part->left;
        columns.right = part->right + 1;
        InvalidateRect(m_picture.Window(), &columns, FALSE);
    }
    shown = band;
}

void SpectrogramPane::PaintPicture(int id, HDC dc, const RECT&) {
    RECT client{};
    GetClientRect(id == pbFFT ? m_picture.Window() : id == pbPal ? m_palette.Window() : m_scale.Window(), &client);
    if (id == pbPal) SpectrogramView::PaintBar(dc, client, m_fft);
    if (id == pbScaleF) PaintScale(dc, client);
    if (id == pbFFT) PaintImage(dc, client);
}

void SpectrogramPane::PaintScale(HDC dc, const RECT& client) {
    if (!HasSamples()) return SpectrogramView::PaintEmptyScale(dc, client);
    const FrequencyScaleMarks marks = FrequencyMarks(static_cast<int>(client.bottom), m_document.Block().sampleRate,
                                                     m_format, m_painter.LabelHeight());
    m_painter.PaintScale(dc, client, marks,
                         FrequencyCaption(m_services.Text(IDS_CHANNEL), m_fft.State().deviceChannel + 1, marks.unit));
}

void SpectrogramPane::PaintImage(HDC dc, const RECT& client) {
    if (!HasSamples()) return FillWith(dc, client, RGB(0xFF, 0xFF, 0xFF));
    m_painter.PaintImage(dc, client, m_fft);
    for (const auto& band : m_bands) {
        if (band) PatBlt(dc, band->left, 0, band->right - band->left + 1, static_cast<int>(client.bottom), DSTINVERT);
    }
}

bool SpectrogramPane::PictureMouse(int id, UINT message, WPARAM, LPARAM lParam) {
    if (onBusy()) return message == WM_SETCURSOR && (SetCursor(LoadCursorW(nullptr, IDC_WAIT)), true);
    if (message == WM_LBUTTONDOWN || message == WM_MBUTTONDOWN || message == WM_RBUTTONDOWN) onPress();
    if (id == pbPal && (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK)) return NextPalette(), true;
    if (id != pbFFT) return message == WM_LBUTTONDOWN;
    if (message == WM_SETCURSOR) return SetCursor(onPointer()), true;
    if (message == WM_CANCELMODE) m_hover.End();
    if (message == WM_CAPTURECHANGED) m_hover.Lose(m_picture.Window());
    if (message != WM_MOUSEMOVE || !HasSamples()) return false;
    Hover(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    return true;
}

void SpectrogramPane::HoverAgain() {
    if (m_hover.Picture() == nullptr || m_hover.Picture() != m_picture.Window() || !HasSamples()) return;
    Hover(static_cast<int>(m_hover.Point().x), static_cast<int>(m_hover.Point().y));
}

void SpectrogramPane::Hover(int x, int y) {
    if (!m_hover.StaysIn(m_picture.Window(), onPointer(), {x, y})) return;
    const std::int32_t sample = SampleUnder(m_view.Axis(), x);
    onHover(sample, Readout(sample, y));
}

std::u16string SpectrogramPane::Readout(std::int32_t sample, int row) const {
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    const auto height = static_cast<std::int32_t>(client.bottom);
    if (!m_fft.State().ready || height < 1 || m_fft.Image().empty()) return {};
    // Frequency bin of the row in the stretched image.
    const std::int32_t bins = m_fft.BinCount();
    const std::int32_t bin = std::clamp((height - 1 - row) * bins / height, 0, bins - 1);
    const double hertz = bin * m_document.Block().sampleRate / m_fft.Length();
    const bool linear = m_settings.spectrum.type == 1;
    const std::u16string place = u"X:\t" + PositionText(m_document.Block(), sample, u" ", m_format) + u"\r\nF:\t" +
                                 FormatFrequency(hertz, u" ", false, m_format) + u"\r\nL:\t";
    const std::optional<ColumnBand> band = BandOf(m_view.Axis(), {sample - 1, 1});
    if (!band || band->left >= m_fft.ImageWidth() || !m_fft.IsRead(band->left)) return place + u"\r\n";
    const std::uint8_t index =
        m_fft.Image()[static_cast<std::size_t>(bin) * static_cast<std::size_t>(m_fft.ImageWidth()) +
                      static_cast<std::size_t>(band->left)];
    // The end colours also stand for levels outside the scale.
    const std::u16string atEnd = index == 0 ? u"\u2264 " : index == 255 ? u"\u2265 " : u"";
    const std::u16string level = NumberText(RoundToPlaces(m_fft.LevelOf(index), 1), m_format.decimalSeparator);
    return place + atEnd + level + (linear ? u" %\r\n" : u" dB\r\n");
}

}  // namespace quillon
