#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "data/DocumentSteps.h"
#include "data/FileStamp.h"
#include "data/QL_Types.h"
#include "data/ShownBlocks.h"
#include "data/ShownSettings.h"
#include "data/Stretch.h"
#include "data/UserServices.h"
#include "norvik/NorvikCore.h"

namespace quillon {

/// The open recording, its loaded block, the channels that are shown and the current channel, to which single-channel
/// commands apply. There are no change notifications: the caller knows what it has changed.
///
/// Channels count from 1, in the order of the block. A channel whose acquisition number exceeds the slots is never
/// shown.
///
/// Where all signals are wanted, those of the other blocks of the same stretch (see Stretch) have numbers behind the
/// channels of the loaded block; else there are none. A number of a signal up to Block().channelCount is that channel.
class Document {
  public:
    /// Both must outlive this object. `texts` supplies titles where a recording has none.
    Document(RecordingLibrary& library, const UserServices& texts) : m_library(library), m_texts(texts) {}

    [[nodiscard]] const ViewFile& File() const { return m_file; }
    [[nodiscard]] const ViewBlock& Block() const { return m_block; }
    [[nodiscard]] const ChannelSlots& Slots() const { return m_slots; }
    [[nodiscard]] std::int16_t CurrentChannel() const { return m_currentChannel; }
    /// How the blocks of the stretch are shown: what Block().block gives.
    [[nodiscard]] const ShownSettings& Shown() const { return m_shownAs; }
    /// Shows them otherwise from now on, those of other recordings too. Returns whether that changes any signal.
    bool ShowAs(const ShownSettings& settings);
    /// To be called when channels were shown or hidden: an average is that of the shown ones. Returns as ShowAs.
    bool Reshow();
    /// Whether a montage adds its pairs to the signals.
    void SetPairs(bool wanted) { m_pairs = wanted; }
    /// Whether the block stays of use beside those that are shown: stored, or made for other settings lately.
    [[nodiscard]] bool Keeps(const RecordingBlock* block) const { return m_shownBlocks.Keeps(block); }
    [[nodiscard]] bool IsSolo() const { return m_shownBeforeSolo.has_value(); }

    /// Whether that is the open file, under its name or one that differs in letter case only. `stamp` is the path's.
    [[nodiscard]] bool IsOpen(const std::u16string& path, const FileStamp& stamp) const;
    /// Closes what is open, opens a recording and loads a block of it, from 0, or the last one if there are fewer.
    /// False when it is refused: then no file is open, and File().refusal says why. `stamp` is that of the path from
    /// just before.
    bool OpenFile(const std::u16string& path, const FileStamp& stamp, std::int16_t block = 0);
    /// Sets the no-file state and closes the recording.
    void CloseCurrentFile();
    /// Loads the block at a position from 0 and prepares it quickly; -1: none. Library failures are not reported: every
    /// step runs, and a failed one leaves its field empty. The first channel becomes the current one, and a solo ends.
    void LoadBlock(std::int16_t index);
    /// Makes the next step of the pass that finds the final scales of the loaded block, then of the others, each ending
    /// with Done or DoneRescaled: what was drawn or computed from codes before is then to be made anew.
    PrepareStep PrepareMore();
    /// The block that PrepareMore goes on with; null where all scales are final.
    [[nodiscard]] const RecordingBlock* Provisional();
    /// Reads on in a recording that opening did not read completely, first near a sample of the loaded block. Solo, the
    /// shown channels and the current one stay. A block that grows is loaded again, and many marks are loaded, only
    /// from time to time, so that a step stays short.
    ReadStep ReadMore(std::int32_t nearSample);
    /// The lines of the block list without the first `after` ones: title or, where that is empty, start time, a tab,
    /// the number from 1.
    [[nodiscard]] std::vector<std::u16string> BlockTitles(int after = 0) const;

