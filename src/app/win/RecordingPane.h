#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/win/MarksPane.h"
#include "data/win/ChannelLists.h"
#include "format/QL_Format.h"

namespace quillon {

/// The lists of blocks, of marks and of channels; the last holds all signals (see Document) with the check boxes that
/// say which are shown.
class RecordingPane {
  public:
    /// `parts` must outlive this object.
    explicit RecordingPane(const RoomParts& parts)
        : marks(parts),
          m_document(parts.document),
          m_view(parts.view),
          m_format(parts.format),
          m_density(parts.density) {}

    // To be set by the owner.
    std::function<void(int index)> onBlock;                          ///< the user has chosen a block, from 0; -1: none
    std::function<void()> onShown;                                   ///< the set of shown channels has changed
    std::function<void()> onChannel;                                 ///< the user has chosen the current channel
    std::function<void(POINT screen, std::int16_t channel)> onMenu;  ///< request for the menu of a channel

    MarksPane marks;

    /// Finds its controls in the window. Until then the block titles are kept for them.
    void Attach(HWND window);
    /// The lists have the font of another density.
    void DensityChanged();
    /// Another recording is open.
    void FillBlocks();
    /// More blocks of the same recording are known, or `titles` have changed.
    void BlocksChanged(bool titles) {
        titles ? FillBlocks() : m_blocks.Append(m_document.BlockTitles(m_blocks.Count()));
    }
    /// Another block is loaded, or there are other signals; `keepsChannel`: the current channel is the one of before.
    void FillChannels(bool keepsChannel);
    /// The line of the loaded block.
    [[nodiscard]] std::u16string BlockLine() const {
        return Narrow16(m_blocks.Text(m_document.File().currentBlockIndex));
    }
    /// A command of one of its controls.
    void OnCommand(int id, int notification);
    /// A notification of one of its controls.
    void OnNotify(const NMHDR* header);
    /// Makes a channel of the loaded block the current one, as a click on it in the list does; a signal of another
    /// block is not taken.
    void Choose(std::int16_t channel);
    /// 0 all, 1 none, 2 those that are not.
    void SetAllShown(int index);
    /// Shows a channel alone, or all those again that were shown before.
    void ShowAlone(std::int16_t channel);
    /// Requests the menu of the line that has the keyboard, if one of the lists with menus has it; else false.
    bool OpenMenu() const;
    /// The traces have other colours.
    void LookChanged();
    /// Shows the page of marks for a recording that has nothing else.
    void OfferMarksOnly() const;
    /// The list of channels gets the focus: makes the current item show it.
    void ShowFocus() const { m_channels.ShowFocus(ItemOf(m_document.CurrentChannel())); }
    void FitColumns() const {
        m_channels.FitColumns();
        marks.FitColumns();
    }

  private:
    void OnChannels(const NMHDR* header);
    [[nodiscard]] ImageList TraceIcons() const;
    [[nodiscard]] int ItemOf(std::int16_t signal) const;

    Document& m_document;
    const WaveformView& m_view;
    const FormatOptions& m_format;
    const ScreenDensity& m_density;
    std::vector<std::int16_t> m_signals;  ///< of the lines of the list of channels
    BlockList m_blocks;
    ChannelList m_channels;
    bool m_channelByKey = false;     ///< the channel list is handling a key, which may change the chosen channel
    bool m_channelReported = false;  ///< the current click has already been reported by LVN_ITEMCHANGED
};

}  // namespace quillon
