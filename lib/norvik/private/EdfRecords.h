#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "norvik/private/ByteSource.h"
#include "norvik/private/PieceBuffer.h"

namespace quillon {

/// Up to this size it is cheaper to read whole records than to leave out what lies between the parts.
constexpr std::uint64_t kSmallRecord = 8192;

/// Records of a fixed size, each of which holds a part of every signal at the same place.
///
/// The parts of one signal, joined over the records, are a stream of bytes. Visit walks a range of the streams of
/// several signals together, so that the file is read once and in order, in pieces of at most kPieceBytes.
class EdfRecords {
  public:
    /// `start` is the byte of the first record.
    EdfRecords(std::shared_ptr<ByteSource> source, std::uint64_t start, std::uint64_t recordBytes);

    /// Called with the same stretch of every stream: its position counted from the first byte asked for, a pointer to
    /// its bytes for each stream, and how many they are.
    using Visitor =
        std::function<void(std::uint64_t position, std::span<const std::uint8_t* const> streams, std::size_t bytes)>;

    /// Visits bytes first .. first+count-1 of the streams whose parts of `partBytes` bytes lie at `offsets` in a
    /// record, in order. A stretch ends at whole samples of 2, 3, 4 and 8 bytes, if `first` and `partBytes` do. Where
    /// all numbers are even, the bytes are aligned for 16-bit samples.
    void Visit(std::span<const std::uint64_t> offsets, std::uint64_t partBytes, std::uint64_t first,
               std::uint64_t count, const Visitor& visitor);

  private:
    /// What one call of Visit asks for.
    struct Request {
        std::span<const std::uint64_t> offsets;
        std::uint64_t low = 0;     ///< lowest of the offsets
        std::uint64_t spread = 0;  ///< from the lowest to the highest
        std::uint64_t partBytes = 0;
        std::uint64_t first = 0;
        std::uint64_t end = 0;
        const Visitor& visitor;
    };
    /// Visits the record that holds byte `at` of the streams, reading each stream's part by itself. Returns how many
    /// bytes of each.
    std::uint64_t VisitParts(const Request& request, std::uint64_t at);
    /// Visits as many records from byte `at` of the streams as one read may hold. Returns how many bytes of each.
    std::uint64_t VisitPiece(const Request& request, std::uint64_t at);
    const std::uint8_t* Read(PieceBuffer& buffer, std::uint64_t offset, std::uint64_t count);

    std::shared_ptr<ByteSource> m_source;
    std::uint64_t m_start;
    std::uint64_t m_recordBytes;
    PieceBuffer m_piece;
    std::vector<PieceBuffer> m_parts;  ///< one per stream, for parts that are read by themselves
    std::vector<const std::uint8_t*> m_streams;
};

}  // namespace quillon
