#pragma once

#include <functional>
#include <string>

#include "data/Document.h"
#include "data/win/ChannelLists.h"

namespace quillon {

/// The lists of blocks and channels, with the check boxes that say which channels are shown.
class RecordingPane {
  public:
    /// The document must outlive this object.
    explicit RecordingPane(Document& document) : m_document(document) {}

    // To be set by the owner.
    std::function<void(int index)> onBlock;  ///< the user has chosen a block, from 0; -1: none
    std::function<void()> onShown;           ///< the set of shown channels has changed
    std::function<void()> onChannel;         ///< the user has chosen the current channel

    /// Sets its controls. Until then the block titles are kept for them.
    void Attach(HWND blocks, HWND channels, int dpi);
    /// Another recording is open.
    void FillBlocks();
    /// More blocks of the same recording are known, or `titles` have changed.
    void BlocksChanged(bool titles) {
        titles ? FillBlocks() : m_blocks.Append(m_document.BlockTitles(m_blocks.Count()));
    }
    /// Another block is loaded; `keepsChannel`: the current channel is the one of before.
    void FillChannels(bool keepsChannel);
    /// The line of the loaded block.
    [[nodiscard]] std::u16string BlockLine() const {
        return Narrow16(m_blocks.Text(m_document.File().currentBlockIndex));
    }
    void ClickBlock() { onBlock(m_blocks.Selected()); }
    /// A notification of the list of channels.
    void OnNotify(const NMHDR* header);
    /// Makes a channel the current one, as a click on it in the list does.
    void Choose(std::int16_t channel);
    /// 0 all, 1 none, 2 those that are not.
    void SetAllShown(int index);
    /// Shows a channel alone, or all those again that were shown before.
    void ShowAlone(std::int16_t channel);
    /// The list of channels gets the focus: makes the current item show it.
    void ShowFocus() const { m_channels.ShowFocus(m_document.CurrentChannel() - 1); }
    void FitColumns() const { m_channels.FitColumns(); }

  private:
    Document& m_document;
    BlockList m_blocks;
    ChannelList m_channels;
    bool m_channelByKey = false;     ///< the channel list is handling a key, which may change the chosen channel
    bool m_channelReported = false;  ///< the current click has already been reported by LVN_ITEMCHANGED
};

}  // namespace quillon
