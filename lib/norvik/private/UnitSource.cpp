#include "norvik/private/UnitSource.h"

#include <algorithm>

namespace quillon {

std::size_t UnitSource::ReadAt(std::uint64_t offset, void* buffer, std::size_t count) {
    if (offset >= m_size) return 0;
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, m_size - offset));
    auto* const bytes = static_cast<std::uint8_t*>(buffer);
    for (std::size_t done = 0; done < count;) {
        const std::uint64_t unit = (offset + done) / m_unitBytes;
        const auto lead = static_cast<std::size_t>((offset + done) % m_unitBytes);
        const std::size_t whole = (count - done) / m_unitBytes;
        if (lead == 0 && whole > 0) {
            ReadUnits(unit, whole, bytes + done);
            done += whole * m_unitBytes;
            continue;
        }
        const std::size_t part = std::min(m_unitBytes - lead, count - done);
        m_unit.resize(m_unitBytes);
        ReadUnits(unit, 1, m_unit.data());
        std::copy_n(m_unit.data() + lead, part, bytes + done);
        done += part;
    }
    return count;
}

}  // namespace quillon
