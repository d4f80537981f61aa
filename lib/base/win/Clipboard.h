#pragma once

#include "base/win/MessageWindow.h"

namespace quillon {

/// The clipboard, open and emptied for what is put onto it, until the scope ends. Programs that watch it hold it now
/// and then for a moment: it is waited for up to a second. When it is not to be had its content stays.
class ClipboardScope {
  public:
    ClipboardScope();
    ~ClipboardScope();
    ClipboardScope(const ClipboardScope&) = delete;
    ClipboardScope& operator=(const ClipboardScope&) = delete;

    /// Hands over memory or a bitmap; on false the caller keeps it.
    [[nodiscard]] bool Put(UINT format, HANDLE data) const;

  private:
    MessageWindow m_owner;  ///< without an owner nothing can be put, and no other window need exist
    bool m_open = false;
};

}  // namespace quillon
