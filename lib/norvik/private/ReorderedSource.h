#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "norvik/private/ByteSource.h"

namespace quillon {

/// A file of numbers of one size that are stored otherwise than the blocks read them: big-endian, or unsigned where
/// they read signed ones, which then are less by half the range. The numbers begin at byte 0.
class ReorderedSource final : public ByteSource {
  public:
    /// `width`: bytes of a number.
    ReorderedSource(std::shared_ptr<ByteSource> stored, std::size_t width, bool bigEndian, bool isUnsigned)
        : m_stored(std::move(stored)), m_width(width), m_bigEndian(bigEndian), m_unsigned(isUnsigned) {
        SetErrorLanguage(m_stored->ErrorLanguage());
    }

    [[nodiscard]] std::uint64_t Size() const override { return m_stored->Size(); }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override;
    [[nodiscard]] double ModifiedTime() const override { return m_stored->ModifiedTime(); }

  private:
    void Reorder(std::uint8_t* bytes, std::size_t count) const;

    std::shared_ptr<ByteSource> m_stored;
    std::size_t m_width;
    bool m_bigEndian;
    bool m_unsigned;
    std::vector<std::uint8_t> m_whole;  ///< numbers of which only parts are asked for
};

}  // namespace quillon
