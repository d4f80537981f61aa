#include "norvik/private/FlacBits.h"

namespace quillon {

namespace {

/// Residuals are stored with their sign in the lowest bit.
std::int32_t Unfold(std::uint32_t folded) {
    return static_cast<std::int32_t>((folded >> 1) ^ (0U - (folded & 1U)));
}

}  // namespace

void FlacBits::ReadRice(unsigned parameter, std::int32_t* residuals, std::size_t count) {
    const std::int32_t* const end = residuals + count;
    // A copy that lives in registers; the residuals could be anything's memory.
    FlacBits bits = *this;
    const std::uint32_t leading = 1U << parameter;
    while (residuals != end && bits.m_end - bits.m_at >= 8) {
        bits.RefillWhole();
        // As many as lie in the bits that are held, mostly several.
        do {
            const auto zeros = static_cast<unsigned>(std::countl_zero(bits.m_cache | 1U));
            const unsigned length = zeros + 1 + parameter;
            if (length > bits.m_held) break;
            // The one that ends the zeros comes along and is taken off again: no shift by 64 without a parameter.
            const auto rest = static_cast<std::uint32_t>((bits.m_cache << zeros) >> (63 - parameter));
            *residuals++ = Unfold((zeros << parameter) + (rest - leading));
            bits.Drop(length);
        } while (residuals != end);
        if (residuals != end && bits.m_held >= 56) {
            const std::uint32_t zeros = bits.ReadZeros();
            *residuals++ = Unfold((zeros << parameter) + bits.Read(parameter));
        }
    }
    for (; residuals != end && !bits.m_overrun; ++residuals) {
        const std::uint32_t zeros = bits.ReadZeros();
        *residuals = Unfold((zeros << parameter) + bits.Read(parameter));
    }
    *this = bits;
}

}  // namespace quillon
