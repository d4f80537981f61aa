#include "norvik/private/PieceBuffer.h"

namespace quillon {

namespace {

// A piece lies at the same place within a page of memory as within a page of the file. The system copies it out of its
// cache page by page; with source and target at neighbouring places of their pages that copy was seen to take up to
// three times as long, because the processor takes the later loads for reads of what has just been stored.
constexpr std::size_t kPage = 4096;

}  // namespace

const std::uint8_t* PieceBuffer::Read(ByteSource& source, std::uint64_t offset, std::size_t count) {
    const std::size_t needed = (count + 2 * kPage) / sizeof(std::int16_t);
    if (m_memory.size() < needed) m_memory.resize(needed);
    // Made of 16-bit numbers so that callers may read samples in place; bytes may be read in any object.
    auto* const memory = reinterpret_cast<std::uint8_t*>(m_memory.data());
    const std::size_t toPage = (kPage - reinterpret_cast<std::uintptr_t>(memory) % kPage) % kPage;
    std::uint8_t* const piece = memory + toPage + static_cast<std::size_t>(offset % kPage / 2 * 2);
    source.ReadExactly(offset, piece, count);
    return piece;
}

}  // namespace quillon
