#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "norvik/private/PieceBuffer.h"
#include "norvik/private/UnitSource.h"
#include "norvik/private/WideSamples.h"

namespace quillon {

/// A file of frames of numbers; every signal has some consecutive ones in each frame.
struct NumberFile {
    std::shared_ptr<ByteSource> source;   ///< the first frame begins at byte 0
    SampleKind kind = SampleKind::Int16;  ///< whole numbers
    std::size_t frameNumbers = 0;
    std::size_t runNumbers = 1;  ///< that a gathered signal has in each frame

    [[nodiscard]] std::size_t FrameBytes() const { return frameNumbers * SampleBytes(kind); }
};

struct GatheredSignal {
    std::size_t file = 0;
    std::size_t place = 0;  ///< numbers of a frame before those of the signal
};

/// Signals out of one or several files, as frames of one sample of each: of 16 bits, or of 32 where any signal has
/// more.
class GatheredSource final : public UnitSource {
  public:
    /// `samples` of every signal, which all files have.
    GatheredSource(std::vector<NumberFile> files, std::vector<GatheredSignal> signals, std::uint64_t samples);

    /// Whether 32 bits are needed.
    [[nodiscard]] static bool IsWideSet(const std::vector<NumberFile>& files);

  private:
    void ReadUnits(std::uint64_t first, std::size_t count, std::uint8_t* out) override;
    void ReadFile(std::size_t file, std::uint64_t first, std::size_t count, std::uint8_t* out);
    struct Range {
        std::size_t skipped = 0;  ///< samples of each signal in the first frame that are not wanted
        std::size_t count = 0;
    };
    void CopyTile(std::size_t file, const std::uint8_t* frames, const Range& samples, std::uint8_t* out);

    std::vector<NumberFile> m_files;
    std::vector<GatheredSignal> m_signals;
    PieceBuffer m_piece;
};

}  // namespace quillon
