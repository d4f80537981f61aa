#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace quillon {

/// The contract between the viewer and the core library's dialog that asks for the name of a file to write. One object
/// is shared; who shows it sets it up first. An existing file is only returned after the user agreed to replace it.
class SaveFileDialog {
  public:
    virtual ~SaveFileDialog() = default;
    /// Shows it above the active window of the thread. On true `fileName` is the full path chosen and `filterIndex` the
    /// pair that it belongs to: that of its extension where there is one of it, else the one chosen in the dialog.
    [[nodiscard]] virtual bool Show() = 0;

    std::u16string title;
    std::u16string filter;         ///< description|pattern pairs, all separated by "|"
    std::int32_t filterIndex = 1;  ///< of the pair chosen, from 1
    std::u16string folder;         ///< shown first; empty: the system's choice
    std::u16string fileName;       ///< proposed, then chosen
    /// Told of the pair that is proposed and, while the dialog is open, of each that the user turns to; may be empty.
    std::function<void(std::int32_t filterIndex)> onType;
};

}  // namespace quillon
