#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/MarkList.h"
#include "app/win/RoomParts.h"
#include "base/win/Win32.h"

namespace quillon {

/// The page of marks: a box in which a filter is typed, and the list of the marks that it leaves. The list asks for the
/// cells that it shows, so that it may have any number of lines.
class MarksPane {
  public:
    /// `parts` must outlive this object.
    explicit MarksPane(const RoomParts& parts)
        : m_parts(parts), m_list(parts.document.Block(), parts.format), m_services(parts.services) {}

    // To be set by the owner.
    std::function<void(std::int32_t sample)> onGoTo;            ///< request to show a sample, from 1
    std::function<void(POINT screen)> onMenu;                   ///< request for the list's menu
    std::function<void(const std::u16string& text)> onMessage;  ///< something is to be told in the status bar

    void Attach(HWND filter, HWND list);
    /// Other marks, or another way to tell times.
    void MarksChanged();
    /// A notification of the box. Enter leads to the first line, Esc empties the box.
    void OnBox(int notification);
    /// A notification of the list.
    void OnNotify(const NMHDR* header);
    void FitColumns() const;
    /// Requests the menu if the list has the keyboard; else false.
    bool OpenMenu() const;
    /// 0 copies the marked lines, or all where there is one at most; 1 writes all lines to a file that the user names;
    /// 2 shows how often each text occurs.
    void Run(int command) const;

  private:
    void Copy() const;
    void SaveCsv() const;
    void ShowCounts() const;
    void TakeFilter();
    void GoTo(int line) const;
    void FillCell(LVITEMW& item);
    [[nodiscard]] std::vector<std::u16string> Captions() const;

    const RoomParts& m_parts;
    MarkList m_list;
    const UserServices& m_services;
    HWND m_filter = nullptr;
    HWND m_window = nullptr;
    bool m_hasDurations = false;
    bool m_hasChannels = false;
    bool m_filling = false;
    std::wstring m_cell;  ///< text of the cell that was asked for last
};

}  // namespace quillon
