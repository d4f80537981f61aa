#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Why files of several formats cannot be read. Each throws FormatError.
namespace quillon {

/// A number of a file, for messages.
[[nodiscard]] std::u16string Number(std::uint64_t number);

/// The file has `size` bytes, its header `needed`.
[[noreturn]] void RefuseCutHeader(std::uint64_t size, std::uint64_t needed);

/// "channel count 0 at byte 22", given the name of the field in both languages.
[[noreturn]] void RefuseField(std::u16string_view english, std::u16string_view russian, const std::u16string& value,
                              std::uint64_t place);
[[noreturn]] void RefuseField(std::u16string_view english, std::u16string_view russian, std::uint64_t value,
                              std::uint64_t place);

/// There is no chunk of that name in a file of `size` bytes, whose first chunk begins at byte `first`.
[[noreturn]] void RefuseMissingChunk(std::u16string_view name, std::uint64_t first, std::uint64_t size);

}  // namespace quillon
