#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "norvik/private/PieceBuffer.h"
#include "norvik/private/UnitSource.h"

namespace quillon {

/// Frames of samples that are stored as differences of 8 bits to the sample of the same signal before, as numbers of 32
/// bits. What is reached for the first time is summed from the start of the file; sums are kept here and there, so that
/// it is quick afterwards.
class DifferenceSource final : public UnitSource {
  public:
    /// `signals`: which signal each sample of a frame is of. `initial`: what the first difference of each adds to.
    DifferenceSource(std::shared_ptr<ByteSource> stored, std::vector<std::size_t> signals,
                     std::vector<std::int32_t> initial);

  private:
    void ReadUnits(std::uint64_t first, std::size_t count, std::uint8_t* out) override;
    /// Sets the sums to those before a frame.
    void Seek(std::uint64_t frame);
    /// Sums the next frames, up to a place where sums are kept, into `out` unless it is null. Returns how many.
    std::size_t Advance(std::size_t count, std::uint8_t* out);

    std::shared_ptr<ByteSource> m_stored;
    std::vector<std::size_t> m_signals;
    std::uint64_t m_frame = 0;          ///< whose samples are summed next
    std::vector<std::uint32_t> m_sums;  ///< of each signal; sums beyond 32 bits wrap around
    std::vector<std::vector<std::uint32_t>> m_kept;
    PieceBuffer m_piece;
};

}  // namespace quillon
