#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// The path in the command line's text behind the program's name, as it is written there; empty for none. In quotation
/// marks it reaches to the next one, and what follows is ignored: of several paths the first counts. Without them it
/// is the whole text, with its inner blanks. There are no options: a path may begin with "-" or "/".
[[nodiscard]] std::u16string PathArgument(std::u16string_view text);

/// Whether the path names a device instead of a place on a disk ("\\.\COM1"). NUL, COM1 and the like have this form
/// once the system has made the path absolute.
[[nodiscard]] bool IsDevicePath(std::u16string_view path);

}  // namespace quillon
