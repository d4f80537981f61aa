#pragma once

#include <cstdint>
#include <vector>

#include "norvik/private/ByteSource.h"

namespace quillon {

/// The reused buffer that a reader fetches pieces of its file into.
class PieceBuffer {
  public:
    /// Reads exactly `count` bytes; they stay valid until the next call. Where `offset` is even they are aligned for
    /// 16-bit samples. Throws ReadError.
    const std::uint8_t* Read(ByteSource& source, std::uint64_t offset, std::size_t count);

  private:
    std::vector<std::int16_t> m_memory;
};

}  // namespace quillon
