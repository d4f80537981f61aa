#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "norvik/ByteSource.h"

namespace quillon::testing {

/// The bytes of a file under construction; numbers are little-endian.
class FileBytes {
  public:
    FileBytes& U16(std::uint16_t value) { return Number(value, 2); }
    FileBytes& U32(std::uint32_t value) { return Number(value, 4); }
    FileBytes& U64(std::uint64_t value) { return Number(value, 8); }
    FileBytes& F32(float value) { return U32(std::bit_cast<std::uint32_t>(value)); }
    FileBytes& F64(double value) { return U64(std::bit_cast<std::uint64_t>(value)); }
    FileBytes& Number(std::uint64_t value, std::size_t size) {
        for (std::size_t at = 0; at < size; ++at) m_bytes.push_back(static_cast<std::uint8_t>(value >> (8 * at)));
        return *this;
    }
    FileBytes& Text(std::string_view text) {
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
        return *this;
    }
    /// Text in a field of `size` bytes, filled up with zeros.
    FileBytes& Text(std::string_view text, std::size_t size) {
        Text(text.substr(0, size));
        return Zeros(size - std::min(size, text.size()));
    }
    FileBytes& Zeros(std::size_t size) {
        m_bytes.resize(m_bytes.size() + size);
        return *this;
    }
    FileBytes& Add(const FileBytes& other) {
        m_bytes.insert(m_bytes.end(), other.m_bytes.begin(), other.m_bytes.end());
        return *this;
    }
    /// A chunk of a RIFF file, padded to an even size.
    FileBytes& Chunk(std::string_view id, const FileBytes& content) {
        Text(id).U32(static_cast<std::uint32_t>(content.Size())).Add(content);
        return Zeros(content.Size() % 2);
    }
    /// Overwrites what is there.
    FileBytes& Patch(std::size_t offset, std::uint64_t value, std::size_t size) {
        const FileBytes number = FileBytes().Number(value, size);
        std::copy(number.m_bytes.begin(), number.m_bytes.end(), &m_bytes.at(offset));
        return *this;
    }
    FileBytes& CutTo(std::size_t size) {
        m_bytes.resize(size);
        return *this;
    }
    [[nodiscard]] std::size_t Size() const { return m_bytes.size(); }
    [[nodiscard]] const std::vector<std::uint8_t>& Bytes() const { return m_bytes; }
    [[nodiscard]] std::shared_ptr<ByteSource> Source() const { return std::make_shared<MemorySource>(m_bytes); }

  private:
    std::vector<std::uint8_t> m_bytes;
};

}  // namespace quillon::testing
