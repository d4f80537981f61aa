#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "base/Bilingual.h"

namespace quillon {

/// A read at a position that the file should have held failed (a stick pulled out, a file cut while open).
class ReadError : public FormatError {
  public:
    using FormatError::FormatError;
};

/// Bytes that can be read at any position: an open file, or memory in tests and fuzzing.
class ByteSource {
  public:
    virtual ~ByteSource() = default;
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;

    /// Size in bytes when the source was opened.
    [[nodiscard]] virtual std::uint64_t Size() const = 0;
    /// Reads up to `count` bytes at `offset`; returns how many there were (fewer only at the end of the source).
    /// Throws ReadError when the device fails.
    virtual std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) = 0;
    /// Local time of the last change as an automation date; 0 when unknown.
    [[nodiscard]] virtual double ModifiedTime() const { return 0.0; }

    /// Reads exactly `count` bytes; throws ReadError when they are not all there.
    void ReadExactly(std::uint64_t offset, void* buffer, std::size_t count) {
        if (ReadAt(offset, buffer, count) != count) {
            throw ReadError(Say(u"the file is shorter than when it was opened", u"файл короче, чем был при открытии"),
                            m_language);
        }
    }

    /// Language of what() of the errors from now on; at first English.
    void SetErrorLanguage(Language language) { m_language = language; }
    [[nodiscard]] Language ErrorLanguage() const { return m_language; }

  private:
    Language m_language = Language::English;
};

/// Opens a file for shared reading: other programs may go on writing, renaming and deleting it.
/// Returns null when it cannot be opened, with the system's reason in `error`.
[[nodiscard]] std::unique_ptr<ByteSource> OpenFileSource(const std::u16string& path, Bilingual& error);

/// Bytes in memory.
class MemorySource final : public ByteSource {
  public:
    explicit MemorySource(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_bytes.size(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        if (offset >= m_bytes.size()) return 0;
        const std::size_t there = m_bytes.size() - static_cast<std::size_t>(offset);
        const std::size_t size = count < there ? count : there;
        if (size != 0) std::memcpy(buffer, m_bytes.data() + static_cast<std::size_t>(offset), size);
        return size;
    }

  private:
    std::vector<std::uint8_t> m_bytes;
};

}  // namespace quillon
