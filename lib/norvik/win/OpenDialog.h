#pragma once

#include <string>

namespace quillon {

/// What the dialog that asks for a file to open shows.
struct OpenRequest {
    std::u16string title;
    std::u16string filter;  ///< description|pattern pairs, all separated by "|"; the first one is chosen
    std::u16string folder;  ///< shown first; empty: the system's choice
};

/// Shows the system's own dialog above the active window of the thread. The full path of an existing file; empty when
/// the user named none.
[[nodiscard]] std::u16string AskForFile(const OpenRequest& request);

}  // namespace quillon
