#pragma once

#include <string>

#include "spectrum/FrequencyScale.h"
#include "spectrum/QL_FFT.h"
#include "view/GraphColors.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// Paints the pictures of the spectrogram.
class SpectrogramView {
  public:
    /// `density` must outlive this object.
    explicit SpectrogramView(const ScreenDensity& density) : m_density(density) {}

    /// Rows that a label of the scale needs.
    [[nodiscard]] int LabelHeight() const;
    /// The lowest bins of the image, one spectrum per pixel column, 0 Hz at the bottom; paper without a spectrum.
    void PaintImage(HDC dc, const RECT& client, const QL_FFT& fft, std::int32_t bins, const GraphColors& colors) const;
    /// The ramp of the colours, the strongest at the top.
    static void PaintBar(HDC dc, const RECT& client, const QL_FFT& fft);
    /// The figures at the right of the ramp and their caption along the right edge; of the caption only
    /// the unit where the height is too small.
    void PaintLevels(HDC dc, const RECT& client, double low, double high, const std::u16string& caption,
                     const std::u16string& unit, char16_t separator, const GraphColors& colors) const;
    /// Ticks with their frequencies and the caption along the left edge.
    void PaintScale(HDC dc, const RECT& client, const FrequencyScaleMarks& marks, const std::u16string& caption,
                    const GraphColors& colors) const;
    /// What the scale shows without a block: its line alone.
    static void PaintEmptyScale(HDC dc, const RECT& client, const GraphColors& colors);

  private:
    const ScreenDensity& m_density;
};

}  // namespace quillon
