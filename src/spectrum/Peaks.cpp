#include "spectrum/Peaks.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillon {

namespace {

/// Bins from the middle of a main lobe to its edge, of the widest window.
constexpr std::size_t kLobe = 3;
/// Bins on each side whose median is the level of the surroundings.
constexpr std::size_t kAround = 24;
constexpr int kMostHarmonics = 40;
/// Decibels above its surroundings from which on a harmonic is no noise.
constexpr double kStandsOut = 6.0;

/// How far from a multiple of the fundamental its peak may lie, in bins: what placing it may be off by, and what the
/// fundamental's own place may be off by for each multiple.
constexpr double kOffPeak = 0.3;
constexpr double kOffFundamental = 0.05;

/// The median power of the bins around one, without its main lobe, 0 Hz and the last bin.
double MedianAround(const std::vector<double>& power, std::size_t bin) {
    std::vector<double> around;
    const std::size_t end = std::min(bin + kAround + 1, power.size() - 1);
    for (std::size_t at = bin > kAround ? bin - kAround : 1; at < end; ++at) {
        if (at + kLobe < bin || at > bin + kLobe) around.push_back(power[at]);
    }
    if (around.empty()) return 0.0;
    const auto middle = around.begin() + static_cast<std::ptrdiff_t>(around.size() / 2);
    std::nth_element(around.begin(), middle, around.end());
    return *middle;
}

/// The bin has neighbours on both sides.
SpectralPeak PeakAt(const PowerDensity& density, std::size_t bin) {
    const double left = DecibelsOf(density.power[bin - 1]);
    const double middle = DecibelsOf(density.power[bin]);
    const double right = DecibelsOf(density.power[bin + 1]);
    const double curve = left - 2.0 * middle + right;
    const bool isTop = std::isfinite(curve) && curve < 0.0 && middle >= left && middle >= right;
    const double shift = isTop ? 0.5 * (left - right) / curve : 0.0;
    SpectralPeak peak;
    peak.frequency = (static_cast<double>(bin) + shift) * density.binWidth;
    peak.decibels = isTop ? middle - 0.25 * (left - right) * shift : middle;
    peak.above = peak.decibels - DecibelsOf(MedianAround(density.power, bin));
    return peak;
}

bool IsHighest(const std::vector<double>& power, std::size_t bin) {
    const auto begin = power.begin();
    const auto at = begin + static_cast<std::ptrdiff_t>(bin);
    const auto from = begin + static_cast<std::ptrdiff_t>(bin > kLobe ? bin - kLobe : 1);
    const auto to = begin + static_cast<std::ptrdiff_t>(std::min(bin + kLobe + 1, power.size()));
    // Of equal bins the first one is the peak.
    return std::max_element(from, to) == at && *at > 0.0;
}

/// The highest bin near a frequency.
std::size_t BinNear(const PowerDensity& density, double frequency) {
    const auto last = static_cast<std::int64_t>(density.power.size()) - 2;
    const auto nearest = std::clamp<std::int64_t>(std::llround(frequency / density.binWidth), 1, last);
    const auto begin = density.power.begin();
    return static_cast<std::size_t>(std::max_element(begin + std::max<std::int64_t>(nearest - 1, 1),
                                                     begin + std::min<std::int64_t>(nearest + 1, last) + 1) -
                                    begin);
}

}  // namespace

std::vector<SpectralPeak> FindPeaks(const PowerDensity& density, const PeakRules& rules) {
    std::vector<SpectralPeak> peaks;
    // Nearer to 0 Hz lies what taking off the mean has left of drifts.
    for (std::size_t bin = kLobe; bin + 1 < density.power.size(); ++bin) {
        if (!IsHighest(density.power, bin)) continue;
        const SpectralPeak peak = PeakAt(density, bin);
        if (peak.above >= rules.leastAbove) peaks.push_back(peak);
    }
    std::stable_sort(peaks.begin(), peaks.end(),
                     [](const SpectralPeak& a, const SpectralPeak& b) { return a.decibels > b.decibels; });
    if (peaks.size() > rules.most) peaks.resize(rules.most);
    return peaks;
}

Harmonics HarmonicsOf(const PowerDensity& density, double fundamental) {
    Harmonics harmonics;
    const double apart = fundamental / density.binWidth;
    // Main lobes that lie closer together cannot be told apart.
    if (density.power.size() < 3 || !(apart >= 2.0 * kLobe)) return harmonics;
    const auto last = static_cast<double>(density.power.size() - 2);
    const auto reach = std::min(kLobe, static_cast<std::size_t>((apart - 1.0) / 2.0));
    double sum = 0.0;
    for (int multiple = 1; multiple <= kMostHarmonics && multiple * apart <= last; ++multiple) {
        const std::size_t bin = BinNear(density, multiple * fundamental);
        Harmonic harmonic{.multiple = multiple, .peak = PeakAt(density, bin)};
        const double off = std::abs(harmonic.peak.frequency / density.binWidth - multiple * apart);
        // Another tone, which hides what there may be of this one.
        if (harmonic.peak.above >= kStandsOut && off > kOffPeak + kOffFundamental * multiple) continue;
        const double floor = MedianAround(density.power, bin);
        const std::size_t end = std::min(bin + reach + 1, density.power.size());
        for (std::size_t at = bin - std::min(reach, bin); at < end; ++at) harmonic.power += density.power[at] - floor;
        harmonic.power = std::max(harmonic.power, 0.0) * density.binWidth;
        if (multiple > 1 && harmonic.peak.above >= kStandsOut) sum += harmonic.power;
        harmonics.list.push_back(harmonic);
    }
    if (!harmonics.list.empty() && harmonics.list.front().power > 0.0)
        harmonics.distortion = std::sqrt(sum / harmonics.list.front().power);
    return harmonics;
}

}  // namespace quillon
