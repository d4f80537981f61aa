#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "nsp/FftLanes.h"

/// Powers of long transforms in double precision, for averaged spectra.
namespace quillon::nsp {

/// Orders of PowerSpectrum.
inline constexpr int kLeastPowerOrder = 5;
inline constexpr int kMostPowerOrder = 16;

/// The transform of two frames of N = 2^order real samples side by side. The error of a bin's power is below 1e-14 of
/// the largest. Not to be used from two threads at once: the object holds the work space.
class PowerSpectrum {
  public:
    /// Throws std::invalid_argument for an order out of range.
    explicit PowerSpectrum(int order);

    [[nodiscard]] std::size_t Length() const { return m_length; }
    /// The frames to transform: sample i of frame f (0 or 1) is element 2i + f. Add leaves other numbers there.
    [[nodiscard]] std::span<double> Frames() { return m_frames; }
    /// Adds the squared magnitudes of both frames' bins to sums[0 .. N/2]; the transform is not scaled.
    void Add(std::span<double> sums);

  private:
    std::size_t m_length;
    std::vector<DCplx> m_twiddles;  ///< e^(-2 pi j k / N) for k = 0 .. N-1
    std::vector<double> m_frames;
    std::vector<double> m_work;
};

}  // namespace quillon::nsp
