#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/SampleSpan.h"
#include "view/Readout.h"

namespace quillon {

/// Of some samples of one channel, in its unit (codes where raw codes are shown).
struct ChannelStatistics {
    std::int16_t channel = 0;  ///< position in the block, from 1
    double minimum = 0.0;
    double maximum = 0.0;
    double mean = 0.0;
    double rms = 0.0;
    double deviation = 0.0;  ///< standard deviation, of all samples (divided by their number)
};

/// Computes the statistics of the shown channels in one pass over the data, which can be made in steps. What the source
/// refers to must outlive this object.
class StatisticsPass {
  public:
    StatisticsPass(const ReadoutSource& source, const SampleSpan& samples);
    /// Reads about one piece, see RecordingBlock::SamplesPerPiece, or comes nearer to it; false when all is read.
    bool Step();
    /// How much is read, 0 to 1.
    [[nodiscard]] double Share() const;
    [[nodiscard]] bool IsDone() const { return m_next >= m_samples.End(); }
    /// The channels, by position in the block from 1, in the order of Result.
    [[nodiscard]] const std::vector<std::int16_t>& Channels() const { return m_channels; }
    /// Extremes as far as they are known without the pass: minimum and maximum alone; none where they are not.
    [[nodiscard]] std::optional<std::vector<ChannelStatistics>> Extremes() const;
    /// After the last step. Channels that cannot be read are left out.
    [[nodiscard]] std::vector<ChannelStatistics> Result() const;

  private:
    struct Sums {
        std::int16_t minimum = 32767;
        std::int16_t maximum = -32768;
        std::int64_t sum = 0;
        std::int64_t squares = 0;  // at most 2^31 samples of 2^30: below 2^61
        bool readable = true;
        void Add(const std::int16_t* codes, std::size_t count, std::size_t step);
    };
    [[nodiscard]] ChannelStatistics InUnits(std::int16_t channel, std::int16_t minimum, std::int16_t maximum) const;

    ReadoutSource m_source;
    SampleSpan m_samples;
    std::int32_t m_next;  ///< first sample that is not read
    std::vector<std::int16_t> m_channels;
    std::vector<Sums> m_sums;
    std::vector<std::int16_t> m_codes;
};

/// The result of a whole pass.
[[nodiscard]] std::vector<ChannelStatistics> StatisticsOf(const ReadoutSource& source, const SampleSpan& samples);

}  // namespace quillon