    /// The file that was opened or refused last; empty after it was closed.
    [[nodiscard]] const std::u16string& LastPath() const { return m_lastPath; }
    /// The files that the recording is read from besides its own; none without a recording.
    [[nodiscard]] std::vector<OtherFile> OtherFiles() const;
    /// What the stamps of LastPath and OtherFiles show. Without a user request (`asked` false) a file that was replaced
    /// or changed has to have the same stamp in two successive checks, since another program may still be writing. One
    /// that only became longer has grown at once, but not before all is known of what was there: else it would never
    /// be.
    [[nodiscard]] FileChange ChangeOf(const RecordingStamp& now, bool asked);
    /// A check has found a change, which another check has to confirm.
    [[nodiscard]] bool ChangePending() const { return m_seen.own.known; }
    /// Reloads the open file at the same block (the last one if there are fewer) with the same channels shown. False
    /// when it is refused; it then stays open unchanged, and the library's LastErrorText gives the reason.
    bool Reload(const RecordingStamp& now);

    /// Whether the loaded block covers the same stretch of the recording as the block that was loaded before it.
    [[nodiscard]] bool CoversTheSame() const { return m_coversTheSame; }
    /// Whether the signals of the other blocks of the stretch are wanted. A change ends a solo.
    void SetAllSignals(bool all);
    [[nodiscard]] bool AllSignals() const { return m_allSignals; }
    /// Signals are numbered from 1 to this.
    [[nodiscard]] std::int16_t SignalCount() const;
    [[nodiscard]] Signal GetSignal(std::int16_t number) const;
    /// The numbers of all signals in the order of the recording.
    [[nodiscard]] std::vector<std::int16_t> SignalOrder() const;
    /// How many there are where all signals are wanted, whether or not they are; looks at the block's neighbours.
    [[nodiscard]] int StretchSignals() const;
    /// Empty unless all signals are wanted.
    [[nodiscard]] const std::vector<OtherBlock>& OtherBlocks() const { return m_stretch.Others(); }

    /// Check marks of signals stay with them when another block of the stretch is loaded.
    [[nodiscard]] bool IsShown(std::int16_t signal) const;
    /// These end a solo: the user's later choice takes precedence. All are those of SignalCount.
    void Show(std::int16_t signal, bool shown);
    void ShowAll(bool shown);
    void InvertShown();
    /// Shows one signal alone; without one, restores those shown before.
    void Solo(std::optional<std::int16_t> signal);
    void ChooseChannel(std::int16_t channel) { m_currentChannel = channel; }

  private:
    /// Of the slots and of the other blocks.
    struct ShownSignals {
        ChannelFlags slots;
        Stretch::Shown others;
    };
    void EndSolo();
    [[nodiscard]] ChannelSlot* Slot(std::int16_t channel);
    [[nodiscard]] ChannelFlags ShownFlags() const;
    void SetShown(const ChannelFlags& shown);
    [[nodiscard]] ShownSignals GetShown() const { return {ShownFlags(), m_stretch.AllShown()}; }
    void FindStretch();
    void KeepShown();
    void Adopt(std::shared_ptr<Recording> recording, std::int16_t block);
    void FillBlock();
    void LoadChannel(std::int16_t channel);
    void LoadMarks();

    RecordingLibrary& m_library;
    const UserServices& m_texts;
    ViewFile m_file;
    ViewBlock m_block;
    ChannelSlots m_slots;
    std::int16_t m_currentChannel = 1;
    std::optional<ShownSignals> m_shownBeforeSolo;
    Stretch m_stretch;
    ShownSettings m_shownAs;
    ShownBlocks m_shownBlocks;
    bool m_pairs = false;
    bool m_allSignals = false;
    bool m_coversTheSame = false;
    std::optional<std::size_t> m_place;  ///< in its stretch, of the block whose flags the slots have
    std::int32_t m_marksVersion = 0;     ///< of the recording when the marks were loaded
    double m_marksShare = 0.0;           ///< that was read of it then
    std::u16string m_lastPath;
    RecordingStamp m_stamp;  ///< from just before the recording was opened; of other files, from when they were
    RecordingStamp m_seen;   ///< stamp at the last check that found a change
};

}  // namespace quillon
