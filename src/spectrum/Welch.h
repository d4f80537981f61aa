#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/SampleSpan.h"
#include "norvik/NorvikCore.h"
#include "nsp/PowerSpectrum.h"

namespace quillon {

/// How an averaged spectrum is made.
struct WelchSettings {
    std::int16_t window = 0;     ///< as SpectrumSettings::window
    std::int32_t length = 1024;  ///< samples of a segment: a power of 2, kLeastLength .. kMostLength
    friend bool operator==(const WelchSettings&, const WelchSettings&) = default;
    static constexpr std::int32_t kLeastLength = 256;
    static constexpr std::int32_t kMostLength = 65536;
};

/// The longest length that is not above the wanted one and fits into that many samples; none below kLeastLength.
[[nodiscard]] std::optional<std::int32_t> FittingLength(std::int32_t wanted, std::int32_t samples);
/// A length for a first look at that many samples: 4096, or less so that several segments are averaged.
[[nodiscard]] std::int32_t UsualLength(std::int32_t samples);

/// Power density of one channel at the frequencies k x binWidth, k = 0 .. length/2.
struct PowerDensity {
    std::int16_t channel = 0;     ///< position in the block, from 1
    double binWidth = 0.0;        ///< Hz
    std::int32_t segments = 0;    ///< that are averaged; 0: nothing is known yet, or the channel cannot be read
    std::vector<double> power{};  ///< square of the channel's unit per Hz, one-sided; empty without segments
    [[nodiscard]] double Frequency(std::size_t bin) const { return static_cast<double>(bin) * binWidth; }
    friend bool operator==(const PowerDensity&, const PowerDensity&) = default;
};

/// Decibels of a power density relative to 1 unit^2/Hz, which are those of its root relative to 1 unit/sqrt(Hz). No
/// power is -infinity.
[[nodiscard]] double DecibelsOf(double power);

/// Averaged power densities of some channels by Welch's method (P. D. Welch, IEEE Trans. Audio Electroacoust. AU-15,
/// 1967): segments overlap by half, the mean of each is taken off, and what does not fill a segment at the end is left
/// out. Made in steps of some milliseconds; the result does not depend on how they are called.
class WelchPass {
  public:
    /// The block is prepared, and `samples` lie inside it and hold at least one segment.
    WelchPass(std::shared_ptr<RecordingBlock> block, const std::vector<std::int16_t>& channels,
              const SampleSpan& samples, const WelchSettings& settings);
    /// Reads some samples, or adds the segments of a channel that are read; false when all is done.
    bool Step();
    [[nodiscard]] bool IsDone() const { return m_next >= m_segments; }
    /// How much is done, 0 to 1.
    [[nodiscard]] double Share() const;
    [[nodiscard]] std::int32_t Segments() const { return m_segments; }
    /// As far as it is known, in the order of the channels.
    [[nodiscard]] std::vector<PowerDensity> Result() const;

  private:
    struct Sums {
        std::int16_t channel = 0;
        bool readable = true;
        std::int32_t segments = 0;
        std::vector<double> power{};  ///< of codes, of all segments
    };
    /// Segments that are read together from m_next on.
    [[nodiscard]] std::int32_t Together() const;
    [[nodiscard]] SampleSpan PieceOf(std::int32_t segments) const;
    bool ReadFrames(const SampleSpan& piece);
    bool ReadCodes(Sums& sums, const SampleSpan& piece);
    void Add(Sums& sums, const std::int16_t* codes, std::int32_t segments);
    void LoadFrame(const std::int16_t* codes, std::size_t frame);

    std::shared_ptr<RecordingBlock> m_block;
    SampleSpan m_samples;
    WelchSettings m_settings;
    bool m_frames;  ///< the block's frames are the cheap order
    std::int32_t m_segments;
    std::int32_t m_next = 0;    ///< first segment that is not added for all channels
    std::size_t m_channel = 0;  ///< next one of m_sums to add
    bool m_framesRead = false;  ///< m_codes are the rows of all channels
    bool m_framesFailed = false;
    std::vector<double> m_window;
    nsp::PowerSpectrum m_transform;
    std::vector<Sums> m_sums;
    std::vector<std::int16_t> m_codes;
    std::vector<std::int16_t> m_interleaved;
};

}  // namespace quillon
