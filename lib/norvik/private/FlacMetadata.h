#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FrameBlock.h"

namespace quillon {

/// A place in the stream that the file claims for a sample.
struct FlacSeekPoint {
    std::uint64_t sample = 0;
    std::uint64_t offset = 0;  ///< byte of the file
};

/// What a FLAC file tells about itself before its first frame (RFC 9639, 8).
struct FlacMetadata {
    std::uint32_t leastBlock = 0;  ///< samples of a frame, but for the last one
    std::uint32_t mostBlock = 0;
    std::uint32_t rate = 0;                 ///< samples per second, above 0
    unsigned channels = 0;                  ///< 1 to 8
    unsigned depth = 0;                     ///< bits of a sample, 4 to 32
    std::uint64_t samples = 0;              ///< of every channel; 0: unknown
    std::uint64_t firstFrame = 0;           ///< byte of the file where frames begin
    std::vector<FlacSeekPoint> seekPoints;  ///< in order; hints that nobody has checked
    std::u16string title;                   ///< out of the comments; may be empty
    std::vector<FrameMark> marks;           ///< tracks of a cue sheet, in order of position
};

/// Walks the blocks of metadata; an ID3v2 tag may lie in front of them. Throws FormatError for a file that has no
/// stream information, or one that cannot be.
[[nodiscard]] FlacMetadata ReadFlacMetadata(ByteSource& source);

/// Byte of the "fLaC" that the file begins with: behind an ID3v2 tag where there is one. `start`: the file's first
/// bytes.
[[nodiscard]] std::uint64_t FlacMarkerOffset(std::span<const std::uint8_t> start);

}  // namespace quillon
