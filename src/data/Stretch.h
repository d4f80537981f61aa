#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "data/BlockLoading.h"
#include "data/QL_Types.h"
#include "data/UserServices.h"

namespace quillon {

/// A flag for every channel slot.
using ChannelFlags = std::bitset<kSlotCount>;

/// Another block of the stretch that the loaded one covers.
struct OtherBlock {
    ViewBlock block;                  ///< without its marks
    std::vector<ChannelTexts> texts;  ///< per channel
    std::int16_t index = 0;           ///< position in the recording, from 0; -1: the pairs of a montage
    std::int16_t before = 0;          ///< number of the signal before its first channel, see Document
    std::size_t place = 0;            ///< among the blocks of the stretch, the loaded one included; from 0
    [[nodiscard]] bool IsMontage() const { return index < 0; }
};

/// What there is of a signal; valid until the document changes.
struct Signal {
    const ViewBlock& block;
    std::int16_t channel;  ///< of that block, from 1
    const std::u16string& title;
    const std::u16string& unit;
    bool shown;
};

/// The other blocks of a recording that cover the same stretch of time as the loaded one, and which of their channels
/// are shown. A recording is cut into blocks where its signals have several rates, or are more than a block can hold.
///
/// The blocks of a stretch follow each other in the recording. They start at the same time, to half a sample of the
/// faster one, and their durations differ by less than a sample of the slower one.
class Stretch {
  public:
    static constexpr int kMostSignals = 512;

    /// Finds the stretch of a block that is loaded, at a position from 0; looks at that block's neighbours only, and
    /// reads no more than PrepareQuickly does. Returns whether there are other blocks than before.
    bool Find(Recording& recording, std::int16_t index, const ViewBlock& loaded, const UserServices& texts);
    /// The signals that the stretch has then, the loaded block's included; reads nothing.
    [[nodiscard]] static int CountSignals(Recording& recording, std::int16_t index, const ViewBlock& loaded);
    /// Whether two blocks of a recording start at the same time and end together, see above.
    [[nodiscard]] static bool CoverTheSame(const ViewBlock& one, const ViewBlock& other);
    /// The block of a montage's pairs, null for none, becomes the last of the others, or replaces the one that is; its
    /// signals stand first in the order. Returns whether that is a change. Find and Clear take it away.
    bool SetMontage(const ViewBlock& loaded, std::shared_ptr<RecordingBlock> pairs, const UserServices& texts);
    /// There are no other blocks; which channels are shown is kept.
    void Clear();

    /// In the order of the recording. References stay valid until Find returns true, or Clear.
    [[nodiscard]] const std::vector<OtherBlock>& Others() const { return m_others; }
    [[nodiscard]] std::vector<OtherBlock>& Others() { return m_others; }
    /// The block of a signal above the loaded block's channels; null where there is none.
    [[nodiscard]] const OtherBlock* Of(std::int16_t number) const;
    /// Signals of the other blocks.
    [[nodiscard]] std::int16_t Count() const { return m_count; }
    /// The numbers of all signals of the stretch in the order of the recording, which counts inputs through all blocks
    /// where they are told apart so; else block after block.
    [[nodiscard]] const std::vector<std::int16_t>& Order() const { return m_order; }
    /// The first block whose scales are not final; null where all are.
    [[nodiscard]] OtherBlock* Provisional();
    /// The loaded block among the blocks of the stretch, from 0.
    [[nodiscard]] std::size_t Place() const { return m_place; }

    /// Which channels are shown, by the place of their block, so that it holds for all stretches of a recording.
    using Shown = std::vector<ChannelFlags>;
    [[nodiscard]] const Shown& AllShown() const { return m_shown; }
    void SetAllShown(Shown shown) { m_shown = std::move(shown); }
    [[nodiscard]] ChannelFlags ShownAt(std::size_t place) const;
    void SetShownAt(std::size_t place, const ChannelFlags& shown);
    /// Of a signal of another block. A channel whose acquisition number exceeds the slots is never shown.
    [[nodiscard]] bool IsShown(std::int16_t number) const;
    void Show(std::int16_t number, bool shown);

  private:
    /// Of a montage, above those of all blocks.
    static constexpr std::size_t kMontagePlace = kMostSignals;
    [[nodiscard]] bool HasMontage() const { return !m_others.empty() && m_others.back().IsMontage(); }
    void Add(OtherBlock other, const ViewBlock& loaded, const UserServices& texts);
    void FindOrder(const ViewBlock& loaded);

    std::vector<OtherBlock> m_others;
    std::vector<std::int16_t> m_order;
    std::size_t m_place = 0;
    std::int16_t m_count = 0;
    Shown m_shown;  ///< by place; all of those behind the last one
};

}  // namespace quillon
