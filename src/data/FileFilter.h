#pragma once

#include <string>
#include <string_view>

#include "norvik/NorvikCore.h"

namespace quillon {

/// Whether a file name matches one of the wildcard patterns of a mask ("*.bin;*.wav"). '*' stands for any characters,
/// '?' for one; letter case does not count; "*.*" matches every name, as in a Windows file list.
[[nodiscard]] bool MatchesMask(std::u16string_view name, std::u16string_view mask);

/// What a list of file types says of a type of the library: name and masks; of type 0, all of them, the name alone.
[[nodiscard]] std::u16string FileTypeLine(const RecordingLibrary& library, std::int32_t type);

/// The types of the library, first all of them, then any file, as description|pattern pairs, all separated by "|".
[[nodiscard]] std::u16string FilterOfTypes(const RecordingLibrary& library, const std::u16string& anyFile);

}  // namespace quillon
