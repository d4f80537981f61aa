#include "dialogs/OptionsModel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "format/NumberText.h"
#include "spectrum/QL_FFT.h"
#include "view/CursorPicture.h"
#include "view/QL_ChUtils.h"

namespace quillon {

namespace {

static_assert(kLeastFftOrder == QL_FFT::kLeastOrder && kLeastFftOrder + kFftSizes - 1 == QL_FFT::kMostOrder);

/// Position of a stored number among that many; -1 where it is none of them.
int PositionOf(std::int32_t value, int count) {
    return value >= 0 && value < count ? value : -1;
}

/// Applies a choice; list positions map to the numbers from `first` on. Returns whether the value changes.
template <typename Number>
bool TakeChoice(Number& value, int shown, int chosen, int first = 0) {
    if (chosen < 0 || chosen == shown) return false;
    value = static_cast<Number>(first + chosen);
    return true;
}

void TakeFlag(std::int16_t& value, bool ticked) {
    if ((value != 0) != ticked) value = ticked ? 1 : 0;
}

/// Applies a typed number if it was edited and is valid.
template <typename IsAcceptable>
bool TakeNumber(float& value, const std::u16string& shown, const std::u16string& typed, char16_t separator,
                IsAcceptable acceptable) {
    if (typed == shown) return false;
    const std::optional<float> number = SingleFromText(typed, separator);
    if (!number || !acceptable(*number) || *number == value) return false;
    value = *number;
    return true;
}

void ApplyGeneral(const OptionEntries& shown, const OptionEntries& entries, DisplaySettings& display) {
    TakeChoice(display.timeFormat, shown.timeFormat, entries.timeFormat);
    TakeChoice(display.timeIndex, shown.timeIndex, entries.timeIndex);
    TakeChoice(display.scaleFormat, shown.scaleFormat, entries.scaleFormat);
    display.unitScaling = entries.unitScaling;
    TakeChoice(display.digitsType, shown.digitsType, entries.digitsType);
    TakeChoice(display.digitsCount, shown.digitsCount, entries.digitsCount);
    TakeChoice(display.gridColor, shown.gridColor, entries.gridColor);
    TakeChoice(display.gridStyle, shown.gridStyle, entries.gridStyle);
    TakeChoice(display.waveformCursor, shown.waveformCursor, entries.waveformCursor);
}

OptionChanges ApplySpectrum(const OptionEntries& shown, const OptionEntries& entries, char16_t separator,
                            SpectrumSettings& spectrum) {
    OptionChanges changes;
    bool changed = TakeChoice(spectrum.type, shown.spectrumType, entries.spectrumType);
    changed |= TakeNumber(spectrum.amplitudeScale, shown.amplitudeScale, entries.amplitudeScale, separator,
                          [](float percent) { return percent > 0.0F; });
    changed |= TakeNumber(spectrum.decibelRange, shown.decibelRange, entries.decibelRange, separator,
                          [](float range) { return range >= QL_FFT::kLeastRange && range <= QL_FFT::kMostRange; });
    changes.buildPalette = TakeChoice(spectrum.palette, shown.palette, entries.palette);
    changes.buildWindow = TakeChoice(spectrum.window, shown.window, entries.window);
    changes.setOrder = TakeChoice(spectrum.order, shown.fftSize, entries.fftSize, kLeastFftOrder);
    changes.initSpectrogram = changed || changes.buildPalette || changes.buildWindow || changes.setOrder;
    return changes;
}

void ApplyExport(const OptionEntries& shown, const OptionEntries& entries, TextExportSettings& text) {
    TakeFlag(text.xColumn, entries.xColumn);
    TakeChoice(text.xFormat, shown.xFormat, entries.xFormat);
    TakeFlag(text.rowHead, entries.rowHead);
    TakeFlag(text.rowSize, entries.rowSize);
    TakeFlag(text.rowRate, entries.rowRate);
    TakeFlag(text.rowStep, entries.rowStep);
    TakeFlag(text.asShown, entries.asShown);
    TakeChoice(text.fileType, shown.fileType, entries.fileType);
    TakeChoice(text.channels, shown.channels, entries.channels);
    text.fastFile = entries.fastFile;
}

}  // namespace

OptionEntries ShowOptions(const OptionValues& values, char16_t separator) {
    const DisplaySettings& display = values.display;
    const SpectrumSettings& spectrum = values.spectrum;
    const TextExportSettings& text = values.text;
    OptionEntries entries;
    entries.timeFormat = PositionOf(display.timeFormat, 3);
    entries.timeIndex = PositionOf(display.timeIndex, kTimeUnits);
    entries.scaleFormat = PositionOf(display.scaleFormat, 2);
    entries.unitScaling = display.unitScaling;
    entries.digitsType = PositionOf(display.digitsType, 2);
    entries.digitsCount = PositionOf(display.digitsCount, kDigitCounts);
    entries.gridColor = std::abs(static_cast<int>(display.gridColor)) % kTraceColors;
    entries.gridStyle = PositionOf(display.gridStyle, 3);
    entries.waveformCursor = std::abs(static_cast<int>(display.waveformCursor)) % kCursorStyles;
    entries.palette = PositionOf(spectrum.palette, 3);
    entries.spectrumType = PositionOf(spectrum.type, 2);
    entries.amplitudeScale = SingleNumberText(static_cast<double>(spectrum.amplitudeScale), separator);
    entries.decibelRange = SingleNumberText(static_cast<double>(spectrum.decibelRange), separator);
    entries.window = PositionOf(spectrum.window, 4);
    const bool hasSize = spectrum.order >= kLeastFftOrder && spectrum.order < kLeastFftOrder + kFftSizes;
    entries.fftSize = hasSize ? spectrum.order - kLeastFftOrder : -1;
    entries.xColumn = text.xColumn != 0;
    entries.xFormat = PositionOf(text.xFormat, 2);
    entries.rowHead = text.rowHead != 0;
    entries.rowSize = text.rowSize != 0;
    entries.rowRate = text.rowRate != 0;
    entries.rowStep = text.rowStep != 0;
    entries.asShown = text.asShown != 0;
    entries.fileType = PositionOf(text.fileType, 2);
    entries.channels = PositionOf(text.channels, 2);
    entries.fastFile = text.fastFile;
    return entries;
}

OptionChanges ApplyOptions(const OptionEntries& entries, char16_t separator, OptionValues values) {
    const OptionEntries shown = ShowOptions(values, separator);
    ApplyGeneral(shown, entries, values.display);
    const OptionChanges changes = ApplySpectrum(shown, entries, separator, values.spectrum);
    ApplyExport(shown, entries, values.text);
    return changes;
}

std::u16string BinWidthText(double sampleRate, int position, const FormatOptions& format) {
    if (!(sampleRate > 0.0) || position < 0 || position >= kFftSizes) return {};
    const double width = sampleRate / FftSize(position);
    // Three decimals as for other frequencies, more where a small width needs them for three significant digits.
    const int places = std::max(3, 2 - DecimalExponent(width));
    return NumberText(RoundToPlaces(width, places), format.decimalSeparator) + u" Hz";
}

}  // namespace quillon
