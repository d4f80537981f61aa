#include "norvik/private/ReorderedSource.h"

#include <algorithm>

namespace quillon {

std::size_t ReorderedSource::ReadAt(std::uint64_t offset, void* buffer, std::size_t count) {
    auto* const bytes = static_cast<std::uint8_t*>(buffer);
    const auto lead = static_cast<std::size_t>(offset % m_width);
    if (lead == 0 && count % m_width == 0) {
        const std::size_t size = m_stored->ReadAt(offset, bytes, count);
        Reorder(bytes, size);
        return size;
    }
    m_whole.resize((lead + count + m_width - 1) / m_width * m_width);
    const std::size_t there = m_stored->ReadAt(offset - lead, m_whole.data(), m_whole.size());
    Reorder(m_whole.data(), there);
    const std::size_t size = std::min(count, there - std::min(lead, there));
    std::copy_n(m_whole.data() + lead, size, bytes);
    return size;
}

void ReorderedSource::Reorder(std::uint8_t* bytes, std::size_t count) const {
    // A number that the end of the file cuts is read by nobody.
    for (std::uint8_t* at = bytes; count >= m_width; at += m_width, count -= m_width) {
        if (m_bigEndian) std::reverse(at, at + m_width);
        if (m_unsigned) at[m_width - 1] ^= 0x80U;
    }
}

}  // namespace quillon
