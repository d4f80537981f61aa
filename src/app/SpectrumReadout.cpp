#include "app/SpectrumReadout.h"

#include <algorithm>

#include "base/Text.h"
#include "spectrum/FrequencyScale.h"
#include "view/Readout.h"

namespace quillon {

std::u16string SpectrumReadout(const SpectrumSource& source, std::int32_t sample, std::int32_t row,
                               std::int32_t height) {
    const QL_FFT& fft = source.fft;
    if (!fft.State().ready || height < 1 || fft.Image().empty()) return {};
    // Frequency bin of the row in the stretched image.
    const std::int32_t bins =
        ShownBins(static_cast<double>(source.settings.highestFrequency), source.block.sampleRate, fft.BinCount());
    const std::int32_t bin = std::clamp((height - 1 - row) * bins / height, 0, bins - 1);
    const double hertz = bin * source.block.sampleRate / fft.Length();
    const std::u16string place = u"X:\t" + PositionText(source.block, sample, u" ", source.format) + u"\r\nF:\t" +
                                 FormatFrequency(hertz, u" ", false, source.format) + u"\r\nL:\t";
    const std::optional<ColumnBand> band = BandOf(source.axis, {sample - 1, 1});
    if (!band || band->left >= fft.ImageWidth() || !fft.IsRead(band->left)) return place + u"\r\n";
    const std::uint8_t index = fft.Image()[static_cast<std::size_t>(bin) * static_cast<std::size_t>(fft.ImageWidth()) +
                                           static_cast<std::size_t>(band->left)];
    // The end colours also stand for levels outside the scale.
    const std::u16string atEnd = index == 0 ? u"\u2264 " : index == 255 ? u"\u2265 " : u"";
    const std::u16string level = NumberText(RoundToPlaces(fft.LevelOf(index), 1), source.format.decimalSeparator);
    return place + atEnd + level + (source.settings.type == 1 ? u" %\r\n" : u" dB\r\n");
}

ValueRange SpectrumRange(const RangeRecords& ranges, std::int16_t channel) {
    if (const std::optional<ValueRange> range = ranges.Found({&channel, 1})) return *range;
    // If nothing can be read, any range will do: it allows the columns to be tried again.
    return ranges.Failure().empty() ? ValueRange{} : ValueRange{-1.0F, 1.0F};
}

}  // namespace quillon
