#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/SampleSpan.h"
#include "norvik/NorvikCore.h"
#include "view/ExtremesCache.h"
#include "view/GraphColors.h"
#include "view/TimeAxis.h"

namespace quillon {

/// A point of a trace in logical units. x is the sample's index when every sample is a point of its own (1 or 2 samples
/// per pixel column), else two units per pixel column; on a free axis it is the graph's pixel column. y is the code.
struct TracePoint {
    std::int32_t x = 0;
    std::int32_t y = 0;
    friend bool operator==(const TracePoint&, const TracePoint&) = default;
};

/// Colour as 0xRRGGBB of a channel number on white.
[[nodiscard]] constexpr std::uint32_t TraceColor(std::int16_t channelNumber) {
    return kLightColors.Trace(channelNumber);
}

/// Computes the points of a channel's trace over samples first .. first+count-1 (from 0) by reading every one of them,
/// and returns the last sample. With more than 2 samples per pixel each further pixel column gets the two extremes of
/// its run of samples, in the order in which they occur (the maximum first when both are the same sample); sample
/// `first` is the starting point. `work` and `points` are reused between calls. A count below 1 gives no points.
std::int16_t DrawChannelTrace(RecordingBlock& block, std::int16_t channel, std::int32_t first, std::int32_t count,
                              std::int32_t samplesPerPixel, std::vector<std::int16_t>& work,
                              std::vector<TracePoint>& points);

/// The requested part of a trace: the samples fill the graph from its left edge; only the points needed for pixel
/// columns fromColumn .. toColumn-1 have to be computed.
struct TraceStretch {
    SampleSpan samples;
    std::int32_t samplesPerPixel = 1;
    std::int32_t fromColumn = 0;
    std::int32_t toColumn = std::numeric_limits<std::int32_t>::max();
    /// Of a free axis, whose columns need more than a number of samples.
    struct Free {
        ColumnGrid grid;
        std::int32_t firstColumn = 0;  ///< of the strip, at the graph's left edge
        friend bool operator==(const Free&, const Free&) = default;
    };
    std::optional<Free> free{};
    friend bool operator==(const TraceStretch&, const TraceStretch&) = default;
};
/// The stretch for the columns of a graph.
[[nodiscard]] TraceStretch StretchOf(const TimeAxis& axis, std::int32_t fromColumn, std::int32_t toColumn);

/// The same on a free axis for another block of the same stretch, with that many samples, see ColumnGrid::Scaled.
[[nodiscard]] TraceStretch StretchOf(const TimeAxis& axis, std::int32_t samples, std::int32_t fromColumn,
                                     std::int32_t toColumn);

/// The same points for several channels, with x as it is in the whole trace. Runs of 100 samples and more are taken
/// from the block's extremes as far as these are known; several channels are read in one pass over the data if the
/// block supports it, else one by one with DrawChannelTrace. Where the data can be read up to some sample only (a file
/// truncated while open), the traces end there; a channel that cannot be read at all gets no points.
///
/// On a free axis a column has the two extremes of its own samples, see FreeColumns; with one sample per column or less
/// every sample is a point. Traces then begin and end with the block, not with the graph.
class TraceReader {
  public:
    /// points() then holds one list per entry of `channels`. Of a part, each list begins and ends at least one column
    /// outside; its first point stands for the line that leads to it from the left.
    void Read(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
              const TraceStretch& stretch);
    /// Column behind the last one from `fromColumn` on that Read can read now without reading much, at most `toColumn`;
    /// `fromColumn` where not even that is known yet. Reads about SamplesPerPiece samples of what is missing, so that
    /// repeated calls get on. Throws nothing: what cannot be read is found by Read.
    static std::int32_t Approach(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                                 const TraceStretch& stretch);
    [[nodiscard]] std::span<const std::vector<TracePoint>> points() const { return {m_points.data(), m_used}; }
    /// The block's error text if the last Read could not read everything; else empty.
    [[nodiscard]] const std::string& Failure() const { return m_failure; }
    /// Whether the last Read has left out samples that could be read: behind some that could not.
    [[nodiscard]] bool HasHole() const { return m_hasHole; }
    /// Another block is going to be read.
    void Reset() { m_failure.clear(); }

  private:
    void ReadStretch(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                     const TraceStretch& stretch);
    void ReadPoints(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                    std::int32_t first, std::int32_t count, std::int32_t samplesPerPixel);
    /// `extremes` is null where the runs are to be read from the block.
    bool ReadExtremes(RecordingBlock& block, ExtremesCache* extremes, std::span<const std::int16_t> channels,
                      std::int32_t first, std::int32_t count, std::int32_t samplesPerPixel);
    void ReadFree(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                  const TraceStretch& stretch);
    void ReadColumns(RecordingBlock& block, ExtremesCache& extremes, std::span<const std::int16_t> channels,
                     const TraceStretch& stretch);

    std::string m_failure;
    bool m_hasHole = false;
    std::vector<std::vector<TracePoint>> m_points;  ///< grows to the most channels ever drawn; buffers are reused
    std::size_t m_used = 0;
    std::vector<std::int16_t> m_samples;
    std::vector<RunExtremes> m_extremes;
    std::vector<RunExtremes*> m_targets;
};

}  // namespace quillon
