#pragma once

#include <string>

namespace quillon {

/// User-interface services that the portable core needs; implemented by the window, recorded in tests.
class UserServices {
  public:
    virtual ~UserServices() = default;
    /// A message box with the exclamation icon.
    virtual void ShowMessage(const std::u16string& text, const std::u16string& title) = 0;
    void ShowMessage(const std::u16string& text) { ShowMessage(text, u"Quillon"); }
    /// A question that is answered with Yes or No, the latter being the default.
    [[nodiscard]] virtual bool Ask(const std::u16string& question) = 0;
    /// Text of the status bar's panel "Status".
    virtual void SetStatus(const std::u16string& text) = 0;
    /// Localised string; data/CoreTexts.h has the numbers. Empty when there is none of that number.
    [[nodiscard]] virtual std::u16string Text(int id) const = 0;
    /// Hours, minutes and seconds of an automation date in the system's long time format.
    [[nodiscard]] virtual std::u16string LongTime(double date) const = 0;
    /// Short date, a blank, long time in the system's formats.
    [[nodiscard]] virtual std::u16string DateAndTime(double date) const = 0;
};

}  // namespace quillon
