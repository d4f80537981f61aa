#pragma once

#include <cstdint>
#include <vector>

/// What a display filter is: the user's settings, the sections that they make at a rate, and how far back its output
/// remembers.
namespace quillon::nsp {

/// Frequencies in Hz; 0 is off. Two filters with equal settings at equal rates give equal samples.
struct FilterSettings {
    double highPass = 0.0;  ///< Butterworth, 3 dB at this corner
    double lowPass = 0.0;   ///< Butterworth, 3 dB at this corner
    int order = 2;          ///< of high pass and low pass: 1, 2 or 4
    double notch = 0.0;     ///< base frequency; its harmonics below half the rate are taken out as well
    bool bothWays = false;  ///< forward, then backward: no delay, and every gain squared
    [[nodiscard]] bool IsOff() const { return highPass == 0.0 && lowPass == 0.0 && notch == 0.0; }
    friend bool operator==(const FilterSettings&, const FilterSettings&) = default;
};

enum class FilterRefusal {
    None,
    Unusable,         ///< a frequency is negative or not a number, the rate is not above 0, the order is not 1, 2 or 4
    HighPassTooHigh,  ///< at half the rate or above
    LowPassTooHigh,
    NotchTooHigh,
    CornersCross,  ///< the high pass is not below the low pass
};

/// Why there is no such filter at `rate` samples per second; the first reason in the order of the list.
[[nodiscard]] FilterRefusal RefusalOf(const FilterSettings& settings, double rate);

/// One section of first or second order, in two integrators of the trapezoidal rule (V. Zavalishin, "The Art of VA
/// Filter Design", chapters 3 and 4). It is the bilinear transform of its analogue section, as direct forms are. But
/// corners far below the rate lose no digits in it, and its states at rest are plain: a constant leaves it without any
/// rounding.
///
///     u = x - damping s1 - s2     b = s1 + first u      l = s2 + second b      y = high u + band b + low l
///
/// after which s1 grows by 2 first u, and s2 by 2 second b.
struct FilterSection {
    double damping = 0.0;
    double first = 0.0;   ///< half the step of the first integrator
    double second = 0.0;  ///< half the step of the second; 0 in a section of first order
    double high = 0.0;
    double band = 0.0;
    double low = 0.0;
    bool firstOrder = false;
    /// What becomes of a constant: 0 or 1.
    [[nodiscard]] double GainOfConstant() const { return firstOrder ? band : low; }
};

class FilterDesign {
  public:
    /// Notches beyond this harmonic are left out: standards limit what devices put on the mains up to the 40th
    /// (IEC 61000-3-2), and at 250 kHz there would be 2500 sections.
    static constexpr int kMostHarmonics = 40;
    /// Settling is never taken for longer, so that the way to a page stays bounded. What is cut are high passes below
    /// 2e-7 to 4e-7 of the rate, by order: slower ones than 0.1 Hz at 250 kHz.
    static constexpr std::int32_t kMostSettling = std::int32_t{1} << 24;

    /// Throws std::invalid_argument where RefusalOf has a reason.
    FilterDesign(const FilterSettings& settings, double rate);

    [[nodiscard]] const std::vector<FilterSection>& Sections() const { return m_sections; }
    [[nodiscard]] bool BothWays() const { return m_bothWays; }
    /// After so many samples, starting from rest at any first sample, no sample differs by more than half a code from
    /// one that began any time before, whatever codes came there. An upper bound; that of both directions together
    /// where the filter has them, each taking this many samples.
    [[nodiscard]] std::int32_t Settling() const { return m_settling; }
    /// The bound above is cut to kMostSettling: large steps more than that before a sample may change it.
    [[nodiscard]] bool IsSettlingCut() const { return m_settlingCut; }
    /// Samples of the cells that a block is filtered in (FilterStream), a power of two and twice the settling or more:
    /// a cell costs its run-up once for itself, a page costs the way from the start of its cell.
    [[nodiscard]] std::int32_t CellLength() const { return m_cellLength; }

  private:
    std::vector<FilterSection> m_sections;
    bool m_bothWays;
    bool m_settlingCut = false;
    std::int32_t m_settling = 0;
    std::int32_t m_cellLength = 0;
};

}  // namespace quillon::nsp
