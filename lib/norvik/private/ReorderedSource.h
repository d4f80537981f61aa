#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "norvik/private/ByteSource.h"

namespace quillon {

/// Numbers of one size in a file that are stored otherwise than the blocks read them: big-endian, or unsigned where
/// they read signed ones, which then are less by half the range (or the other way round). The source begins with the
/// first.
class ReorderedSource final : public ByteSource {
  public:
    /// `width`: bytes of a number, 1, 2, 3, 4 or 8; `start`: byte of the file where the numbers begin.
    ReorderedSource(std::shared_ptr<ByteSource> stored, std::size_t width, bool bigEndian, bool isUnsigned,
                    std::uint64_t start = 0)
        : m_stored(std::move(stored)),
          m_width(width),
          m_bigEndian(bigEndian && width > 1),
          m_unsigned(isUnsigned),
          m_start(std::min(start, m_stored->Size())) {
        SetErrorLanguage(m_stored->ErrorLanguage());
    }

    [[nodiscard]] std::uint64_t Size() const override { return m_stored->Size() - m_start; }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override;
    [[nodiscard]] double ModifiedTime() const override { return m_stored->ModifiedTime(); }

  private:
    void Reorder(std::uint8_t* bytes, std::size_t count) const;

    std::shared_ptr<ByteSource> m_stored;
    std::size_t m_width;
    bool m_bigEndian;
    bool m_unsigned;
    std::uint64_t m_start;
    std::vector<std::uint8_t> m_whole;  ///< numbers of which only parts are asked for
};

}  // namespace quillon
