#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "norvik/private/ByteSource.h"

namespace quillon {

/// Where a chunk's content lies in the file.
struct WaveChunk {
    std::uint64_t offset = 0;
    std::uint64_t declared = 0;   ///< bytes, by the header of the chunk
    std::uint64_t available = 0;  ///< bytes of them that the file holds
};

/// The data chunk and what must be known to tell how long it really is.
struct WaveData {
    WaveChunk chunk;
    bool sizeUnknown = false;      ///< 0 or all ones, and nothing else follows: a stream that was not closed
    std::uint64_t rest = 0;        ///< bytes from the content's start to the end of the file
    std::uint32_t declared32 = 0;  ///< as the chunk's own header says
};

/// The header of a chunk: its name and its size, without the header.
struct ChunkHeader {
    std::array<char, 4> id{};
    std::uint32_t size = 0;
    [[nodiscard]] std::string_view Id() const { return {id.data(), id.size()}; }
};

/// Bytes of the header of a chunk, and of what is in front of the first one of a file.
inline constexpr std::uint64_t kChunkHeaderBytes = 8;
inline constexpr std::uint64_t kFormHeaderBytes = 12;
/// More chunks than any writer makes; keeps a damaged file from being walked for minutes.
inline constexpr int kMostChunks = 10000;

[[nodiscard]] inline std::string_view Characters(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// The header of a chunk at `offset`, if there can be one; the size of files of the AIFF family is big-endian.
[[nodiscard]] std::optional<ChunkHeader> ReadChunkHeader(ByteSource& source, std::uint64_t offset,
                                                         bool bigEndian = false);

/// Where the next chunk starts: odd sizes are padded, though some writers forget it.
[[nodiscard]] std::uint64_t NextChunk(ByteSource& source, const WaveChunk& chunk, bool bigEndian = false);

/// The chunks of a WAVE file that a recording is read from. The first of a kind counts, but for lists.
struct WaveChunks {
    std::optional<WaveChunk> format;
    std::optional<WaveData> data;
    std::optional<WaveChunk> cues;
    std::optional<WaveChunk> broadcast;
    bool playlist = false;
    std::vector<WaveChunk> lists;
};

/// Walks the chunks in any order (RIFF registration; EBU Tech 3306 for the 64-bit sizes of RF64 and BW64). Sizes that
/// cannot be are cut to the file; what does not look like a chunk ends the walk.
[[nodiscard]] WaveChunks WalkWaveChunks(ByteSource& source);

/// The content of a chunk of metadata, at most 16 MiB of it.
[[nodiscard]] std::vector<std::uint8_t> ReadWaveChunk(ByteSource& source, const WaveChunk& chunk);

}  // namespace quillon
