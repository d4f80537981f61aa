#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/win/Win32.h"
#include "base/win/WinHandle.h"

namespace quillon {

/// The list of blocks: one line per block, its text and its number in a second column. It can be filled before its
/// control exists. Positions count from 0; only an existing line may be selected; the text of any other is empty.
class BlockList {
  public:
    void Attach(HWND list);
    /// For the font that the control has now.
    void SetTabStop() const;
    /// Lines are rewritten in place, so that the list stays where it is scrolled to unless many change.
    void Fill(const std::vector<std::u16string>& lines);
    /// Adds lines at the end; the selected one stays.
    void Append(const std::vector<std::u16string>& lines);
    [[nodiscard]] int Count() const { return static_cast<int>(m_lines.size()); }
    /// -1: none.
    [[nodiscard]] int Selected() const;
    void Select(int position);
    [[nodiscard]] std::wstring Text(int position) const;

  private:
    /// Adds the lines from this one on to the control.
    void AddToList(std::size_t first);

    HWND m_list = nullptr;
    std::vector<std::wstring> m_lines;
    int m_selected = -1;  ///< used until the control exists
};

/// Where a menu of a line of a list view belongs that was asked for by a key, on the screen.
[[nodiscard]] POINT BelowLine(HWND list, int item);

/// A line of the list of channels.
struct ChannelLine {
    std::u16string title;
    std::u16string unit;
    std::u16string rate;  ///< empty where it is that of the loaded block
    std::int16_t number;  ///< of the channel in its block, by which its trace is coloured
    bool shown;
};

/// The list of channels, each with a check box that says whether it is shown, the colour of its trace as icon, its
/// title, its unit and, where one differs, its rate.
class ChannelList {
  public:
    /// `colors` holds one icon per trace colour.
    void Attach(HWND list, ImageList colors, int dpi);
    void SetColors(ImageList colors);
    /// The same for another density. The check marks stay.
    void SetDensity(ImageList colors, int dpi);
    void Fill(const std::vector<ChannelLine>& lines);
    void FitColumns() const;
    /// Items are lines, from 0.
    [[nodiscard]] bool IsChecked(int item) const;
    /// Whether a mouse notification is for a line outside its check box.
    [[nodiscard]] bool IsOnItem(const NMHDR* notification) const;
    /// Gives the item the focus mark if no other item has it.
    void ShowFocus(int item) const;
    /// The item that has the keyboard; -1 while the list has not.
    [[nodiscard]] int ItemWithKeyboard() const;
    [[nodiscard]] HWND Window() const { return m_list; }
    /// Sets a check box without a change notification.
    void Check(int item, bool checked);
    /// Selects an item without a change notification.
    void Choose(int item);
    /// True while this object itself changes the list: its notifications are to be ignored then.
    [[nodiscard]] bool Filling() const { return m_filling; }

  private:
    HWND m_list = nullptr;
    ImageList m_colors;
    int m_dpi = 96;
    bool m_filling = false;
    bool m_hasRates = false;
};

}  // namespace quillon
