#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

/// Ingredients of the sample signals. Nothing here depends on the platform's random distributions, so that the samples
/// are the same everywhere.
namespace quillon::samples {

inline constexpr double kTurn = 2.0 * std::numbers::pi;

class Random {
  public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}
    /// 0 to 1.
    double Uniform() {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(m_state >> 40) / 16777216.0;
    }
    /// About normal, mean 0, deviation 1.
    double Normal() {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i) sum += Uniform();
        return sum;
    }

  private:
    std::uint64_t m_state;
};

/// Noise whose power falls with the frequency: low-pass filters at corners a factor of five apart. Deviation about 1.
class PinkNoise {
  public:
    PinkNoise(std::uint64_t seed, double rate) : m_random(seed) {
        double corner = 0.2;
        for (Stage& stage : m_stages) {
            stage.keep = std::exp(-kTurn * std::min(corner, rate / 4.0) / rate);
            stage.gain = std::sqrt(1.0 - stage.keep * stage.keep);
            corner *= 5.0;
        }
    }
    double Next() {
        double sum = 0.0;
        for (Stage& stage : m_stages) {
            stage.level = stage.level * stage.keep + stage.gain * m_random.Normal();
            sum += stage.level;
        }
        return sum / 2.0;
    }

  private:
    struct Stage {
        double keep = 0.0;
        double gain = 0.0;
        double level = 0.0;
    };
    Random m_random;
    Stage m_stages[4];
};

/// A bell of height 1 at `centre`.
inline double Bell(double time, double centre, double width) {
    const double distance = (time - centre) / width;
    return std::abs(distance) > 6.0 ? 0.0 : std::exp(-0.5 * distance * distance);
}

inline std::int16_t Code(double value, double scale) {
    return static_cast<std::int16_t>(std::clamp(std::nearbyint(value / scale), -32768.0, 32767.0));
}

}  // namespace quillon::samples
