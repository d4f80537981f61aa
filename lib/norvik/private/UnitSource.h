#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "norvik/private/ByteSource.h"

namespace quillon {

/// Bytes that are made of what is stored, in units of one size: decoded groups of samples, or frames. The last unit may
/// be cut.
class UnitSource : public ByteSource {
  public:
    [[nodiscard]] std::uint64_t Size() const final { return m_size; }
    std::size_t ReadAt(std::uint64_t offset, void* buffer, std::size_t count) final;

  protected:
    UnitSource(std::uint64_t size, std::size_t unitBytes) : m_size(size), m_unitBytes(unitBytes) {}
    /// Makes whole units, of which only the last one of all may have no content behind Size. Throws ReadError.
    virtual void ReadUnits(std::uint64_t first, std::size_t count, std::uint8_t* out) = 0;
    [[nodiscard]] std::size_t UnitBytes() const { return m_unitBytes; }

  private:
    std::uint64_t m_size;
    std::size_t m_unitBytes;
    std::vector<std::uint8_t> m_unit;  ///< of which only a part is asked for
};

}  // namespace quillon
