#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <string>

#include "app/BackgroundWork.h"
#include "app/SpectrumCommands.h"
#include "app/SpectrumLayout.h"
#include "app/StringIds.h"
#include "app/win/RoomParts.h"
#include "app/win/SpectrumBoxes.h"
#include "app/win/SpectrumLists.h"
#include "app/win/SpectrumPicture.h"
#include "base/win/Win32.h"
#include "base/win/WinHandle.h"

namespace quillon {

/// The window of averaged spectra, beside the main window: the plot, the boxes of what is drawn, the peaks and the
/// harmonics of a chosen one. It closes with the recording.
class SpectrumWindow final {
  public:
    /// All arguments must outlive this object.
    SpectrumWindow(const RoomParts& parts, BackgroundWork& work);

    // To be set by the owner.
    std::function<void(const std::exception& error)> onFailed;
    std::function<void(const wchar_t* page)> onHelp;  ///< request for a page of the help

    /// Opens it where it was last or brings it to the front, with the spectra of what is selected or seen now.
    void Show(HWND owner);
    [[nodiscard]] HWND Window() const { return m_window; }
    [[nodiscard]] const SpectrumCommands& Spectra() const { return m_spectra; }
    /// Puts its place into the settings if it is open.
    void KeepPlace();
    /// The samples of the block are about to change or to go.
    void LeaveBlock();
    /// Another range is selected: analyses it if the window is open.
    void Follow();
    /// The colours of the graph have changed.
    void LookChanged() const { m_picture.Invalidate(); }
    /// The view or the recording may have changed.
    void Look();
    /// Keys of the window; false when the message is another window's, or nothing is to be done about it.
    [[nodiscard]] bool Translate(MSG message);

    /// Numbers of the controls; the boxes in the order of SpectrumLayout.
    enum Control : int {
        kBox = 101,
        kLabel = 106,  ///< by box
        kHeading = 111,
        kPlot,
        kPeaksTitle,
        kPeaks,
        kHarmonicsTitle,
        kHarmonics,
        kReadout,
        kRefresh
    };

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void CreateControls();
    /// The system has moved it onto a monitor of another density.
    void OnDensity(int dpi, const RECT& place);
    HWND Make(const wchar_t* className, DWORD style, DWORD extendedStyle, int id, int textId);
    HWND MakeList(int id);
    [[nodiscard]] HWND Of(int id) const { return GetDlgItem(m_window, id); }
    [[nodiscard]] std::u16string Text(int id) const { return m_parts.services.Text(id); }

    void Analyse();
    void TakeChoices();
    void Arrange();
    /// The spectra or how they are drawn have changed.
    void Redraw();
    void FillLists();
    /// The peak that was chosen, or none.
    void ChoosePeak(std::optional<std::size_t> peak);
    void ShowReadout(const std::u16string& text);
    void ShowNote();
    void Click(std::int32_t x, std::int32_t y);
    LRESULT OnNotify(NMHDR* header);
    void CopyText();
    void TellCopied(bool done) { ShowReadout(Text(done ? IDS_COPIED : IDS_CLIPBOARD_FAILED)); }

    const RoomParts& m_parts;
    SpectrumBoxes m_boxes;
    SpectrumLists m_lists;
    SpectrumCommands m_spectra;
    HWND m_window = nullptr;
    ScreenDensity m_density;
    SpectrumPicture m_picture;
    std::u16string m_file;  ///< that the spectra are of
    bool m_left = false;    ///< the spectra are to be made anew once there is a block
    std::u16string m_readout;
};

}  // namespace quillon
