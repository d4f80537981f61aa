#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "data/Document.h"
#include "view/DataRange.h"
#include "view/ExtremesCache.h"
#include "view/SceneBlocks.h"

namespace quillon {

/// What is known of the extremes of the blocks of a document's stretch. It is kept as long as the stretch is, also when
/// another of its blocks is loaded; all together take no more memory than those of one block may.
class StretchExtremes {
  public:
    /// The document must outlive this object.
    explicit StretchExtremes(const Document& document) : m_document(document) {}
    StretchExtremes(const StretchExtremes&) = delete;
    StretchExtremes& operator=(const StretchExtremes&) = delete;

    /// Of the loaded block; always the same object.
    [[nodiscard]] ExtremesCache& Loaded() { return m_loaded; }
    [[nodiscard]] RangeRecords& Ranges() { return m_ranges; }
    /// Of the loaded block as it is stored, which is often as it is shown.
    [[nodiscard]] RangeRecords& StoredRanges();
    /// See RangeRecords::ReadMissing.
    bool ReadStored(std::span<const std::int16_t> channels, const SampleSpan& seen);
    /// Of the other blocks of the stretch; valid until the document changes.
    [[nodiscard]] SceneBlocks Others();
    /// The loaded block, then the others.
    [[nodiscard]] SceneBlocks All();

    /// The loaded block is about to be closed.
    void LeaveBlock();
    /// Another block, or another stretch, is loaded. Returns whether it is one of the stretch that was left.
    bool BlockLoaded();
    /// The recording is about to be opened anew because its file has grown: what is known is kept for the blocks that
    /// are loaded then, as far as they begin with the same samples.
    void FileGrows();
    /// Scales have changed: what was found of codes of those blocks is forgotten.
    void Rescaled();

    /// Samples of the block of the stretch, other than the loaded one, that has most; 0 without others.
    [[nodiscard]] std::int32_t Fastest() const;
    /// Reads about a piece of the blocks other than the loaded one, beginning with what the axis shows, until their
    /// extremes are known. False when nothing is left.
    bool ReadOthers(const TimeAxis& axis);
    /// How much of them is known, 0 to 1.
    [[nodiscard]] double OthersShare() const;

  private:
    /// What is known of one of the blocks.
    struct Known {
        std::weak_ptr<RecordingBlock> block;
        std::vector<float> invScale;  ///< to which the codes belong
        std::vector<float> offsets;
        ExtremesCache extremes;
        RangeRecords ranges{extremes};
        bool complete = false;
    };
    /// What is known of a block of a file that has grown.
    struct Grown {
        std::int16_t index = 0;  ///< position in the recording, from 0
        std::vector<float> invScale;
        std::vector<float> offsets;
        ExtremesCache extremes;
    };
    [[nodiscard]] Known& Of(const ViewBlock& block);
    /// Gives the loaded blocks what FileGrows kept.
    void TakeGrown();
    [[nodiscard]] bool IsShownAsStored() const { return m_document.Block().block == m_document.Block().stored; }
    [[nodiscard]] ViewBlock StoredBlock() const;
    /// Divides the memory by the number of samples.
    void ShareMemory();

    const Document& m_document;
    ExtremesCache m_loaded;
    RangeRecords m_ranges{m_loaded};
    std::weak_ptr<RecordingBlock> m_loadedBlock;  ///< at the last BlockLoaded; none after LeaveBlock
    std::vector<float> m_invScale;                ///< of it
    std::vector<float> m_offsets;
    std::vector<std::unique_ptr<Known>> m_known;  ///< of the other blocks, and of those that were left
    std::u16string m_grownFile;                   ///< whose blocks these are
    std::vector<Grown> m_grown;                   ///< until the next block is loaded
};

}  // namespace quillon
