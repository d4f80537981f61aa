#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "app/Commands.h"
#include "app/GoToInput.h"
#include "app/Playback.h"
#include "data/Document.h"
#include "view/WaveformView.h"

namespace quillon {

/// The commands on view, selection and sound that need more than one of them.
class ViewCommands {
  public:
    /// All arguments must outlive this object.
    ViewCommands(const Document& document, WaveformView& view, Playback& playback)
        : m_document(document), m_view(view), m_playback(playback) {}

    // To be set by the owner.
    std::function<void(const ViewChange& change)> onChange;
    std::function<void()> onHistory;                     ///< the history of views may be empty now
    std::function<bool()> onStop;                        ///< ends work that is reported; false when there is none
    std::function<void()> onSelect;                      ///< a selection that is being dragged has to end
    std::function<void(std::int32_t sample)> onReadout;  ///< request for the readout of a sample

    /// A move by one column moves the end of the selection, if there is one.
    void MoveView(const Move& move);
    /// 0 fit the selection, 1 fit the block, 2 previous view.
    void ChangeView(int index);
    /// By its index in kPageLengths; behind them the whole block. `hovered`: see WaveformView::ZoomX.
    void SelectPage(int index, std::optional<std::int32_t> hovered);
    void GoToMark(bool next);
    /// Pins the sample that others are measured from: the `hovered` one, else the one gone to, else the middle one
    /// of the visible ones.
    void Pin(std::optional<std::int32_t> hovered);
    /// Reads out the sample some columns from the `hovered` one, else from the one gone to, else from the middle.
    void StepReadout(int columns, std::optional<std::int32_t> hovered);
    /// Of the menu's channel, or the current one.
    void StepLane(LaneStep step) { onChange(m_view.StepLane(MenuChannel(), step)); }
    /// Scrolls to a sample and shows its readout.
    void GoTo(std::int32_t sample);
    /// What was typed: the page is chosen, then a range selected, in view where it fits, or a sample gone to.
    void GoTo(const GoToMeaning& place);
    /// 0 the block, 1 the visible range, 2 nothing; during playback or work that is reported, 2 only stops that, and
    /// while a sample is pinned it removes the pin.
    void Select(int index);
    /// 0 the channel of the menu or the current one, 1 all, 2 stop.
    void Play(int index);

    /// The channel that the context menu was opened on, or else the current one.
    [[nodiscard]] std::int16_t MenuChannel() const {
        return m_menuChannel != 0 ? m_menuChannel : m_document.CurrentChannel();
    }
    /// 0: commands do not come from the context menu and apply to the current channel.
    void SetMenuChannel(std::int16_t channel) { m_menuChannel = channel; }

  private:
    /// The `hovered` sample, else the one gone to, else the middle one; none where no sample is visible.
    [[nodiscard]] std::optional<std::int32_t> PresentSample(std::optional<std::int32_t> hovered) const;

    const Document& m_document;
    WaveformView& m_view;
    Playback& m_playback;
    std::int16_t m_menuChannel = 0;
};

}  // namespace quillon
