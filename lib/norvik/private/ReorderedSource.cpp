#include "norvik/private/ReorderedSource.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace quillon {

namespace {

std::uint16_t Swapped(std::uint16_t number) {
    return __builtin_bswap16(number);
}
std::uint32_t Swapped(std::uint32_t number) {
    return __builtin_bswap32(number);
}
std::uint64_t Swapped(std::uint64_t number) {
    return __builtin_bswap64(number);
}

/// The bytes need not be aligned.
template <typename Number>
void ReorderWhole(std::uint8_t* bytes, std::size_t count, bool bigEndian, bool isUnsigned) {
    const auto mask = static_cast<Number>(isUnsigned ? Number{1} << (8 * sizeof(Number) - 1) : 0);
    const auto each = [&](const auto& change) {
        for (std::size_t at = 0; at < count; ++at) {
            Number number;
            std::memcpy(&number, bytes + at * sizeof number, sizeof number);
            number = static_cast<Number>(change(number) ^ mask);
            std::memcpy(bytes + at * sizeof number, &number, sizeof number);
        }
    };
    if (bigEndian) return each([](Number number) { return Swapped(number); });
    each([](Number number) { return number; });
}

}  // namespace

std::size_t ReorderedSource::ReadAt(std::uint64_t offset, void* buffer, std::size_t count) {
    auto* const bytes = static_cast<std::uint8_t*>(buffer);
    const auto lead = static_cast<std::size_t>(offset % m_width);
    if (lead == 0 && count % m_width == 0) {
        const std::size_t size = m_stored->ReadAt(m_start + offset, bytes, count);
        Reorder(bytes, size);
        return size;
    }
    m_whole.resize((lead + count + m_width - 1) / m_width * m_width);
    const std::size_t there = m_stored->ReadAt(m_start + offset - lead, m_whole.data(), m_whole.size());
    Reorder(m_whole.data(), there);
    const std::size_t size = std::min(count, there - std::min(lead, there));
    std::copy_n(m_whole.data() + lead, size, bytes);
    return size;
}

void ReorderedSource::Reorder(std::uint8_t* bytes, std::size_t count) const {
    // A number that the end of the file cuts is read by nobody.
    const std::size_t numbers = count / m_width;
    switch (m_width) {
        case 2: return ReorderWhole<std::uint16_t>(bytes, numbers, m_bigEndian, m_unsigned);
        case 4: return ReorderWhole<std::uint32_t>(bytes, numbers, m_bigEndian, m_unsigned);
        case 8: return ReorderWhole<std::uint64_t>(bytes, numbers, m_bigEndian, m_unsigned);
        default: break;
    }
    for (std::size_t number = 0; number < numbers; ++number, bytes += m_width) {
        if (m_bigEndian) std::swap(bytes[0], bytes[m_width - 1]);
        if (m_unsigned) bytes[m_width - 1] ^= 0x80U;
    }
}

}  // namespace quillon
