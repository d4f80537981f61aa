#pragma once

#include <string>

#include "data/Document.h"
#include "data/UserServices.h"

namespace quillon {

/// Notice in the middle of a graph without traces.
struct GraphNotice {
    std::u16string title;  ///< one line; empty for no notice
    std::u16string text;   ///< lines separated by LF; may be empty
};

/// Explains why the graph is empty and what to do: why the file was refused, how to open one, or that no channel is
/// shown. Empty while there are traces. `fileCount` is that of the file list.
[[nodiscard]] GraphNotice NoticeOf(const Document& document, std::int32_t fileCount, const UserServices& services);

}  // namespace quillon
