#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace quillon {

inline constexpr std::size_t kFlacChannels = 8;
/// Longest header of a frame, and of a frame's end.
inline constexpr std::size_t kFlacHeaderBytes = 16;

/// How the two channels of a stereo frame are stored.
enum class FlacStereo { Independent, LeftSide, SideRight, MidSide };

/// The header of a frame (RFC 9639, 9.1).
struct FlacFrameHeader {
    bool variable = false;      ///< `number` counts samples, not frames
    std::uint64_t number = 0;   ///< of the frame or its first sample, of 36 bits
    std::uint32_t samples = 0;  ///< of every channel, 1 to 65536
    unsigned channels = 1;
    unsigned depth = 0;  ///< bits of a sample; 0: that of the stream
    FlacStereo stereo = FlacStereo::Independent;
    std::size_t bytes = 0;  ///< of this header
};

/// Nothing where no header begins at the first byte: by its fixed bits and its check sum.
[[nodiscard]] std::optional<FlacFrameHeader> ParseFlacFrameHeader(std::span<const std::uint8_t> bytes);

/// The samples of a frame, one channel after the other.
struct FlacSamples {
    std::size_t count = 0;  ///< of every channel
    std::vector<std::int32_t> samples;
    [[nodiscard]] std::span<std::int32_t> Channel(std::size_t channel) {
        return std::span(samples).subspan(channel * count, count);
    }
    [[nodiscard]] const std::int32_t* Channel(std::size_t channel) const { return samples.data() + channel * count; }
};

/// Decodes the frame at the first of the bytes, which may go on behind it; `depth` bits of a sample. Returns the bytes
/// of the frame, 0 where it is damaged or does not end within `bytes`: by its check sum.
[[nodiscard]] std::size_t DecodeFlacFrame(const FlacFrameHeader& header, unsigned depth,
                                          std::span<const std::uint8_t> bytes, FlacSamples& out);

}  // namespace quillon
