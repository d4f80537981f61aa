#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Folder and name of a path; separators are "\" and "/". These work on the text alone.
namespace quillon {

/// Where the name begins: behind the last separator, at 0 without one.
[[nodiscard]] std::size_t NameStart(std::u16string_view path);
/// With its separator at the end; empty for a name alone.
[[nodiscard]] std::u16string FolderOf(std::u16string_view path);
[[nodiscard]] std::u16string FileNameOf(std::u16string_view path);
/// The name without what its last point begins.
[[nodiscard]] std::u16string BareNameOf(std::u16string_view path);
/// `folder` with or without a separator at its end; where it has none it gets "\".
[[nodiscard]] std::u16string PathOf(std::u16string_view folder, std::u16string_view name);

}  // namespace quillon
