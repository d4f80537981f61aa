#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/Density.h"

namespace quillon {

/// Number of colours of the traces; channel number n is drawn in colour n mod kTraceColors.
inline constexpr int kTraceColors = 16;

/// Of the strips beside the graph, 0xRRGGBB.
struct StripColors {
    std::uint32_t face = 0;
    std::uint32_t text = 0;
    std::uint32_t pointed = 0;  ///< face of what the pointer is on
    std::uint32_t pointedText = 0;
    std::uint32_t accent = 0;  ///< of what is to be noticed, such as the frame of the overview's window
};

/// The colours of the graph and of what belongs to it, on the screen and in pictures, 0xRRGGBB.
struct GraphColors {
    std::uint32_t paper = 0xFFFFFF;
    std::uint32_t zero = 0xB4BAC4;  ///< line at the zero level
    std::uint32_t laneZero = 0xE6E9ED;
    std::uint32_t laneEdge = 0xD0D5DC;
    std::uint32_t markLine = 0xDFA6A6;
    std::uint32_t markText = 0xB02A2A;
    std::uint32_t markBand = 0xE0A8A8;  ///< on the time scale, for a mark that lasts
    std::uint32_t measure = 0x7A1FA2;   ///< the pinned cursor and what is measured from it
    std::uint32_t text = 0x282C34;
    std::uint32_t faintText = 0x505864;

    // A report's frame.
    std::uint32_t heading = 0x1C1F23;
    std::uint32_t caption = 0x565C64;
    std::uint32_t border = 0x8C939C;
    std::uint32_t bar = 0x4A5058;

    // The plot of averaged spectra.
    std::uint32_t plotGrid = 0xE4E6EA;
    std::uint32_t plotEdge = 0x808690;
    std::uint32_t harmonic = 0xB06000;

    // Beside the spectrogram.
    std::uint32_t scaleFace = 0x000000;
    std::uint32_t scaleInk = 0xFFFFFF;

    std::optional<StripColors> strip{};  ///< none: those of the system

    /// Of a selection; none: it inverts the lightness of the image, as the cursors do.
    std::optional<std::uint32_t> selectedPaper{};

    /// Eight hues that are distinguishable with red or green colour blindness, then the same ones darker. Each has a
    /// contrast of at least 3 to 1 on the paper, a selection's too.
    std::array<std::uint32_t, kTraceColors> traces{
        0x0072B2, 0xD55E00, 0x00875A, 0xB8478F, 0x2B8CC4, 0xA87400, 0x555555, 0x6A51D0,
        0x004A74, 0x8A3D00, 0x00573A, 0x772E5D, 0x1C5B80, 0x6D4B00, 0x202020, 0x453587,
    };

    /// Of a channel number.
    [[nodiscard]] constexpr std::uint32_t Trace(std::int16_t channelNumber) const {
        return traces[static_cast<std::size_t>(channelNumber) % kTraceColors];
    }
};

/// Dark on white, beside strips in the colours of the system.
inline constexpr GraphColors kLightColors{};

/// Light on a dark paper, the strips included.
inline constexpr GraphColors kDarkColors{
    .paper = 0x15181D,
    .zero = 0x59616D,
    .laneZero = 0x2A3038,
    .laneEdge = 0x3A424D,
    .markLine = 0x7A4145,
    .markText = 0xFF8F85,
    .markBand = 0x94494F,
    .measure = 0xD5A6FF,
    .text = 0xE8EBEF,
    .faintText = 0xB0B7C1,
    .heading = 0xF0F2F5,
    .caption = 0xB0B7C1,
    .border = 0x626B77,
    .bar = 0xAAB1BB,
    .plotGrid = 0x2A3038,
    .plotEdge = 0x6B7480,
    .harmonic = 0xFFB454,
    .scaleFace = 0x1E2228,
    .scaleInk = 0xD4D9E0,
    .strip =
        StripColors{
            .face = 0x1E2228, .text = 0xD4D9E0, .pointed = 0x30363F, .pointedText = 0xF0F2F5, .accent = 0x5AA9F0},
    .selectedPaper = 0x22354C,
    .traces = {0x73B1F7, 0xE29F25, 0x83E3AA, 0xFF5E73, 0x7FDFFE, 0xF1FF34, 0xE6EBED, 0x7090FF, 0x4BCECE, 0xD35935,
               0x09AA77, 0xA46E98, 0x63A7C7, 0xE6A56B, 0x9CA0A1, 0x8972BD},
};

/// How a graph is drawn, whatever it shows.
struct GraphLook {
    const GraphColors* colors = &kLightColors;  ///< never null
    std::int32_t lineWidth = 1;                 ///< of the traces, in pixels at 96 dpi; 1 to kMostLineWidth

    /// The same for a screen of that density, whose pixels the line width is in.
    [[nodiscard]] constexpr GraphLook At(int dpi) const { return {colors, LineAt(dpi, lineWidth)}; }
    friend bool operator==(const GraphLook&, const GraphLook&) = default;
};

inline constexpr std::int32_t kMostLineWidth = 3;

/// Width of a line in a picture of `scale` times as many pixels; one of a single pixel stays as thin as can be.
[[nodiscard]] constexpr std::int32_t EnlargedLine(std::int32_t width, int scale) {
    return 1 + (width - 1) * scale;
}

}  // namespace quillon
