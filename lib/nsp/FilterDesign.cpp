#include "nsp/FilterDesign.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <numbers>
#include <stdexcept>

namespace quillon::nsp {

namespace {

using Complex = std::complex<double>;

constexpr double kNotchQuality = 30.0;
constexpr std::int32_t kLeastCell = 1024;
constexpr double kCodes = 65536.0;
constexpr double kHalfCode = 0.5;

enum class Kind { High, Low, Notch };

/// A section by its analogue frequency response in s = (z - 1) / (z + 1). Of second order:
/// s^2, g^2 or s^2 + g^2 over s^2 + k g s + g^2; of first order: s or g over s + g.
struct Prototype {
    Kind kind;
    int order;
    double g;
    double k;

    [[nodiscard]] Complex Numerator(Complex s) const {
        if (order == 1) return kind == Kind::High ? s : g;
        switch (kind) {
            case Kind::High: return s * s;
            case Kind::Low: return g * g;
            default: return s * s + g * g;
        }
    }
    [[nodiscard]] Complex Denominator(Complex s) const { return order == 1 ? s + g : s * s + k * g * s + g * g; }

    [[nodiscard]] FilterSection Section() const {
        FilterSection section;
        section.firstOrder = order == 1;
        const double scale = 1.0 / (order == 1 ? 1.0 + g : 1.0 + g * (k + g));
        section.first = g * scale;
        section.high = kind == Kind::Low ? 0.0 : scale;
        if (order == 1) {
            section.damping = 1.0;
            section.band = kind == Kind::Low ? 1.0 : 0.0;
        } else {
            section.damping = k + g;
            section.second = g;
            section.low = kind == Kind::High ? 0.0 : 1.0;
        }
        return section;
    }
};

/// The bilinear transform with the corner prewarped (A. V. Oppenheim, R. W. Schafer, "Discrete-Time Signal
/// Processing", chapter 7). The pairs of Butterworth poles lie at angles of pi (2 i + 1) / (2 order) from the
/// imaginary axis, which gives k = 2 sin of that angle.
void AddButterworth(std::vector<Prototype>& to, Kind kind, int order, double corner, double rate) {
    const double g = std::tan(std::numbers::pi * corner / rate);
    if (order == 1) to.push_back({kind, 1, g, 0.0});
    for (int i = 0; i < order / 2; ++i)
        to.push_back({kind, 2, g, 2.0 * std::sin(std::numbers::pi * (2 * i + 1) / (2.0 * order))});
}

/// Notches whose gain is 3 dB down at both edges of a band of base / Q (S. J. Orfanidis, "Introduction to Signal
/// Processing", chapter 11). There beta = tan(pi bandwidth / rate) is k g / (1 + g^2) of the section here.
void AddNotches(std::vector<Prototype>& to, double base, double rate) {
    const double beta = std::tan(std::numbers::pi * base / kNotchQuality / rate);
    for (int harmonic = 1; harmonic <= FilterDesign::kMostHarmonics && base * harmonic < rate / 2; ++harmonic) {
        const double angle = std::numbers::pi * base * harmonic / rate;
        to.push_back({Kind::Notch, 2, std::tan(angle), 2.0 * beta / std::sin(2.0 * angle)});
    }
}

/// The impulse response after its first sample, bounded by the sum over the poles p of amplitude |p|^(n - 1).
class ResponseBound {
  public:
    explicit ResponseBound(const std::vector<Prototype>& sections) {
        Complex direct = 1.0;
        for (const Prototype& section : sections) direct *= section.Numerator(1.0) / section.Denominator(1.0);
        m_first = std::abs(direct);
        for (const Prototype& section : sections) {
            if (section.order == 1) {
                Add(sections, section, -section.g, 1.0);
                continue;
            }
            // Equal poles would need another formula; moved apart this little they settle as slowly.
            const double k = std::fabs(section.k - 2.0) < 1e-6 ? 2.0 + 1e-6 : section.k;
            const Complex root = std::sqrt(Complex(k * k - 4.0));
            const Complex far = -section.g * (k + root) / 2.0;
            const Complex near = section.g * section.g / far;
            Add(sections, section, far, far - near);
            Add(sections, section, near, near - far);
        }
    }

