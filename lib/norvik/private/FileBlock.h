#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/Bilingual.h"
#include "norvik/NorvikCore.h"
#include "norvik/private/ByteSource.h"

namespace quillon {

/// Readers fetch stored data in pieces of about this many bytes, into one reused buffer.
inline constexpr std::size_t kPieceBytes = std::size_t{256} * 1024;
/// Channels of one block at most; further signals form further blocks.
inline constexpr std::size_t kBlockChannels = 32;
/// Samples per channel of one block at most; further samples form further blocks.
inline constexpr std::int64_t kBlockSamples = 2147483647;

struct ChannelDescription {
    std::int16_t number = 0;       ///< acquisition channel number, 0 to 31
    std::int16_t inputNumber = 1;  ///< input on the device, from 1
    std::u16string title;
    std::u16string unit;
    float scale = 1.0F;
    float offset = 0.0F;
};

struct MarkDescription {
    std::int32_t position = 0;  ///< sample index inside the block
    std::u16string text;
};

struct BlockDescription {
    std::u16string title;
    std::u16string deviceName;
    std::u16string blockName;
    double startTime = 0.0;
    double sampleRate = 0.0;
    std::int32_t sampleCount = 0;
    std::vector<ChannelDescription> channels;
    /// In order of position; the blocks of one stretch share them. Null: none.
    std::shared_ptr<const std::vector<MarkDescription>> marks;
};

/// A block of a file: answers every question out of its description and checks every argument, so that a reader's own
/// class only has to fetch codes. Throws std::out_of_range for a channel, mark or range outside the block,
/// std::logic_error for scales and samples of a block that is not prepared.
class FileBlock : public RecordingBlock {
  public:
    explicit FileBlock(BlockDescription description);

    void Prepare() final;
    [[nodiscard]] std::u16string Title() const final { return m_description.title; }
    [[nodiscard]] double StartTime() const final { return m_description.startTime; }
    [[nodiscard]] double SampleRate() const final { return m_description.sampleRate; }
    [[nodiscard]] std::int32_t SampleCount() const final { return m_description.sampleCount; }
    [[nodiscard]] std::int16_t ChannelCount() const final;
    [[nodiscard]] std::int16_t ChannelNumber(std::int16_t channel) const final;
    [[nodiscard]] std::u16string ChannelTitle(std::int16_t channel) const final;
    [[nodiscard]] std::u16string ChannelUnit(std::int16_t channel) const final;
    [[nodiscard]] float ChannelScale(std::int16_t channel) const final;
    [[nodiscard]] float ChannelOffset(std::int16_t channel) const final;
    std::int32_t ReadCodes(std::int16_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) final;
    std::int32_t ReadValues(std::int16_t channel, std::int32_t first, std::int32_t count, float* buffer) final;
    [[nodiscard]] std::int32_t MarkCount() const final;
    [[nodiscard]] std::int32_t MarkPosition(std::int32_t mark) const final;
    [[nodiscard]] std::u16string MarkText(std::int32_t mark) const final;
    [[nodiscard]] std::u16string DeviceName() const final { return m_description.deviceName; }
    [[nodiscard]] std::u16string BlockName() const final { return m_description.blockName; }
    [[nodiscard]] std::int16_t InputNumber(std::int16_t channel) const final;
    std::int32_t ReadFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) final;
    std::int32_t ReadRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) final;
    bool ColumnExtremes(std::span<const std::int16_t> channels, std::int32_t first, std::int32_t count,
                        std::int32_t run, std::span<RunExtremes* const> out) final;

  protected:
    // Arguments are checked and channels count from 0 in what follows; counts are above 0.
    virtual void FetchCodes(std::size_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) = 0;
    virtual void FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) = 0;
    virtual void FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) = 0;
    /// `channels` is not empty. Every sample of the range is reduced as RecordingBlock::ColumnExtremes says.
    virtual bool FetchExtremes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                               std::int32_t run, std::span<RunExtremes* const> out) = 0;
    /// Called once, before anything is fetched: a reader of wide samples sets their scales and offsets here.
    virtual void ChooseScales() {}

    BlockDescription m_description;

  private:
    void RequirePrepared() const;
    [[nodiscard]] const ChannelDescription& Channel(std::int16_t channel) const;
    [[nodiscard]] const MarkDescription& Mark(std::int32_t mark) const;
    void CheckRange(std::int32_t first, std::int32_t count) const;

    bool m_prepared = false;
};

/// What a reader makes of a file.
struct RecordingContent {
    std::u16string format;  ///< short name, without a comma ("EDF+C")
    Bilingual info;         ///< one line: format, size, oddities ("EDF+C, 11 signals, 600 records of 1 s")
    std::vector<std::shared_ptr<FileBlock>> blocks;  ///< at least one
};

}  // namespace quillon
