#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "norvik/private/EdfRecords.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/WideScale.h"

namespace quillon {

/// Where the samples of a block's channels lie: every record holds the same number of samples of each, one channel
/// after the other.
struct RecordLayout {
    std::uint64_t start = 0;  ///< byte of the block's first record
    std::uint64_t recordBytes = 0;
    std::uint64_t samplesPerRecord = 0;
    std::uint64_t sampleBytes = 2;       ///< 2 or 3, a signed number
    std::vector<std::uint64_t> offsets;  ///< of each channel's first sample in a record
    /// Of 24-bit samples, per channel: value = sample x perSample + offset.
    struct Units {
        double perSample = 1.0;
        double offset = 0.0;
    };
    std::vector<Units> units;
};

/// A block whose samples lie in records, as the EDF family stores them.
/// 16-bit samples are the codes; of 24-bit ones Prepare reads the whole block to choose what codes stand for.
class RecordBlock final : public FileBlock {
  public:
    RecordBlock(BlockDescription description, const std::shared_ptr<ByteSource>& source, RecordLayout layout);

    [[nodiscard]] bool FramesAreCheap() const override { return false; }

  protected:
    void FetchCodes(std::size_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    void FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    void FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    bool FetchExtremes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count, std::int32_t run,
                       std::span<RunExtremes* const> out) override;
    void ChooseScales() override;

  private:
    /// Called with the same stretch of every channel asked for: its first sample counted from the first one asked for,
    /// a pointer to the codes of each channel, and how many they are.
    using CodeVisitor =
        std::function<void(std::size_t position, std::span<const std::int16_t* const> codes, std::size_t count)>;
    void VisitCodes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                    const CodeVisitor& visitor);
    /// Codes of 24-bit samples, put into m_codes from `place` on.
    const std::int16_t* DecodeWide(std::size_t channel, const std::uint8_t* bytes, std::size_t samples,
                                   std::size_t place);

    RecordLayout m_layout;
    EdfRecords m_records;
    std::vector<WideScale> m_wide;      ///< of 24-bit samples, per channel; empty until they are chosen
    std::vector<std::int16_t> m_codes;  ///< of one stretch, where samples are wider
};

}  // namespace quillon
