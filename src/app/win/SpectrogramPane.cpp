#include "app/win/SpectrogramPane.h"

#include <algorithm>

#include "app/ControlIds.h"
#include "app/SpectrumReadout.h"
#include "app/StringIds.h"
#include "view/GraphPicture.h"

namespace quillon {

SpectrogramPane::SpectrogramPane(const Document& document, WaveformView& view, Settings& settings,
                                 const FormatOptions& format, const UserServices& services, HoverCapture& hover,
                                 const ScreenDensity& density)
    : m_document(document),
      m_view(view),
      m_settings(settings),
      m_format(format),
      m_services(services),
      m_hover(hover),
      m_fft(settings.spectrum),
      m_painter(density) {}

bool SpectrogramPane::Create(HWND parent) {
    return m_picture.Create(parent, pbFFT, *this, true) && m_palette.Create(parent, pbPal, *this, false) &&
           m_scale.Create(parent, pbScaleF, *this, false) && m_levels.Create(parent, pbLevels, *this, false);
}

void SpectrogramPane::Prepare() {
    // As wide as the graph can become, so that widening the window computes only the new columns.
    m_fft.FFT_Init(std::max(GetSystemMetrics(SM_CXVIRTUALSCREEN), static_cast<int>(m_view.Axis().Width())));
    m_fft.SetPatience(kPatience);
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
    // The range is searched only when the spectrogram is visible.
    m_rangeAsked = m_settings.window.spectrogramShown && HasSamples() && !onRange(m_document.CurrentChannel());
    if (m_rangeAsked) {
        m_fft.FFT_ClearState();
        return InvalidateAll();
    }
    UseRange();
}

void SpectrogramPane::UseRange() {
    m_rangeAsked = false;
    const std::int16_t channel = m_document.CurrentChannel();
    // A channel without a range of values stays blank.
    ValueRange limits;
    if (m_settings.window.spectrogramShown) limits = SpectrumRange(m_view.AllExtremes().StoredRanges(), channel);
    m_fft.FFT_SetChannel(m_document.Block().stored.get(), m_document.File().currentBlockIndex,
                         static_cast<std::int16_t>(channel - 1), limits);
    m_scale.Invalidate();
    m_palette.Invalidate();
    m_levels.Invalidate();
}

bool SpectrogramPane::DrawMore() {
    if (!IsIncomplete()) return false;
    m_fft.FFT_ComputePending();
    m_picture.Invalidate();
    return IsIncomplete();
}

bool SpectrogramPane::IsIncomplete() const {
    return m_settings.window.spectrogramShown && HasSamples() && m_fft.IsIncomplete();
}

void SpectrogramPane::InvalidateAll() const {
    m_picture.Invalidate();
    m_scale.Invalidate();
    m_palette.Invalidate();
    m_levels.Invalidate();
}

void SpectrogramPane::Spectrogram_Draw(bool force) {
    if (!m_settings.window.spectrogramShown) return;
    if (!HasSamples()) return InvalidateAll();
    const TimeAxis& axis = m_view.Axis();
    const bool zoomed = m_fft.State().grid != axis.Grid();
    const bool moved = m_fft.State().firstColumn != axis.FirstColumn();
    const auto update = [&](bool all) { return m_fft.FFT_Update(axis.FirstColumn(), axis.Width(), axis.Grid(), all); };
    std::int32_t computed = update(force || zoomed);
    if (m_fft.HasRecovered() && !m_view.AllExtremes().StoredRanges().Failure().empty()) {
        // Samples that could not be read before are readable again, so the range covered only a part.
        ChooseChannel();
        computed = update(true);
    }
    if (computed > 0 || moved || force) m_picture.Invalidate();
}

void SpectrogramPane::SettingsChanged(const SpectrumSettings& before) {
    const SpectrumSettings& now = m_settings.spectrum;
    Prepare();
    if (now.palette != before.palette) m_fft.FFT_BuildPalette();
    if (now.window != before.window) m_fft.FFT_BuildWindow();
    if (now.order != before.order) m_fft.FFT_SetOrder(now.order);
    SpectrumSettings computed = before;
    computed.palette = now.palette;
    computed.highestFrequency = now.highestFrequency;
    // Other colours and frequencies are those of the same image.
    computed == now ? InvalidateAll() : Spectrogram_Init(true);
}

bool SpectrogramPane::OpenMenu() const {
    if (GetFocus() != m_picture.Window()) return false;
    RECT place{};
    GetWindowRect(m_picture.Window(), &place);
    onMenu({place.left, place.top});
    return true;
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

HWND SpectrogramPane::WindowOf(int id) const {
    if (id == pbPal) return m_palette.Window();
    if (id == pbScaleF) return m_scale.Window();
    return id == pbLevels ? m_levels.Window() : m_picture.Window();
}

std::int32_t SpectrogramPane::Bins() const {
    return ShownBins(static_cast<double>(m_settings.spectrum.highestFrequency), m_document.Block().sampleRate,
                     m_fft.BinCount());
}

void SpectrogramPane::PaintPicture(int id, HDC dc, const RECT&) {
    RECT client{};
    GetClientRect(WindowOf(id), &client);
    if (id == pbLevels) PaintLevels(dc, client);
    if (id == pbPal) SpectrogramView::PaintBar(dc, client, m_fft);
    if (id == pbScaleF) PaintScale(dc, client);
    if (id == pbFFT) PaintImage(dc, client);
}

void SpectrogramPane::PaintScale(HDC dc, const RECT& client) {
    if (!HasSamples()) return SpectrogramView::PaintEmptyScale(dc, client, Colors());
    const double share = static_cast<double>(Bins()) / m_fft.BinCount();
    const FrequencyScaleMarks marks = FrequencyMarks(
        static_cast<int>(client.bottom), m_document.Block().sampleRate * share, m_format, m_painter.LabelHeight());
    const auto number = static_cast<std::size_t>(m_fft.State().deviceChannel);
    const std::u16string& title = m_document.Slots()[number].title;
    // Lanes name channels by their titles.
    const std::u16string caption =
        m_view.UsesLanes() && !title.empty()
            ? title + u", " + marks.unit
            : FrequencyCaption(m_services.Text(IDS_CHANNEL), m_fft.State().deviceChannel + 1, marks.unit);
    m_painter.PaintScale(dc, client, marks, caption, Colors());
}

void SpectrogramPane::PaintLevels(HDC dc, const RECT& client) {
    if (!HasSamples()) return FillWith(dc, client, ColorOf(Colors().scaleFace));
    const std::u16string unit = m_settings.spectrum.type == 1 ? u"%" : m_services.Text(IDS_OPT_DB);
    m_painter.PaintLevels(dc, client, m_fft.LevelOf(0), m_fft.LevelOf(255), m_services.Text(IDS_LEVEL) + u", " + unit,
                          unit, m_format.decimalSeparator, Colors());
}

void SpectrogramPane::PaintMissing(HDC dc, const RECT& client, int from, int to) {
    FillWith(dc, {from, client.bottom - kMissingRows, to, client.bottom}, ColorOf(kMissingColor));
}

void SpectrogramPane::PaintImage(HDC dc, const RECT& client) {
    if (!HasSamples()) return FillWith(dc, client, ColorOf(Colors().paper));
    m_painter.PaintImage(dc, client, m_fft, Bins(), Colors());
    const int width = static_cast<int>(client.right);
    if (m_rangeAsked) PaintMissing(dc, client, 0, width);
    for (int column = 0; column < std::min(width, m_fft.IsIncomplete() ? m_fft.ImageWidth() : 0); ++column)
        if (m_fft.IsPending(column)) PaintMissing(dc, client, column, column + 1);
    for (const auto& band : m_bands) {
        if (band) PatBlt(dc, band->left, 0, band->right - band->left + 1, static_cast<int>(client.bottom), DSTINVERT);
    }
}

bool SpectrogramPane::PictureMouse(int id, UINT message, WPARAM, LPARAM lParam) {
    if (onBusy()) return message == WM_SETCURSOR && (SetCursor(LoadCursorW(nullptr, IDC_WAIT)), true);
    if (message == WM_LBUTTONDOWN || message == WM_MBUTTONDOWN || message == WM_RBUTTONDOWN) onPress();
    if (message == WM_RBUTTONUP) {
        m_hover.End();
        POINT screen{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        ClientToScreen(WindowOf(id), &screen);
        return onMenu(screen), true;
    }
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
    RECT client{};
    GetClientRect(m_picture.Window(), &client);
    onHover(sample, SpectrumReadout({m_fft, m_document.Block(), m_view.Axis(), m_format, m_settings.spectrum}, sample,
                                    y, static_cast<std::int32_t>(client.bottom)));
}

}  // namespace quillon
