#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "norvik/private/EdfRecords.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/SignalRecords.h"
#include "norvik/private/WideSamples.h"

namespace quillon {

/// Where the samples of a block's channels lie: every record holds the same number of samples of each, one channel
/// after the other.
struct RecordLayout {
    std::uint64_t recordBytes = 0;
    std::uint64_t samplesPerRecord = 0;
    SampleKind kind = SampleKind::Int16;
    std::vector<std::uint64_t> offsets;  ///< of each channel's first sample in a record
    std::vector<LinearUnits> units;      ///< of wide samples, per channel
};

/// A block whose samples lie in records, as the EDF family and GDF store them.
/// 16-bit samples are the codes; what those of wider ones stand for depends on the samples.
class RecordBlock : public FileBlock {
  public:
    /// `start` is the byte of the block's first record; `skipped` samples at its front belong to an earlier block.
    RecordBlock(BlockDescription description, const std::shared_ptr<ByteSource>& source, std::uint64_t start,
                std::shared_ptr<const RecordLayout> layout, std::uint64_t skipped = 0);

    [[nodiscard]] bool FramesAreCheap() const final { return false; }
    [[nodiscard]] std::int32_t SamplesPerPiece() const final;

  private:
    void FetchCodes(std::size_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) final;
    void FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) final;
    void FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) final;
    bool FetchExtremes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count, std::int32_t run,
                       std::span<RunExtremes* const> out) final;
    [[nodiscard]] bool HasWideSamples() const final { return IsWide(m_layout->kind); }
    void Scan(std::int32_t first, std::int32_t count) final;
    void ChooseScales(double headroom) final;
    [[nodiscard]] std::int32_t QuickStretches() const final;

    /// Called with the same stretch of every channel asked for: its first sample counted from the first one asked for,
    /// a pointer to the codes of each channel, and how many they are.
    using CodeVisitor =
        std::function<void(std::size_t position, std::span<const std::int16_t* const> codes, std::size_t count)>;
    void VisitCodes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                    const CodeVisitor& visitor);
    /// Codes of samples that are none as they lie there, put into m_codes from `place` on.
    const std::int16_t* Decode(std::size_t channel, const std::uint8_t* bytes, std::size_t samples, std::size_t place);

    std::shared_ptr<const RecordLayout> m_layout;
    EdfRecords m_records;
    std::uint64_t m_skipped;
    bool m_inPlace = false;             ///< samples are codes, and aligned
    std::vector<SeenSamples> m_seen;    ///< of wide samples, per channel: what Scan has seen
    std::vector<WideCoding> m_coding;   ///< of wide samples, per channel; empty until they are chosen
    std::vector<std::int16_t> m_codes;  ///< of one stretch, where samples are not used in place
};

}  // namespace quillon