    /// The sum of the magnitudes from sample n on, n >= 1.
    [[nodiscard]] double Tail(std::int32_t n) const {
        double sum = 0.0;
        for (const Term& term : m_terms)
            sum += term.amplitude * std::exp(term.logarithm * (n - 1)) / -std::expm1(term.logarithm);
        return sum;
    }
    /// The most that the filter can make of samples within +-1.
    [[nodiscard]] double Norm() const { return m_first + Tail(1); }

  private:
    struct Term {
        double amplitude;
        double logarithm;  ///< of |p|
    };

    /// The partial fraction of the pole at s of section `own`, whose other pole is `distance` away.
    void Add(const std::vector<Prototype>& sections, const Prototype& own, Complex s, Complex distance) {
        Complex residue = own.Numerator(s) / distance;
        for (const Prototype& other : sections) {
            if (&other == &own) continue;
            Complex divisor = other.Denominator(s);
            // Poles that meet those of another section: as for equal ones above.
            const double least = 1e-9 * std::norm(s);
            if (std::abs(divisor) < least) divisor = least;
            residue *= other.Numerator(s) / divisor;
        }
        const double turn = std::norm(1.0 - s);
        const double logarithm = 0.5 * std::log1p(4.0 * s.real() / turn);
        m_terms.push_back({2.0 * std::abs(residue) / turn, std::max(logarithm, -700.0)});
    }

    double m_first = 0.0;
    std::vector<Term> m_terms;
};

}  // namespace

FilterRefusal RefusalOf(const FilterSettings& settings, double rate) {
    const auto usable = [](double frequency) { return frequency >= 0.0 && std::isfinite(frequency); };
    const bool known = settings.order == 1 || settings.order == 2 || settings.order == 4;
    if (!known || !usable(settings.highPass) || !usable(settings.lowPass) || !usable(settings.notch) || !usable(rate) ||
        rate == 0.0)
        return FilterRefusal::Unusable;
    const double half = rate / 2;
    if (settings.highPass >= half) return FilterRefusal::HighPassTooHigh;
    if (settings.lowPass >= half) return FilterRefusal::LowPassTooHigh;
    if (settings.notch >= half) return FilterRefusal::NotchTooHigh;
    if (settings.lowPass > 0.0 && settings.highPass >= settings.lowPass) return FilterRefusal::CornersCross;
    return FilterRefusal::None;
}

FilterDesign::FilterDesign(const FilterSettings& settings, double rate) : m_bothWays(settings.bothWays) {
    if (RefusalOf(settings, rate) != FilterRefusal::None) throw std::invalid_argument("no such filter at this rate");
    std::vector<Prototype> sections;
    // The high pass comes first, so that the others have no drift to carry.
    if (settings.highPass > 0.0) AddButterworth(sections, Kind::High, settings.order, settings.highPass, rate);
    if (settings.lowPass > 0.0) AddButterworth(sections, Kind::Low, settings.order, settings.lowPass, rate);
    if (settings.notch > 0.0) AddNotches(sections, settings.notch, rate);
    for (const Prototype& section : sections) m_sections.push_back(section.Section());

    if (!sections.empty()) {
        const ResponseBound bound(sections);
        // The backward pass gets samples that the forward pass has enlarged, and its errors too: half of the room each.
        const double enlarged = m_bothWays ? 2.0 * std::max(bound.Norm(), 1.0) : 1.0;
        const auto settled = [&](std::int32_t n) { return kCodes * enlarged * bound.Tail(n) <= kHalfCode; };
        std::int32_t unsettled = 0;
        m_settling = kMostSettling;
        m_settlingCut = !settled(kMostSettling);
        while (!m_settlingCut && m_settling - unsettled > 1) {
            const std::int32_t middle = unsettled + (m_settling - unsettled) / 2;
            (settled(middle) ? m_settling : unsettled) = middle;
        }
    }
    const auto least = static_cast<std::uint32_t>(std::max(kLeastCell, 2 * m_settling));
    m_cellLength = static_cast<std::int32_t>(std::bit_ceil(least));
}

}  // namespace quillon::nsp
