#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/win/Win32.h"
#include "norvik/TimerObject.h"

namespace quillon {

/// Notifies its owner when files are created, deleted or renamed in one folder. It owns a change notification of
/// the system and looks at it from a timer, every 2 seconds while it watches: the owner is called on its own thread
/// like by any other message, and at most once a period, however many changes there were.
///
/// Changes of a file's size, time or attributes and changes in subfolders are not reported. The removal of the folder
/// itself may not be reported.
class cFileNotification {
  public:
    /// `changeFiles` is the event. It may start and stop the watch, and may run messages: as long as it has not
    /// returned, it is not called again for the same watch. It must neither throw nor destroy this object.
    cFileNotification(const TimerFactory& makeTimer, std::function<void()> changeFiles);
    ~cFileNotification();
    cFileNotification(const cFileNotification&) = delete;
    cFileNotification& operator=(const cFileNotification&) = delete;

    /// Ends the previous watch, then watches a folder. False, without a watch, when the folder cannot be watched: it is
    /// missing, access is denied, or its drive has no change notifications.
    bool StartWatch(std::wstring path);
    /// Returns false at all times: it answers whether a folder is being watched now.
    bool StopWatch();
    /// The folder being watched, empty when none is.
    [[nodiscard]] const std::wstring& Path() const { return m_path; }

  private:
    void objTimer_Timer();

    // Not a WinHandle: when this handle is closed, and with which values, is decided by the destructor.
    HANDLE m_handle = INVALID_HANDLE_VALUE;
    std::wstring m_path;
    std::unique_ptr<TimerObject> m_objTimer;
    std::function<void()> m_changeFiles;
    bool m_raising = false;  ///< the event for the current handle is being raised; it has to be re-armed afterwards
};

}  // namespace quillon
