#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quillon {

/// A zlib stream (RFC 1950) of one deflate block (RFC 1951) with the fixed codes. Repetitions are looked for where
/// pictures have them: at the byte before, `rowBytes` before (0: not there), and at the last place with the same four
/// bytes.
[[nodiscard]] std::vector<std::byte> DeflatePicture(std::span<const std::byte> bytes, std::size_t rowBytes);

}  // namespace quillon
