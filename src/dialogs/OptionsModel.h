#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "export/TextExportSettings.h"
#include "format/QL_Format.h"
#include "spectrum/SpectrumSettings.h"
#include "view/DisplaySettings.h"

/// Converts between the settings and the entries of the options dialog, independent of the window.
namespace quillon {

/// The settings that the dialog edits.
struct OptionValues {
    DisplaySettings& display;
    TextExportSettings& text;
    SpectrumSettings& spectrum;
};

/// What the dialog's controls hold. Option buttons and lists by position from 0, -1 where none is chosen.
struct OptionEntries {
    int timeFormat = -1;
    int timeIndex = -1;
    int scaleFormat = -1;
    bool unitScaling = false;
    int digitsType = -1;
    int digitsCount = -1;
    int gridColor = -1;
    int gridStyle = -1;
    int waveformCursor = -1;
    int palette = -1;
    int spectrumType = -1;
    std::u16string amplitudeScale;  ///< percent, as typed
    std::u16string decibelRange;    ///< dB, as typed
    int window = -1;
    int fftSize = -1;
    bool xColumn = false;
    int xFormat = -1;
    bool rowHead = false;
    bool rowSize = false;
    bool rowRate = false;
    bool rowStep = false;
    bool asShown = false;
    int fileType = -1;
    int channels = -1;
    std::u16string fastFile;
};

/// Parts of the spectrogram to rebuild, in this order, after the values are stored.
struct OptionChanges {
    bool buildPalette = false;     ///< FFT_BuildPalette
    bool buildWindow = false;      ///< FFT_BuildWindow
    bool setOrder = false;         ///< FFT_SetOrder with the stored order
    bool initSpectrogram = false;  ///< Spectrogram_Init with redraw, after any change of the spectrum's settings
    friend bool operator==(const OptionChanges&, const OptionChanges&) = default;
};

inline constexpr int kTimeUnits = 6;
inline constexpr int kDigitCounts = 10;  ///< 0 is automatic
inline constexpr std::int32_t kLeastFftOrder = 5;
inline constexpr int kFftSizes = 7;
inline constexpr std::array<std::u16string_view, 9> kAmplitudeScales{u"10",  u"20",  u"50",  u"80",  u"100",
                                                                     u"150", u"200", u"500", u"1000"};
inline constexpr std::array<std::u16string_view, 5> kDecibelRanges{u"30", u"60", u"90", u"120", u"160"};

/// The content of the controls for the settings.
[[nodiscard]] OptionEntries ShowOptions(const OptionValues& values, char16_t separator);

/// Applies the entries to the settings that were shown. An entry that the user left as it was shown keeps its value,
/// also one that the control cannot show; so does a number that cannot be read or lies outside its limits.
OptionChanges ApplyOptions(const OptionEntries& entries, char16_t separator, OptionValues values);

/// Number of samples of a transform.
[[nodiscard]] constexpr std::int32_t FftSize(int position) {
    return 1 << (kLeastFftOrder + position);
}

/// Distance between the frequencies of a transform of the size at that position; empty without a position or, with a
/// rate of 0, without a block.
[[nodiscard]] std::u16string BinWidthText(double sampleRate, int position, const FormatOptions& format);

}  // namespace quillon
