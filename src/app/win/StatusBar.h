#pragma once

#include <optional>
#include <string>

#include "app/Announcer.h"
#include "app/StatusMessage.h"
#include "app/StatusPanels.h"
#include "base/win/Win32.h"
#include "view/win/ScreenDensity.h"

namespace quillon {

/// The status bar: the panels that describe the block, and "Status". It accepts texts before its control exists.
class StatusBar {
  public:
    using Topic = StatusMessage::Topic;

    /// `density` of its window, which must outlive the control.
    void Attach(HWND control, const ScreenDensity& density);
    [[nodiscard]] HWND Window() const { return m_window; }
    /// Every panel is as wide as its text; "Status", whose text is none of these, takes the rest.
    void ShowPanels(const PanelTexts& texts);
    /// The width of the control or its font has changed.
    void Resize();

    // See StatusMessage.
    void Tell(Topic topic, const std::u16string& text);
    void Offer(Topic topic, const std::u16string& text);
    void Retract(Topic topic);
    /// From now on programs that read the screen aloud are told when "Status" says something else.
    void AnnounceBy(const TimerFactory& makeTimer);
    [[nodiscard]] const std::u16string& Message() const { return m_message.Text(); }

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR bar);
    /// How the signals are shown is coloured, as it has to be seen. It stays a text of the control.
    void PaintShown() const;
    void ShowMessage();
    void ArrangePanels() const;

    HWND m_window = nullptr;
    const ScreenDensity* m_density = nullptr;
    StatusMessage m_message;
    Announcer m_announcer;
    std::optional<PanelTexts> m_panels;  ///< none before they are shown for the first time
};

}  // namespace quillon
