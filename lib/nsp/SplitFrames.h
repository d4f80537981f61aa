#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace quillon::nsp {

/// Frames of 16-bit samples to one row of samples per channel. `frames` points to the first channel's sample of the
/// first frame, at any address; a frame is `frameBytes` long. Row c, of `count` samples, starts at rows + c x
/// rowLength.
void SplitFrames(const std::uint8_t* frames, std::size_t frameBytes, std::size_t channels, std::size_t count,
                 std::int16_t* rows, std::size_t rowLength);

/// The reverse: `count` frames of one sample of every row, frameLength samples from one to the next.
void JoinRows(std::span<const std::int16_t* const> rows, std::size_t count, std::int16_t* frames,
              std::size_t frameLength);

}  // namespace quillon::nsp
