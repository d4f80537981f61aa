#pragma once

#include <cstddef>
#include <vector>

#include "spectrum/Welch.h"

namespace quillon {

/// A peak of a power density.
struct SpectralPeak {
    double frequency = 0.0;  ///< Hz, between bins
    double decibels = 0.0;   ///< of the power density there, see DecibelsOf
    double above = 0.0;      ///< decibels above the median of the surroundings
    friend bool operator==(const SpectralPeak&, const SpectralPeak&) = default;
};

/// What counts as a peak.
struct PeakRules {
    double leastAbove = 10.0;  ///< decibels above the median of the bins around it
    std::size_t most = 20;     ///< peaks, the highest ones
};

/// The peaks, the highest one first: bins that none of the main lobe around them exceeds, placed by the parabola
/// through the decibels of a bin and its neighbours. What has fewer than three periods in a segment is none.
[[nodiscard]] std::vector<SpectralPeak> FindPeaks(const PowerDensity& density, const PeakRules& rules = {});

/// The multiple of a frequency that is in a spectrum.
struct Harmonic {
    int multiple = 1;  ///< 1 is the fundamental
    SpectralPeak peak{};
    double power = 0.0;  ///< of the tone: square of the unit; its root is the effective value
};

struct Harmonics {
    std::vector<Harmonic> list{};  ///< those below half the sampling rate; the fundamental is the first
    /// Total harmonic distortion: effective value of the harmonics that stand out by that of the fundamental.
    double distortion = 0.0;
};

/// The harmonics of a peak, at most 40; none where they are too close to each other for the segments' length, and not
/// those that a tone of another frequency beside them hides. Of each the power of its main lobe counts, less the median
/// around it.
[[nodiscard]] Harmonics HarmonicsOf(const PowerDensity& density, double fundamental);

}  // namespace quillon
