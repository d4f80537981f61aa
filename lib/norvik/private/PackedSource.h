#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "norvik/private/PieceBuffer.h"
#include "norvik/private/UnitSource.h"

namespace quillon {

/// How samples of 10 and 12 bits are packed, by the numbers that WFDB gives these formats.
enum class Packing {
    Format212,  ///< two of 12 bits in 3 bytes
    Format310,  ///< three of 10 bits in two words of 16, whose lowest bit is free
    Format311,  ///< three of 10 bits in a word of 32
};

/// Packed samples as numbers of 16 bits. The last group may be cut; the samples that it holds whole count.
class PackedSource final : public UnitSource {
  public:
    PackedSource(std::shared_ptr<ByteSource> stored, Packing packing);

  private:
    void ReadUnits(std::uint64_t first, std::size_t count, std::uint8_t* out) override;

    std::shared_ptr<ByteSource> m_stored;
    Packing m_packing;
    PieceBuffer m_piece;
};

}  // namespace quillon
