#pragma once

#include <cstdint>

/// Reading of big-endian fields out of a byte buffer. The caller guarantees that the bytes are there.
namespace quillon {

[[nodiscard]] inline std::uint16_t Be16(const std::uint8_t* bytes) {
    return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

[[nodiscard]] inline std::uint32_t Be32(const std::uint8_t* bytes) {
    return static_cast<std::uint32_t>(Be16(bytes)) << 16 | static_cast<std::uint32_t>(Be16(bytes + 2));
}

[[nodiscard]] inline std::uint64_t Be64(const std::uint8_t* bytes) {
    return static_cast<std::uint64_t>(Be32(bytes)) << 32 | static_cast<std::uint64_t>(Be32(bytes + 4));
}

}  // namespace quillon
