#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "nsp/Spectrum.h"

/// Spectra of many frames as palette indices: the chain window, nspsRealFftNip, nspcbMag, level, nspsbFloatToInt of
/// Spectrum.h, carried out for several frames side by side, one in each lane of the vector registers.
namespace quillon::nsp {

class SpectrumBatch {
  public:
    struct Scale {
        bool linear = false;
        float linearFactor = 0.0F;   ///< linear: index = magnitude x factor
        float logMultiplier = 0.0F;  ///< else: index = (log10(max(magnitude, 1e-30)) + offset) x multiplier
        float logOffset = 0.0F;
    };

    /// Frames of N = 2^order samples, order 5 .. 11 (std::invalid_argument otherwise), and as many window coefficients.
    SpectrumBatch(int order, const float* window, const Scale& scale);

    /// Bin k (0 .. N/2) of frame i goes to out[k*stride + i], rounded to the nearest index and saturated to 0 .. 255.
    /// Frames may overlap. Within 90 dB of the largest bin of its frame an index differs from that of the chain in
    /// double precision by at most 1. Weaker bins lie ever nearer to the transform's error, which is below 1e-6 of the
    /// largest bin: beside a strong tone or a large offset they show that error. A bin that comes out as a NaN counts
    /// as silent. Not to be called from two threads at once: the object holds the work space.
    void Compute(std::span<const float* const> frames, std::uint8_t* out, std::ptrdiff_t stride);

  private:
    static constexpr std::size_t kLanes = 4;

    void ScaleWindow(int exponent);
    void MakeThresholds();
    void MakeWindowSpectrum();
    void LoadFrames(const float* const* frames);
    void LevelLinear(const float* work);
    void LevelByTable(const float* work);
    void LevelExactly(const float* work);

    const SCplx* m_twiddles;  ///< of the order
    std::size_t m_length;     ///< N
    Scale m_scale;
    std::vector<float> m_window;
    std::vector<float> m_windowRe;  ///< bins of the window
    std::vector<float> m_windowIm;
    std::array<float, kLanes> m_means{};  ///< of the frames at work
    std::vector<float> m_input;           ///< N samples of every lane, side by side
    std::vector<float> m_work;            ///< as long
    std::vector<std::uint8_t> m_indices;  ///< of every bin, the lanes side by side

    /// The levels' table, over the powers (squares of the scaled magnitudes) from the first border between two indices
    /// to the last. A cell is the powers that share the upper 16 bits of their single-precision form, 0.034 dB, which
    /// is narrower than an index, so that it holds one border at most. Its entry is such that
    /// (entry + lower 16 bits of the power) >> 16 is the index. Empty: levels out of its reach.
    std::vector<std::uint32_t> m_cells;
    float m_leastPower = 0.0F;  ///< powers are brought into these limits before they are looked up
    float m_greatestPower = 0.0F;
};

}  // namespace quillon::nsp
