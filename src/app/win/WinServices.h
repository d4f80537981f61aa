#pragma once

#include "app/win/StatusBar.h"
#include "base/Language.h"
#include "base/win/Win32.h"
#include "data/UserServices.h"

namespace quillon {

/// The user's side of the core: message boxes, the status bar, the string tables, the system's formats.
class WinServices final : public UserServices {
  public:
    explicit WinServices(Language language) : m_language(language) {}

    /// Sets the owner of message boxes and the window whose status bar shows status texts; without a window they are
    /// dropped.
    void SetWindow(HWND window, StatusBar* statusBar);

    using UserServices::ShowMessage;
    void ShowMessage(const std::u16string& text, const std::u16string& title) override;
    [[nodiscard]] bool Ask(const std::u16string& question) override;
    void SetStatus(const std::u16string& text) override;
    [[nodiscard]] std::u16string Text(int id) const override;
    [[nodiscard]] std::u16string LongTime(double date) const override;
    [[nodiscard]] std::u16string DateAndTime(double date) const override;

  private:
    /// Owner of message boxes: the open dialog if there is one.
    [[nodiscard]] HWND Owner() const { return m_window == nullptr ? nullptr : GetLastActivePopup(m_window); }

    Language m_language;
    HWND m_window = nullptr;
    StatusBar* m_statusBar = nullptr;
};

}  // namespace quillon
