#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "norvik/private/FileBlock.h"
#include "norvik/private/FlacFrames.h"
#include "norvik/private/WideSamples.h"

namespace quillon {

/// A block of the samples of a FLAC file, full scale at 1. Up to 16 bits they are the codes; wider ones get their
/// scales from a pass over the block. Samples of damaged frames cannot be read, and do not count in that pass.
class FlacBlock final : public FileBlock {
  public:
    /// `first`: the block's first sample in the file. The blocks of a file share its frames.
    FlacBlock(std::shared_ptr<FlacFrames> frames, std::uint64_t first, BlockDescription description);

    [[nodiscard]] bool FramesAreCheap() const override { return true; }

  private:
    void FetchCodes(std::size_t channel, std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    void FetchFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    void FetchRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) override;
    bool FetchExtremes(std::span<const std::size_t> channels, std::int32_t first, std::int32_t count, std::int32_t run,
                       std::span<RunExtremes* const> out) override;
    [[nodiscard]] bool HasWideSamples() const override;
    void Scan(std::int32_t first, std::int32_t count) override;
    void ChooseScales(double headroom) override;
    [[nodiscard]] std::int32_t QuickStretches() const override { return 8; }

    /// Some consecutive samples of one frame.
    struct Part {
        const FlacSamples* samples = nullptr;  ///< null: they cannot be read
        std::size_t from = 0;
        std::size_t count = 0;
        FlacFrames::Stretch stretch;
    };
    using UsePart = std::function<void(const Part& part)>;
    void ForEachPart(std::int32_t first, std::int32_t count, const UsePart& use);
    /// The same; throws ReadError where samples cannot be read.
    void ForEachWholePart(std::int32_t first, std::int32_t count, const UsePart& use);
    void Decode(const Part& part, std::size_t channel, std::int16_t* codes) const;

    std::shared_ptr<FlacFrames> m_frames;
    std::uint64_t m_first;
    std::vector<SeenSamples> m_seen;    ///< of wide samples, by channel: what Scan has seen
    std::vector<WideScale> m_wide;      ///< of wide samples, by channel; empty until they are chosen
    std::vector<std::int16_t> m_codes;  ///< of one part
};

}  // namespace quillon
