#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/SampleSpan.h"
#include "data/FilterCheckpoints.h"
#include "data/ShownChannels.h"
#include "nsp/FilterStream.h"

namespace quillon {

/// Makes the codes of shown channels that share one filter from the stored ones, from one sample of the block on in
/// order. The codes are the same whatever sample it begins at.
class ShownStream {
  public:
    /// The filter of the channels.
    struct Filter {
        nsp::FilterDesign design;
        FilterCheckpoints checkpoints;
    };

    /// `channels` are at least one, with equal filters; `commons` are those that they name. `filter` is null where
    /// there is none. All must outlive this object. `first` is a sample of the block.
    ShownStream(RecordingBlock& stored, std::vector<const ShownChannel*> channels,
                const std::vector<CommonSignal>& commons, Filter* filter, std::int32_t first);

    /// The sample that Read gives next.
    [[nodiscard]] std::int32_t Position() const { return m_ready.first; }
    /// Reads up to about `most` stored samples of every channel on the way to what Read gives next; false while more of
    /// it is left. Throws as Read does.
    bool Approach(std::int32_t most);
    /// The next `count` codes of every channel, which must lie inside the block; rows[c] has room for those of channel
    /// c. Throws what the block throws; the stream is of no use then.
    void Read(std::int32_t count, std::span<std::int16_t* const> rows);

  private:
    /// Feeds what is needed for the samples before `end`, as far as it can be told, or a part of it; returns how many
    /// stored samples of each channel.
    std::int32_t FeedPiece(std::int32_t end);
    void ReadStored(const SampleSpan& piece);
    void Feed(std::size_t count);
    [[nodiscard]] const std::int16_t* StoredAt(std::int16_t channel) const {
        return m_starts[static_cast<std::size_t>(channel - 1)];
    }
    void AddCommons(std::size_t count);
    void Append(const SampleSpan& ready, const std::vector<const float*>& values);

    RecordingBlock& m_stored;
    std::vector<const ShownChannel*> m_channels;
    const std::vector<CommonSignal>& m_commons;
    FilterCheckpoints* m_checkpoints = nullptr;
    std::unique_ptr<nsp::FilterStream> m_filter;
    bool m_usesCommons = false;
    std::vector<std::int16_t> m_needed;  ///< stored channels
    std::int32_t m_next;                 ///< stored sample to be fed next
    std::int32_t m_end;                  ///< behind the last one of the block

    std::vector<std::int16_t> m_codes;              ///< of a piece
    std::vector<const std::int16_t*> m_starts;      ///< in it, per stored channel; null where it is not needed
    std::ptrdiff_t m_step = 1;                      ///< from one sample of a channel to the next
    std::vector<std::vector<float>> m_sums;         ///< per channel, less its common signal
    std::vector<float> m_scaled;                    ///< of a channel shown in coarser codes
    std::vector<std::vector<float>> m_commonRows;   ///< per common signal
    SampleSpan m_ready;                             ///< made, not yet given
    std::size_t m_given = 0;                        ///< of the rows
    std::vector<std::vector<std::int16_t>> m_rows;  ///< per channel
};

}  // namespace quillon
