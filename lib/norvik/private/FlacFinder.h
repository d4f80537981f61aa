#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FlacFrame.h"
#include "norvik/private/FlacMetadata.h"
#include "norvik/private/PieceBuffer.h"

namespace quillon {

/// A frame found whole: samples first .. end-1 in bytes offset .. next-1 of the file.
struct FlacPlace {
    std::uint64_t first = 0;
    std::uint64_t end = 0;
    std::uint64_t offset = 0;
    std::uint64_t next = 0;
};

/// Samples that a frame may hold, and bytes of the file between which it may begin.
struct FlacRange {
    std::uint64_t firstSample = 0;
    std::uint64_t endSample = ~std::uint64_t{0};
    std::uint64_t firstByte = 0;
    std::uint64_t endByte = 0;
};

/// Finds whole frames in the bytes of a file. A frame counts when its check sums are right, it is like the others of
/// its stream, and its samples lie where they are looked for; whatever else looks like one is passed over.
class FlacFinder {
  public:
    /// Finds the first frame, which tells what the others are like. Throws FormatError where the file has none, or one
    /// of another number of channels than `metadata` has.
    FlacFinder(std::shared_ptr<ByteSource> source, const FlacMetadata& metadata);

    /// Bits of a sample.
    [[nodiscard]] unsigned Depth() const { return m_depth; }
    /// The first frame; empty at the end of the file where the stream holds nothing.
    [[nodiscard]] const FlacPlace& First() const { return m_first; }
    [[nodiscard]] ByteSource& Source() const { return *m_source; }

    /// The frame that begins at the range's first byte, decoded into `out`, which is undefined where there is none.
    [[nodiscard]] std::optional<FlacPlace> At(const FlacRange& range, FlacSamples& out);
    /// The first one that begins in the range; none where too many are met that turn out to be damaged.
    [[nodiscard]] std::optional<FlacPlace> Search(FlacRange range, FlacSamples& out);
    /// The last one of the file that ends at sample `most` or before it.
    [[nodiscard]] FlacPlace Last(std::uint64_t most, FlacSamples& out);

  private:
    void FindFirst(const FlacMetadata& metadata);
    [[nodiscard]] bool IsAlike(const FlacFrameHeader& header) const;
    /// The file's bytes from `offset` on: at least `count` where there are as many.
    std::span<const std::uint8_t> Bytes(std::uint64_t offset, std::size_t count);

    std::shared_ptr<ByteSource> m_source;
    unsigned m_channels;
    unsigned m_depth;
    bool m_known = false;  ///< what follows, and m_depth: out of the first frame
    bool m_variable = false;
    std::uint64_t m_numberScale = 1;  ///< samples that a frame's number counts
    std::uint64_t m_firstNumber = 0;  ///< sample number with which the stream begins
    FlacPlace m_first;
    std::uint64_t m_vainSamples = 0;  ///< decoded for nothing by the search under way
    PieceBuffer m_piece;
    std::uint64_t m_windowOffset = 0;
    std::span<const std::uint8_t> m_window;
};

}  // namespace quillon
