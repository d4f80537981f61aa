#pragma once

#include <cstdint>
#include <string>

#include "data/FileStamp.h"
#include "data/NorvikCore.h"
#include "data/QL_Types.h"
#include "data/UserServices.h"

namespace quillon {

/// What opening and loading ask of the window: its block list, and to follow what was loaded.
class LoaderHost {
  public:
    virtual ~LoaderHost() = default;
    /// Forgets what was drawn and computed for the block shown so far (waveform and spectrum).
    virtual void ResetViewState() = 0;
    virtual void StopSound() = 0;
    [[nodiscard]] virtual std::int32_t BlockItemCount() const = 0;
    /// Positions in the list count from 0.
    virtual void RemoveBlockItem(std::int32_t position) = 0;
    /// Rewrites the item in place; adds it when `position` equals the number of items.
    virtual void SetBlockItem(std::int32_t position, const std::u16string& text) = 0;
    /// -1 when none is selected.
    [[nodiscard]] virtual std::int32_t SelectedBlockItem() const = 0;
    /// Selects the item, which loads its block as a click on it does.
    virtual void SelectBlockItem(std::int32_t position) = 0;
    [[nodiscard]] virtual FileStamp StampOf(const std::u16string& path) const = 0;
    /// A recording of this folder was opened while a specific file type was listed.
    virtual void OfferFolder(const std::u16string& folder) = 0;
    /// Shows the loaded block, or the empty view when none is loaded.
    virtual void ShowBlock() = 0;
};

/// Opens recordings and loads their blocks into the view-state records. Refers to everything, owns nothing.
class BlockLoader {
  public:
    BlockLoader(RecordingLibrary& library, ViewFile& file, ViewBlock& block, ChannelSlots& slots,
                UserServices& services, LoaderHost& host)
        : m_library(library), m_file(file), m_block(block), m_slots(slots), m_services(services), m_host(host) {}

    /// What a click on a file does. `folder` with or without a trailing backslash; `name` empty when no file is
    /// selected. Nothing at all happens when it is the open file, in any letter case that leads to it. A refused file
    /// leaves blocks and channels empty and says why in "Status".
    void OpenFile(const std::u16string& folder, const std::u16string& name, const std::u16string& pattern);

    /// Whether the file that was opened or refused last is another one now, or was written to. One look in passing
    /// (`asked` false) is not enough for that: others may still be writing, so the file has to be the same at two.
    [[nodiscard]] bool HasChanged(bool asked);
    /// A look has found a change, and another one is due.
    [[nodiscard]] bool ChangePending() const { return m_seen.known; }
    /// Opens that file anew: the open one at the same block (the last one, where there are fewer), one that was refused
    /// as by a click. False when the open one is refused now; it stays open as it is, and LastErrorText of the library
    /// says why.
    bool Reload();

    /// Sets the no-file state and closes the recording.
    void CloseCurrentFile();

    /// Loads the block at a list position (from 0; -1: none). Library failures are not reported: every step runs, and a
    /// failed one leaves its field empty.
    void LoadBlock(std::int16_t index);

  private:
    /// The file that was opened or refused last, as it was just before that.
    struct Attempt {
        std::u16string folder;
        std::u16string name;
        std::u16string pattern;
        FileStamp stamp;
        [[nodiscard]] std::u16string Path() const;
    };
    [[nodiscard]] bool IsOpen(const std::u16string& path) const;
    void Take(std::shared_ptr<Recording> recording, std::int16_t block);
    void FillBlockList();
    void ClearBlockList();
    void LoadChannel(std::int16_t channel);
    void LoadMarks();

    RecordingLibrary& m_library;
    ViewFile& m_file;
    ViewBlock& m_block;
    ChannelSlots& m_slots;
    UserServices& m_services;
    LoaderHost& m_host;
    Attempt m_attempt;
    FileStamp m_seen;  ///< at the last look, where that found a change
};

}  // namespace quillon
