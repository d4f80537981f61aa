#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillon {

/// Reads the bits of a FLAC frame, the most significant one of each byte first. Where the bytes end, what is missing
/// reads as zeros, and Overrun tells so from then on.
class FlacBits {
  public:
    FlacBits(const std::uint8_t* bytes, std::size_t count) : m_begin(bytes), m_at(bytes), m_end(bytes + count) {}

    /// The next `count` bits, 0 to 32.
    std::uint32_t Read(unsigned count) {
        if (m_held < count) Refill();
        if (m_held < count) return End();
        const auto bits = static_cast<std::uint32_t>(m_cache >> 1 >> (63 - count));
        Drop(count);
        return bits;
    }

    /// The next `count` bits, 0 to 33, as a number in two's complement.
    std::int64_t ReadSigned(unsigned count) {
        if (count == 0) return 0;
        const bool isLong = count > 32;
        const std::uint64_t high = isLong ? Read(1) : 0;
        const std::uint64_t bits = high << 32 | Read(isLong ? 32 : count);
        const unsigned unused = 64 - count;
        return static_cast<std::int64_t>(bits << unused) >> unused;
    }

    /// The number of zeros before the next one, which is taken too.
    std::uint32_t ReadZeros() {
        for (std::uint32_t zeros = 0;;) {
            const auto run = static_cast<unsigned>(std::countl_zero(m_cache));
            if (run < m_held) {
                Drop(run + 1);
                return zeros + run;
            }
            zeros += m_held;
            Drop(m_held);
            Refill();
            if (m_held == 0) return End();
        }
    }

    /// `count` residuals of one Rice parameter, 0 to 30 (RFC 9639, 9.2.7.2).
    void ReadRice(unsigned parameter, std::int32_t* residuals, std::size_t count);

    /// Up to the next whole byte.
    void Align() { Drop(m_held % 8); }
    /// Bytes taken, of which the last one may be so in part.
    [[nodiscard]] std::size_t Position() const { return static_cast<std::size_t>(m_at - m_begin) - m_held / 8; }
    [[nodiscard]] bool Overrun() const { return m_overrun; }

  private:
    std::uint32_t End() {
        m_overrun = true;
        return 0;
    }
    /// Less than 64.
    void Drop(unsigned count) {
        m_cache <<= count;
        m_held -= count;
    }
    void Refill() {
        if (m_end - m_at >= 8) return RefillWhole();
        for (; m_held < 56 && m_at != m_end; m_held += 8) m_cache |= std::uint64_t{*m_at++} << (56 - m_held);
    }
    /// At least 56 bits are held then. What is put behind the bits that are counted is put there once more by the next
    /// refill, from the same bytes.
    void RefillWhole() {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, m_at, sizeof bytes);
        m_cache |= __builtin_bswap64(bytes) >> m_held;
        m_at += (63 - m_held) / 8;
        m_held |= 56U;
    }

    const std::uint8_t* m_begin;
    const std::uint8_t* m_at;
    const std::uint8_t* m_end;
    std::uint64_t m_cache = 0;  ///< the next bits, from the highest one on
    unsigned m_held = 0;        ///< how many of them count, 0 to 63
    bool m_overrun = false;
};

}  // namespace quillon
