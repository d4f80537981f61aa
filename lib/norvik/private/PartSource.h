#pragma once

#include <cstdint>
#include <memory>

#include "norvik/private/ByteSource.h"

namespace quillon {

/// The bytes of a file from a place on, which lies within it.
class PartSource final : public ByteSource {
  public:
    PartSource(std::shared_ptr<ByteSource> whole, std::uint64_t first) : m_whole(std::move(whole)), m_first(first) {
        SetErrorLanguage(m_whole->ErrorLanguage());
    }
    [[nodiscard]] std::uint64_t Size() const override { return m_whole->Size() - m_first; }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) override {
        if (offset >= Size()) return 0;
        return m_whole->ReadAt(m_first + offset, buffer, count);
    }
    [[nodiscard]] double ModifiedTime() const override { return m_whole->ModifiedTime(); }

  private:
    std::shared_ptr<ByteSource> m_whole;
    std::uint64_t m_first;
};

}  // namespace quillon
