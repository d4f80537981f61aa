#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <vector>

#include "norvik/private/FlacFinder.h"

namespace quillon {

/// The frames of a FLAC file by their samples. A frame is looked for when a sample of it is wanted, between those that
/// are known already, by halves; what was found is kept, so that every sample always comes from the same frame. The
/// last few frames are kept decoded.
class FlacFrames {
  public:
    /// Throws as FlacFinder and ByteSource do.
    FlacFrames(const std::shared_ptr<ByteSource>& source, FlacMetadata metadata);

    /// Of every channel, up to the end of the last whole frame.
    [[nodiscard]] std::uint64_t Samples() const { return m_samples; }
    /// Bits of a sample.
    [[nodiscard]] unsigned Depth() const { return m_finder.Depth(); }

    /// Consecutive samples: those of a frame, or some that no whole frame holds.
    struct Stretch {
        std::uint64_t first = 0;
        std::uint64_t end = 0;
        const FlacSamples* samples = nullptr;  ///< valid until the next call; null where there are none
    };
    /// The stretch in which a sample below Samples lies.
    [[nodiscard]] Stretch Find(std::uint64_t sample);
    /// Throws ReadError that names a stretch without samples and its place in the file.
    [[noreturn]] void Refuse(const Stretch& missing) const;

  private:
    struct Place {
        std::uint64_t end = 0;     ///< sample behind the last one
        std::uint64_t offset = 0;  ///< byte of the file; `next` is the one behind the frame
        std::uint64_t next = 0;
        bool missing = false;
    };
    using Places = std::map<std::uint64_t, Place>;  ///< by first sample; they do not overlap
    struct Decoded {
        std::uint64_t first = 0;
        FlacSamples samples;
    };

    /// Adds a place between the known ones; `sample` lies in `hole`, which none of them covers.
    void Narrow(const FlacRange& hole, std::uint64_t sample, int round);
    /// Adds the first frame of a hole, and what is missing before it.
    void AddFirst(const FlacRange& hole);
    bool AddBySeekPoint(const FlacRange& hole, std::uint64_t sample);
    /// `decoded`: the finder has decoded it last.
    void Add(const FlacPlace& place, bool decoded = true);
    void AddMissing(const FlacRange& hole, std::uint64_t endSample);
    [[nodiscard]] FlacRange HoleBefore(Places::const_iterator after) const;
    const FlacSamples* Decode(std::uint64_t first, const Place& place);

    FlacFinder m_finder;
    std::vector<FlacSeekPoint> m_seekPoints;
    std::uint64_t m_start = 0;  ///< bytes between which the frames lie
    std::uint64_t m_end = 0;
    std::uint64_t m_samples = 0;
    Places m_places;
    std::list<Decoded> m_decoded;  ///< the oldest first
    std::map<std::uint64_t, std::list<Decoded>::iterator> m_decodedAt;
    std::size_t m_decodedBytes = 0;
    FlacSamples m_scratch;  ///< what the finder has decoded last
};

}  // namespace quillon
