#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// Whether a file name matches one of the wildcard patterns of a mask ("*.bin;*.wav"). '*' stands for any characters,
/// '?' for one; letter case does not count; "*.*" matches every name, as in a Windows file list.
[[nodiscard]] bool MatchesMask(std::u16string_view name, std::u16string_view mask);

}  // namespace quillon
