#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "norvik/private/FlacFrames.h"
#include "norvik/private/UnitSource.h"

namespace quillon {

/// The samples of a FLAC file as frames of numbers of 16 bits or, where they have more, of 32. Samples of damaged parts
/// cannot be read.
class FlacSource final : public UnitSource {
  public:
    /// Throws FormatError for a file that cannot be read.
    [[nodiscard]] static std::shared_ptr<FlacSource> Open(const std::shared_ptr<ByteSource>& stored);

    [[nodiscard]] std::size_t Channels() const { return m_channels; }
    /// Bits of a sample.
    [[nodiscard]] unsigned Depth() const { return m_depth; }
    /// Bytes of a number.
    [[nodiscard]] std::size_t Width() const { return UnitBytes() / m_channels; }

  private:
    FlacSource(std::shared_ptr<ByteSource> stored, std::size_t channels, const FlacFrames& frames);
    void ReadUnits(std::uint64_t first, std::size_t count, std::uint8_t* out) override;

    std::shared_ptr<ByteSource> m_stored;
    std::size_t m_channels;
    unsigned m_depth;
    /// Made at the first read, because a recording may have more files than are ever looked at.
    std::unique_ptr<FlacFrames> m_frames;
};

}  // namespace quillon
