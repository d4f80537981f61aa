#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "nsp/FrameStretch.h"
#include "nsp/RunLanes.h"

namespace quillon::nsp {

/// Runs of frames of 3 or more channels, one lane per channel. Only the vectors that hold selected channels are
/// reduced.
class FrameRuns {
  public:
    /// As FrameRunReducer; 1, 2 and 4 channels are packed better.
    FrameRuns(std::size_t channels, std::span<const std::size_t> selected, std::size_t run,
              std::span<ExtremePair* const> out);
    void Feed(const std::int16_t* frames, std::size_t frameCount);
    void Finish();

  private:
    // Both add frames to the run under way, at most those that it lacks.
    void AddStretch(const std::int16_t* frames, std::size_t count);
    void AddSingly(const std::int16_t* frames, std::size_t count);
    void RunDone();
    void WriteStaged();

    std::size_t m_channels;
    std::size_t m_run;
    std::size_t m_filled = 0;      ///< frames of the run under way
    std::size_t m_unreadable = 0;  ///< frames at the end of a piece whose vectors would reach past it
    // A column is eight neighbouring channels of every frame.
    std::vector<std::size_t> m_channelOf;  ///< channel in lane 0 of each column
    std::vector<LaneExtremes> m_extremes;  ///< of the run under way, by column
    std::vector<LaneExtremes> m_later;     ///< of a stretch that continues a run, by column
    std::vector<ExtremePair*> m_out;       ///< by slot = column x 8 + lane; null: not wanted
    std::vector<ExtremePair> m_staged;     ///< finished results, run by run, by slot
    std::size_t m_stagedRuns = 0;
    FrameStretch m_stretch;
};

}  // namespace quillon::nsp
