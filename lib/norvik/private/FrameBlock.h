#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/PieceBuffer.h"
#include "norvik/private/WideSamples.h"
#include "norvik/private/WideScale.h"

namespace quillon {

/// Units per code of samples whose full scale is 1; for wide kinds the units per stored sample.
[[nodiscard]] double FullScaleUnit(SampleKind kind);

/// Where the frames of a file lie. A frame holds one sample of every channel and may be padded.
struct FrameLayout {
    SampleKind kind = SampleKind::Int16;
    std::uint64_t dataOffset = 0;  ///< of the first frame
    std::size_t frameBytes = 0;    ///< from one frame to the next; 1 to kPieceBytes
    std::size_t firstChannel = 0;  ///< place in the frame of the block's first channel; the others follow
    /// Bytes of files that are read for a frame, where frames are gathered out of larger ones; 0: frameBytes.
    std::size_t readBytes{};
};

/// A block of frames: some consecutive channels of every frame. Wide samples get their scales from a pass over the
/// block; nothing else reads more than the samples asked for.
class FrameBlock final : public FileBlock {
  public:
    FrameBlock(std::shared_ptr<ByteSource> source, const FrameLayout& layout, BlockDescription description);
    /// The same, of wide samples whose scales are known without a pass, one for each channel.
    FrameBlock(std::shared_ptr<ByteSource> source, const FrameLayout& layout, BlockDescription description,
               std::vector<WideCoding> coding);

    [[nodiscard]] bool FramesAreCheap() const override { return true; }
    [[nodiscard]] std::int32_t SamplesPerPiece() const override;

  private:
    void FetchCodes(std::size_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    void FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    void FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    bool FetchExtremes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count, std::int32_t run,
                       std::span<RunExtremes* const> out) override;
    [[nodiscard]] bool HasWideSamples() const override { return IsWide(m_layout.kind) && !m_known; }
    void Scan(std::int32_t first, std::int32_t count) override;
    void ChooseScales(double headroom) override;
    [[nodiscard]] std::int32_t QuickStretches() const override;

    /// Calls use(bytes, frames) for consecutive pieces of whole frames.
    using UsePiece = std::function<void(const std::uint8_t* bytes, std::size_t frames)>;
    void ForEachPiece(std::int32_t first, std::int32_t count, const UsePiece& use);
    /// Bytes from the start of a frame to a channel's sample.
    [[nodiscard]] std::size_t Place(std::size_t channel) const;
    [[nodiscard]] std::size_t ReadBytes() const { return std::max(m_layout.readBytes, m_layout.frameBytes); }
    /// Codes of one channel of the frames at `bytes`, written `step` apart.
    void Decode(std::size_t channel, const std::uint8_t* bytes, std::size_t frames, std::int16_t* out,
                std::size_t step) const;
    void ReduceStoredCodes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count,
                           std::int32_t run, std::span<RunExtremes* const> out);
    void ReduceDecoded(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count, std::int32_t run,
                       std::span<RunExtremes* const> out);

    std::shared_ptr<ByteSource> m_source;
    FrameLayout m_layout;
    std::vector<SeenSamples> m_seen;   ///< of wide kinds, by channel: what Scan has seen
    std::vector<WideCoding> m_coding;  ///< of wide kinds; empty until they are chosen
    bool m_known = false;              ///< what they are, from the beginning
    PieceBuffer m_piece;
};

struct FrameMark {
    std::uint64_t position = 0;  ///< sample index in the file
    std::u16string text;
    double duration = 0.0;  ///< seconds; 0 where the file tells none
};

/// Frames without a gap between them.
struct FrameRun {
    std::uint64_t first = 0;
    std::uint64_t count = 0;
    double startTime = 0.0;
};

/// A whole file of frames, before it is cut into blocks.
struct FrameRecording {
    FrameLayout layout;
    std::uint64_t frameCount = 0;
    double startTime = 0.0;
    double sampleRate = 0.0;
    std::u16string deviceName;
    std::vector<ChannelDescription> channels;  ///< all channels of a frame; numbers unique among each 32
    std::vector<FrameMark> marks;              ///< in order of position; those outside the frames are dropped
    std::vector<FrameRun> stretches{};         ///< in order; empty where all frames are one from `startTime` on
};

/// Makes the block of some consecutive channels of the frames from `firstFrame` on.
using MakeBlock = std::function<std::shared_ptr<FileBlock>(BlockDescription description, std::uint64_t firstFrame,
                                                           std::size_t firstChannel)>;

/// The blocks of a recording: 32 channels and 2^31 - 1 samples of one stretch each at most, ordered by time and then by
/// channel. Frames beyond the 32767th block are left out.
[[nodiscard]] std::vector<std::shared_ptr<FileBlock>> MakeBlocks(const FrameRecording& recording,
                                                                 const MakeBlock& make);

/// The same for frames as they lie in a file.
[[nodiscard]] std::vector<std::shared_ptr<FileBlock>> MakeFrameBlocks(const std::shared_ptr<ByteSource>& source,
                                                                      const FrameRecording& recording);

}  // namespace quillon
