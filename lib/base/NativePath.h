#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Paths as the system has them and as this program keeps them. Where names are bytes, of any kind but mostly UTF-8,
/// each byte that is part of no valid sequence is kept as a lone surrogate, U+DC80 to U+DCFF, so that every name comes
/// back as it was. Utf8() shows such a byte as U+FFFD.
namespace quillon {

[[nodiscard]] std::u16string FromNativeBytes(std::string_view bytes);
[[nodiscard]] std::string NativeBytes(std::u16string_view path);

/// The same for the paths of the standard library, which is not asked to convert them; where names are UTF-16, nothing
/// is converted.
[[nodiscard]] std::filesystem::path NativePath(std::u16string_view path);
[[nodiscard]] std::u16string FromNativePath(const std::filesystem::path& path);

}  // namespace quillon
