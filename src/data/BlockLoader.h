#pragma once

#include <cstdint>
#include <string>

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
    /// selected. Nothing at all happens when it is the open file. A refused file leaves blocks and channels empty and
    /// says why in "Status".
    void OpenFile(const std::u16string& folder, const std::u16string& name, const std::u16string& pattern);

    /// Sets the no-file state and closes the recording.
    void CloseCurrentFile();

    /// Loads the block at a list position (from 0; -1: none). Library failures are not reported: every step runs, and a
    /// failed one leaves its field empty.
    void LoadBlock(std::int16_t index);

  private:
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
};

}  // namespace quillon
