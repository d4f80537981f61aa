#pragma once

#include "base/win/MessageWindow.h"

namespace quillon {

/// The clipboard, open and emptied for what is put onto it, until the scope ends. Other programs may keep it open
/// for a moment, so opening it is tried for up to a second; where that fails its content stays.
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
