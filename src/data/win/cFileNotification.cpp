#include "data/win/cFileNotification.h"

#include <utility>

#include "data/win/AnsiText.h"

namespace quillon {

namespace {

constexpr std::int32_t timerInterval = 2000;  ///< ms

HANDLE FindFirstChange(const std::wstring& path) {
    constexpr DWORD filter = FILE_NOTIFY_CHANGE_FILE_NAME;
    const std::optional<std::string> ansi = ExactAnsi(path);
    return ansi ? FindFirstChangeNotificationA(ansi->c_str(), FALSE, filter)
                : FindFirstChangeNotificationW(path.c_str(), FALSE, filter);
}

}  // namespace

cFileNotification::cFileNotification(const TimerFactory& makeTimer, std::function<void()> changeFiles)
    : m_objTimer(makeTimer([this] { objTimer_Timer(); })), m_changeFiles(std::move(changeFiles)) {
    m_objTimer->PutInterval(timerInterval);
    m_objTimer->PutEnabled(false);
}

cFileNotification::~cFileNotification() {
    m_objTimer->PutEnabled(false);
    m_objTimer.reset();
    // Zero, not the invalid handle, is tested on purpose: an idle object makes this call with the invalid handle too,
    // where it does nothing. The order of calls at the end is then one and the same whether a folder was watched or
    // not.
    if (m_handle != nullptr) FindCloseChangeNotification(m_handle);
}

bool cFileNotification::StartWatch(std::wstring path) {
    StopWatch();
    m_handle = FindFirstChange(path);
    if (m_handle == INVALID_HANDLE_VALUE) return false;
    m_path = std::move(path);
    m_objTimer->PutEnabled(true);
    return true;
}

bool cFileNotification::StopWatch() {
    if (m_handle != INVALID_HANDLE_VALUE) {
        FindCloseChangeNotification(m_handle);
        m_handle = INVALID_HANDLE_VALUE;
        m_objTimer->PutEnabled(false);
        m_path.clear();
        m_raising = false;
    }
    return false;
}

void cFileNotification::objTimer_Timer() {
    if (m_handle == INVALID_HANDLE_VALUE) {
        m_objTimer->PutEnabled(false);
        return;
    }
    // The handle stays signalled until it is armed again, so an owner that shows a message would be called once more.
    if (m_raising) return;
    if (WaitForSingleObject(m_handle, 0) != WAIT_OBJECT_0) return;
    m_raising = true;
    m_changeFiles();
    // If the owner ended the watch there is no handle; if it started another one, that is armed already, and arming it
    // again could lose a change.
    if (!m_raising) return;
    m_raising = false;
    if (!FindNextChangeNotification(m_handle)) StopWatch();
}

}  // namespace quillon
