#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/Bilingual.h"
#include "norvik/NorvikCore.h"
#include "norvik/private/ByteSource.h"
#include "norvik/private/WideScale.h"

namespace quillon {

/// Readers fetch stored data in pieces of about this many bytes, into one reused buffer.
inline constexpr std::size_t kPieceBytes = std::size_t{256} * 1024;
/// Channels of one block at most; further signals form further blocks.
inline constexpr std::size_t kBlockChannels = 32;
/// Samples per channel of one block at most; further samples form further blocks.
inline constexpr std::int64_t kBlockSamples = 2147483647;
/// Blocks of one recording at most, which are counted in 16 bits; what lies beyond is left out.
inline constexpr std::size_t kMostBlocks = 32767;

struct ChannelDescription {
    std::int16_t number = 0;       ///< acquisition channel number, 0 to 31
    std::int16_t inputNumber = 1;  ///< input on the device, from 1
    std::u16string title;
    std::u16string unit;
    /// value = code x scale + offset. Of samples wider than 16 bits: of the stored sample instead of its code.
    float scale = 1.0F;
    float offset = 0.0F;
};

struct MarkDescription {
    std::int32_t position = 0;  ///< sample index inside the block
    std::u16string text;
    double duration = 0.0;  ///< seconds; 0 where the file tells none
};

struct BlockDescription {
    std::u16string title;
    std::u16string deviceName;
    std::u16string blockName;
    double startTime = 0.0;
    double sampleRate = 0.0;
    std::int32_t sampleCount = 0;
    std::shared_ptr<const std::vector<ChannelDescription>> channels;  ///< blocks of many stretches share them
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
    void PrepareQuickly() final;
    bool PrepareMore() final;
    [[nodiscard]] bool IsProvisional() const final { return m_scales == Scales::Provisional; }
    [[nodiscard]] double PreparedShare() const final;
    [[nodiscard]] std::u16string Title() const override { return m_description.title; }
    [[nodiscard]] double StartTime() const final { return m_description.startTime; }
    [[nodiscard]] double SampleRate() const final { return m_description.sampleRate; }
    [[nodiscard]] std::int32_t SampleCount() const final { return m_description.sampleCount; }
    [[nodiscard]] std::int16_t ChannelCount() const final;
    [[nodiscard]] std::int16_t ChannelNumber(std::int16_t channel) const final;
    [[nodiscard]] std::u16string ChannelTitle(std::int16_t channel) const final;
    [[nodiscard]] std::u16string ChannelUnit(std::int16_t channel) const final;
    [[nodiscard]] float ChannelScale(std::int16_t channel) const final;
    [[nodiscard]] float ChannelOffset(std::int16_t channel) const final;
    [[nodiscard]] bool FillsCodes(std::int16_t channel) const final;
    std::int32_t ReadCodes(std::int16_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) final;
    std::int32_t ReadValues(std::int16_t channel, std::int32_t first, std::int32_t count, float* buffer) final;
    [[nodiscard]] std::int32_t MarkCount() const override;
    [[nodiscard]] std::int32_t MarkPosition(std::int32_t mark) const override;
    [[nodiscard]] std::u16string MarkText(std::int32_t mark) const override;
    [[nodiscard]] double MarkDuration(std::int32_t mark) const override { return Mark(mark).duration; }
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
    // A reader of wide samples gives them their scales by what it has seen of them.

    [[nodiscard]] virtual bool HasWideSamples() const { return false; }
    /// Takes account of a range of samples, and forgets earlier ones where it begins at sample 0. Where one cannot be
    /// read it throws ReadError, with those before it taken account of.
    virtual void Scan([[maybe_unused]] std::int32_t first, [[maybe_unused]] std::int32_t count) {}
    /// Sets all scales by what was scanned. `headroom` times what was seen fits into the codes.
    virtual void ChooseScales([[maybe_unused]] double headroom) {}
    /// How many stretches of 1/32 of a piece are scanned for provisional scales.
    [[nodiscard]] virtual std::int32_t QuickStretches() const { return 64; }
    void SetScale(std::size_t channel, const WideScale& scale);
    [[nodiscard]] std::size_t Channels() const { return m_description.channels->size(); }

    BlockDescription m_description;

  private:
    enum class Scales { None, Provisional, Final };
    struct ValueScale {
        float scale = 1.0F;
        float offset = 0.0F;
        bool fills = false;
    };

    void RequirePrepared() const;
    [[nodiscard]] ValueScale Scale(std::int16_t channel) const;
    /// Finishes the pass: its scales are the final ones.
    void EndPass();
    [[nodiscard]] const ChannelDescription& Channel(std::int16_t channel) const;
    [[nodiscard]] const MarkDescription& Mark(std::int32_t mark) const;
    void CheckRange(std::int32_t first, std::int32_t count) const;

    Scales m_scales = Scales::None;
    std::int32_t m_scanned = 0;            ///< samples of every channel that the pass has seen
    std::vector<ValueScale> m_wideScales;  ///< per channel, where samples are wide
};

/// How much of a file is read at once, in bytes, before it can be used and by each call of readMore.
struct ReadBudget {
    std::uint64_t opening = std::uint64_t{4} << 20;
    std::uint64_t step = 4 * kPieceBytes;
};

/// What a reader makes of a file.
struct RecordingContent {
    std::u16string format;  ///< short name, without a comma ("EDF+C")
    Bilingual info;         ///< one line: format, size, oddities ("EDF+C, 11 signals, 600 records of 1 s")
    std::vector<std::shared_ptr<FileBlock>> blocks;  ///< at least one
    /// Reads the next piece of what opening left out into this content, as Recording::ReadMore; empty where nothing was
    /// left out.
    std::function<bool(RecordingContent& content, std::int16_t block, std::int32_t nearSample)> readMore{};
    double share = 1.0;        ///< that is read
    std::int32_t version = 0;  ///< counts changes
};

}  // namespace quillon
