#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

/// One-pass extremes of consecutive runs of 16-bit samples, in drawing order.
///
/// A result is the pair (first, second): of the run's maximum and minimum the one that occurs earlier comes first; the
/// maximum comes first when both are the same sample. "Occurs" means the first occurrence of the value in the run.
///
/// Data is fed in pieces of any size; state is carried across pieces, so runs need not line up with them.
/// Results are written as they are finished, in run order.
namespace quillon::nsp {

struct ExtremePair {
    std::int16_t first = 0;
    std::int16_t second = 0;
    friend bool operator==(const ExtremePair&, const ExtremePair&) = default;
};

class FrameKernel;
class PlanarKernel;

/// How many samples the reducers take at a time. The results are the same.
enum class LaneCount {
    Eight,    ///< on any processor
    Sixteen,  ///< with AVX2
};
/// The most that this processor and its system can do.
[[nodiscard]] LaneCount MostLanes();

/// Few samples of one channel that lie together: eight lanes.
class PlanarRunReducer {
  public:
    /// `run` >= 1 samples per result. `out` has room for every result that the fed samples give.
    PlanarRunReducer(std::int32_t run, ExtremePair* out);
    void Feed(const std::int16_t* samples, std::size_t count);
    /// Writes the last, shorter run if one is under way. Call once, after the last piece.
    void Finish();

  private:
    std::int32_t m_run;
    std::int32_t m_filled = 0;  ///< samples of the run under way
    std::int16_t m_maximum = 0;
    std::int16_t m_minimum = 0;
    bool m_minimumFirst = false;
    ExtremePair* m_out;
};

/// Samples of several channels that each lie together and are fed in step, as the records of a file hold them.
class PlanarSetReducer {
  public:
    /// out[c] has room for the results of channel c.
    PlanarSetReducer(std::int32_t run, std::span<ExtremePair* const> out, LaneCount lanes = MostLanes());
    ~PlanarSetReducer();
    PlanarSetReducer(const PlanarSetReducer&) = delete;
    PlanarSetReducer& operator=(const PlanarSetReducer&) = delete;
    /// The next `count` samples of every channel; samples[c] points to those of channel c.
    void Feed(std::span<const std::int16_t* const> samples, std::size_t count);
    /// Writes the last, shorter run if one is under way. Call once, after the last piece.
    void Finish();

  private:
    std::unique_ptr<PlanarKernel> m_kernel;
};

/// Frames: one sample of every channel after the other.
class FrameRunReducer {
  public:
    /// `channels` samples per frame (1 or more); `selected` are the channels wanted (from 0, any order, no repeats),
    /// out[i] has room for the results of selected[i].
    FrameRunReducer(std::size_t channels, std::span<const std::size_t> selected, std::int32_t run,
                    std::span<ExtremePair* const> out, LaneCount lanes = MostLanes());
    ~FrameRunReducer();
    FrameRunReducer(const FrameRunReducer&) = delete;
    FrameRunReducer& operator=(const FrameRunReducer&) = delete;
    void Feed(const std::int16_t* frames, std::size_t frameCount);
    /// Writes the last, shorter run if one is under way. Call once, after the last piece.
    void Finish();

  private:
    std::unique_ptr<FrameKernel> m_kernel;
};

}  // namespace quillon::nsp
