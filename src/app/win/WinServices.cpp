#include "app/win/WinServices.h"

#include <utility>

#include "app/KV_Resources.h"
#include "base/DateTime.h"
#include "base/Text.h"
#include "base/win/YesNoBox.h"

namespace quillon {

namespace {

SYSTEMTIME SystemTimeOf(double date) {
    const CivilTime civil = CivilFromDate(date);
    SYSTEMTIME time{};
    time.wYear = static_cast<WORD>(civil.year);
    time.wMonth = static_cast<WORD>(civil.month);
    time.wDay = static_cast<WORD>(civil.day);
    time.wHour = static_cast<WORD>(civil.hour);
    time.wMinute = static_cast<WORD>(civil.minute);
    time.wSecond = static_cast<WORD>(civil.second);
    time.wMilliseconds = static_cast<WORD>(civil.millisecond);
    return time;
}

}  // namespace

void WinServices::SetWindow(HWND window, StatusBar* statusBar) {
    m_window = window;
    m_statusBar = statusBar;
}

void WinServices::ShowMessage(const std::u16string& text, const std::u16string& title) {
    MessageBoxW(Owner(), Wide(text).c_str(), Wide(title).c_str(), MB_OK | MB_ICONEXCLAMATION);
}

bool WinServices::Ask(const std::u16string& question) {
    return AskYesNo(Owner(), question);
}

void WinServices::SetStatus(const std::u16string& text) {
    if (m_statusBar != nullptr) m_statusBar->Tell(StatusBar::Topic::Outcome, text);
}

std::u16string WinServices::Text(int id) const {
    return ResourceText(m_language, id);
}

std::u16string WinServices::LongTime(double date) const {
    const SYSTEMTIME time = SystemTimeOf(date);
    wchar_t text[128] = {};
    GetTimeFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, text, 128);
    return Narrow16(text);
}

std::u16string WinServices::DateAndTime(double date) const {
    const SYSTEMTIME time = SystemTimeOf(date);
    wchar_t text[128] = {};
    // SYSTEMTIME cannot hold dates before 1601, which a recording's header can contain.
    const bool known = GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, text, 128) != 0;
    return (known ? Narrow16(text) : Utf16(Iso8601(date).substr(0, 10))) + u' ' + LongTime(date);
}

}  // namespace quillon
