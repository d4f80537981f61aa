#include <algorithm>

#include "app/ControlIds.h"
#include "app/win/frmQLMain.h"
#include "base/StringIds.h"
#include "base/Text.h"

namespace quillon {

void frmQLMain::ShowSpectrogram(int) {
    m_global.settings.spectrogramShown = !m_global.settings.spectrogramShown;
    Spectrogram_Init(false);
    ArrangeControls();
    Refresh();
}

void frmQLMain::InitSpectrum() {
    // As wide as the graph can ever be, so that making it wider computes only what is new.
    m_fft.FFT_Init(std::max(GetSystemMetrics(SM_CXVIRTUALSCREEN), static_cast<int>(m_layout.graph.width)));
}

void frmQLMain::Spectrogram_Init(bool redraw) {
    if (!m_global.settings.spectrogramShown) return;
    InitSpectrum();
    if (m_document.Block().sampleCount == 0) return Spectrogram_Draw(false);
    ChooseSpectrumChannel();
    if (!redraw) return;
    Spectrogram_Draw(true);
    TellUnreadable(false);
}

void frmQLMain::ChooseSpectrumChannel() {
    InitSpectrum();
    const std::int16_t channel = m_document.CurrentChannel();
    // A channel of no range stays blank; its range is looked for only when it will be seen.
    ValueRange limits;
    if (m_global.settings.spectrogramShown) {
        // Where nothing can be read any range lets the columns be tried again.
        const auto range = m_view.Ranges().Of(m_document.Block(), channel);
        limits = range ? *range : m_view.Ranges().Failure().empty() ? ValueRange{} : ValueRange{-1.0F, 1.0F};
    }
    m_fft.FFT_SetChannel(m_document.Block().block.get(), m_document.File().currentBlockIndex,
                         static_cast<std::int16_t>(channel - 1), limits);
    m_scaleFBox.Invalidate();
    m_paletteBox.Invalidate();
}

void frmQLMain::Spectrogram_Draw(bool force) {
    if (!m_global.settings.spectrogramShown) return;
    if (m_document.Block().sampleCount == 0) {
        m_fftBox.Invalidate();
        m_scaleFBox.Invalidate();
        m_paletteBox.Invalidate();
        return;
    }
    const TimeAxis& axis = m_view.Axis();
    const bool zoomed = m_fft.State().samplesPerColumn != axis.SamplesPerPixel();
    const bool moved = m_fft.State().firstColumn != axis.FirstColumn();
    const auto update = [&](bool all) {
        return m_fft.FFT_Update(axis.FirstColumn(), axis.Width(), axis.SamplesPerPixel(), all);
    };
    std::int32_t computed = update(force || zoomed);
    if (m_fft.HasRecovered() && !m_view.Ranges().Failure().empty()) {
        // What could not be read can be again, so the range was that of a part.
        ChooseSpectrumChannel();
        computed = update(true);
    }
    if (computed > 0 || moved || force) m_fftBox.Invalidate();
}

void frmQLMain::NextPalette(int) {
    if (!m_global.settings.spectrogramShown) return;
    InitSpectrum();
    m_fft.FFT_NextPalette();
    m_paletteBox.Invalidate();
    m_fftBox.Invalidate();
}

void frmQLMain::PaintSpectrogram(int id, HDC dc, const RECT& client) {
    const bool empty = m_document.Block().sampleCount == 0;
    if (id == pbPal) {
        SpectrogramView::PaintBar(dc, client, m_fft);
    } else if (id == pbScaleF && empty) {
        SpectrogramView::PaintEmptyScale(dc, client);
    } else if (id == pbScaleF) {
        const FrequencyScaleMarks marks = FrequencyMarks(static_cast<int>(client.bottom), m_document.Block().sampleRate,
                                                         m_global.format, m_spectrogram.LabelHeight());
        m_spectrogram.PaintScale(
            dc, client, marks,
            FrequencyCaption(m_services.Text(IDS_CHANNEL), m_fft.State().deviceChannel + 1, marks.unit));
    } else if (empty) {
        FillWith(dc, client, RGB(0xFF, 0xFF, 0xFF));
    } else {
        m_spectrogram.PaintImage(dc, client, m_fft);
        // These run across both pictures.
        for (const GraphBand which : {GraphBand::Cursor, GraphBand::Play}) {
            if (const auto& band = m_graph.Band(which))
                PatBlt(dc, band->left, 0, band->right - band->left + 1, static_cast<int>(client.bottom), DSTINVERT);
        }
    }
}

std::u16string frmQLMain::SpectrumReadout(std::int32_t sample, int row) const {
    const std::int32_t height = m_layout.spectrogram.height;
    if (!m_fft.State().ready || height < 1 || m_fft.Image().empty()) return {};
    // The row's bin, as the image is stretched.
    const std::int32_t bins = m_fft.BinCount();
    const std::int32_t bin = std::clamp((height - 1 - row) * bins / height, 0, bins - 1);
    const double hertz = bin * m_document.Block().sampleRate / m_fft.Length();
    const bool linear = m_global.settings.type == 1;
    const std::u16string place = u"X:\t" + PositionText(m_document.Block(), sample, u" ", m_global.format) +
                                 u"\r\nF:\t" + FormatFrequency(hertz, u" ", false, m_global.format) + u"\r\nL:\t";
    const std::optional<ColumnBand> band = BandOf(m_view.Axis(), sample, sample);
    if (!band || band->left >= m_fft.ImageWidth() || !m_fft.IsRead(band->left)) return place + u"\r\n";
    const std::uint8_t index =
        m_fft.Image()[static_cast<std::size_t>(bin) * static_cast<std::size_t>(m_fft.ImageWidth()) +
                      static_cast<std::size_t>(band->left)];
    // The ends of the scale hold what lies beyond them too.
    const std::u16string atEnd = index == 0 ? u"\u2264 " : index == 255 ? u"\u2265 " : u"";
    const std::u16string level = NumberText(RoundToPlaces(m_fft.LevelOf(index), 1), m_global.format.decimalSeparator);
    return place + atEnd + level + (linear ? u" %\r\n" : u" dB\r\n");
}

}  // namespace quillon
