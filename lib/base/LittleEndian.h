#pragma once

#include <bit>
#include <cstdint>

/// Reading and writing of little-endian fields in a byte buffer. The caller guarantees that the bytes are there.
namespace quillon {

[[nodiscard]] inline std::uint16_t Le16(const std::uint8_t* bytes) {
    return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

[[nodiscard]] inline std::int16_t LeSigned16(const std::uint8_t* bytes) {
    return static_cast<std::int16_t>(Le16(bytes));
}

/// A signed 24-bit sample.
[[nodiscard]] inline std::int32_t LeSigned24(const std::uint8_t* bytes) {
    const std::uint32_t raw = static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
                              static_cast<std::uint32_t>(bytes[2]) << 16;
    return static_cast<std::int32_t>(raw << 8) >> 8;
}

[[nodiscard]] inline std::uint32_t Le32(const std::uint8_t* bytes) {
    return static_cast<std::uint32_t>(Le16(bytes)) | static_cast<std::uint32_t>(Le16(bytes + 2)) << 16;
}

[[nodiscard]] inline std::uint64_t Le64(const std::uint8_t* bytes) {
    return static_cast<std::uint64_t>(Le32(bytes)) | static_cast<std::uint64_t>(Le32(bytes + 4)) << 32;
}

[[nodiscard]] inline float LeFloat(const std::uint8_t* bytes) {
    return std::bit_cast<float>(Le32(bytes));
}

[[nodiscard]] inline double LeDouble(const std::uint8_t* bytes) {
    return std::bit_cast<double>(Le64(bytes));
}

inline void PutLe16(std::uint8_t* bytes, std::uint16_t number) {
    bytes[0] = static_cast<std::uint8_t>(number);
    bytes[1] = static_cast<std::uint8_t>(number >> 8);
}

inline void PutLe32(std::uint8_t* bytes, std::uint32_t number) {
    PutLe16(bytes, static_cast<std::uint16_t>(number));
    PutLe16(bytes + 2, static_cast<std::uint16_t>(number >> 16));
}

}  // namespace quillon
