#pragma once

#include <string>

#include "data/Document.h"
#include "data/UserServices.h"

namespace quillon {

/// What stands in the middle of a graph without traces.
struct GraphNotice {
    std::u16string title;  ///< one line; empty when there is nothing to say
    std::u16string text;   ///< lines separated by LF; may be empty
};

/// Why the graph is empty and what can be done about it: the reason of a refused file, how to begin, or that nothing is
/// shown of the block. Nothing while there are traces. `fileCount` is that of the file list.
[[nodiscard]] GraphNotice NoticeOf(const Document& document, std::int32_t fileCount, const UserServices& services);

}  // namespace quillon
