#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace quillon {

/// Header bytes, appended field by field, little-endian.
class ByteWriter {
  public:
    ByteWriter& U16(std::uint16_t number) { return Number(number, 2); }
    ByteWriter& U32(std::uint32_t number) { return Number(number, 4); }
    ByteWriter& Float(float number) { return U32(std::bit_cast<std::uint32_t>(number)); }
    ByteWriter& Zeros(std::size_t size) {
        m_bytes.insert(m_bytes.end(), size, std::byte{0});
        return *this;
    }
    ByteWriter& Text(std::string_view text) { return Text(text, text.size(), '\0'); }
    /// Cut to `size` bytes or filled up to them.
    ByteWriter& Text(std::string_view text, std::size_t size, char fill) {
        for (std::size_t at = 0; at < size; ++at) {
            m_bytes.push_back(static_cast<std::byte>(at < text.size() ? text[at] : fill));
        }
        return *this;
    }
    [[nodiscard]] std::span<const std::byte> Bytes() const { return m_bytes; }

  private:
    ByteWriter& Number(std::uint32_t number, unsigned size) {
        for (unsigned at = 0; at < size; ++at) m_bytes.push_back(static_cast<std::byte>(number >> (8 * at) & 0xFFU));
        return *this;
    }

    std::vector<std::byte> m_bytes;
};

}  // namespace quillon
