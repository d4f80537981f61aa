#pragma once

#include <cstdint>
#include <span>

#include "norvik/private/WaveChunks.h"

namespace quillon {

/// What is in front of the first chunk: two names and a size.
inline constexpr std::uint64_t kW64FormBytes = 40;

/// `start` holds the first bytes of a file.
[[nodiscard]] bool LooksLikeW64(std::span<const std::uint8_t> start);

/// The chunks of a W64 file, whose names are GUIDs and whose sizes have 64 bits; what they hold is that of WAVE files.
/// Throws FormatError for a size that cannot be where no data were found before it.
[[nodiscard]] WaveChunks WalkW64Chunks(ByteSource& source);

}  // namespace quillon
