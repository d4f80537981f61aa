#pragma once

#include <string>

#include "base/win/Win32.h"
#include "data/UserServices.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// Registers the class of a window with a frame: arrow, background of dialogs. Once is enough.
void RegisterFrame(const wchar_t* className, WNDPROC procedure);

/// Gives a window the program's icon. Not part of its class: reading the icon's sizes takes longer than reading a
/// recording, and the first waveform does not need it.
void ShowProgramIcon(HWND window, const ScreenDensity& density);

/// Makes the main window, hidden, in its usual size. `owner` comes to the procedure with WM_NCCREATE. Null when it
/// cannot be made.
[[nodiscard]] HWND MakeMainWindow(WNDPROC procedure, HMENU menu, void* owner);

/// The first of the files and folders that were dropped on a window.
[[nodiscard]] std::wstring DroppedPath(HDROP drop);

/// Make the controls of the main window that are the system's own, in the order of the Tab key: both pairs of
/// tabs with their lists, then scroll bars and status bar. Throw std::system_error when one cannot be made.
void MakePathLists(HWND window, HFONT font, const UserServices& services);
void MakeFileLists(HWND window, HFONT font, const UserServices& services);
void MakeBars(HWND window, HFONT font);

/// For WM_DPICHANGED: changes the density, and gives the window an icon and its controls the font for it.
void ChangeDensity(HWND window, ScreenDensity& density, int dpi);

/// Gives every control a name for programs that read the screen aloud: a text of its own, or before lists, whose text
/// is that of their items, a label of no size.
void NameControls(HWND window, const UserServices& services);

/// Gives a control a text that shows when the pointer rests on it.
void AddToolTip(HWND control, const std::u16string& text);

/// The strips of tabs, whose pages are lists that share their place.
enum class TabPages { Path, File };
void SelectPage(HWND window, TabPages tabs, int page);
/// Shows the lists of the selected pages and hides the others. The focus of what is hidden goes to the graph.
void ShowSelectedPages(HWND window);

/// Gives a control the keyboard and lets it be seen.
void MoveFocus(HWND window, HWND control);
/// Turns to the page of a list and gives it the keyboard: 0 folders, 1 channels, 2 files, 3 blocks, 4 marks.
void FocusList(HWND window, int list);

}  // namespace quillon
