#pragma once

#include <array>
#include <exception>
#include <functional>
#include <optional>
#include <string>

#include "data/UserServices.h"
#include "dialogs/OptionsLayout.h"
#include "dialogs/OptionsModel.h"
#include "view/win/GraphCursor.h"

namespace quillon {

/// Callbacks of the options dialog to its owner. Both may throw.
struct OptionsCalls {
    /// Lets the user choose the file of the fast export; true with the name changed when the user confirms.
    std::function<bool(HWND dialog, std::u16string& name)> chooseFastFile;
    /// Opens the help for the dialog.
    std::function<void(HWND dialog)> help;
};

/// The modal dialog of the display, spectrogram and text-export settings. OK stores all entries at once, Cancel none;
/// numbers out of range are passed over without a message and their settings stay.
class dlgOptions {
  public:
    /// The sampling rate, in Hz, is that of the loaded block; 0 without one.
    dlgOptions(const UserServices& services, OptionsCalls calls, const FormatOptions& format, double sampleRate);
    dlgOptions(const dlgOptions&) = delete;
    dlgOptions& operator=(const dlgOptions&) = delete;

    /// The values change after the dialog has closed. Returns what they ask of the spectrogram, none when the user
    /// cancels. What a call threw closes the dialog as Cancel does and is thrown on.
    [[nodiscard]] std::optional<OptionChanges> Show(HWND owner, OptionValues values);

  private:
    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
    static INT_PTR CALLBACK PageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK PageKeys(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                     DWORD_PTR self);
    INT_PTR Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void Initialise();
    void MakePages();
    void Draw(const DRAWITEMSTRUCT& item);
    void Fill(const OptionEntries& entries);
    [[nodiscard]] OptionEntries Entries() const;
    void ShowPage(int page);
    void SwitchPage(int direction);
    void OnCommand(int id, int notification);
    void ChooseColor();
    void Browse();
    void ShowBinWidth();
    void EnableXFormat();
    void SendHelpKey();

    [[nodiscard]] HWND Control(int id) const;
    [[nodiscard]] int Chosen(int firstButton, int count) const;
    void Choose(int firstButton, int count, int position);
    [[nodiscard]] bool IsTicked(int id) const;
    void Tick(int id, bool ticked);
    [[nodiscard]] int Position(int list) const;
    void SetPosition(int list, int position);
    [[nodiscard]] std::u16string Typed(int id) const { return Narrow16(WindowText(Control(id))); }
    void AddLines(int list);

    const UserServices& m_services;
    OptionsCalls m_calls;
    FormatOptions m_format;
    double m_sampleRate;
    OptionEntries m_shown;
    std::optional<OptionEntries> m_confirmed;
    std::exception_ptr m_failure;
    HWND m_dialog = nullptr;
    std::array<HWND, kOptionPages> m_pages{};
    int m_page = 0;
    int m_gridColor = 0;
    ScreenDensity m_density;
    GraphCursor m_cursors{m_density};
};

}  // namespace quillon
