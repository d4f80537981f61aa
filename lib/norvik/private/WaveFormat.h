#pragma once

#include <cstdint>
#include <span>

#include "base/Bilingual.h"
#include "norvik/private/FrameBlock.h"

namespace quillon {

/// How the samples of a WAVE file are stored, out of its "fmt " chunk.
struct WaveFormat {
    SampleKind kind = SampleKind::Int16;
    std::uint16_t channels = 0;
    std::uint32_t rate = 0;
    std::uint16_t frameBytes = 0;
    std::uint16_t bits = 0;  ///< of the samples, as the file states them
};

/// `chunk` is the content of the chunk as far as it is there, `offset` its place in the file.
/// Throws FormatError for compressed samples and for numbers that cannot be.
[[nodiscard]] WaveFormat ParseWaveFormat(std::span<const std::uint8_t> chunk, std::uint64_t offset);

}  // namespace quillon
