#include "norvik/private/FlacCrc.h"

#include <array>

namespace quillon {

namespace {

/// Bytes whose sums are looked up side by side, as none of the look-ups waits for another one.
constexpr std::size_t kSlices = 8;

using Table = std::array<std::uint16_t, 256>;

/// tables[n][b]: the sum of byte b followed by n zeros.
constexpr std::array<Table, kSlices> MakeTables() {
    std::array<Table, kSlices> tables{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned sum = byte << 8;
        for (int bit = 0; bit < 8; ++bit) sum = (sum << 1) ^ ((sum & 0x8000U) != 0 ? 0x8005U : 0U);
        tables[0][byte] = static_cast<std::uint16_t>(sum);
    }
    for (std::size_t zeros = 1; zeros < kSlices; ++zeros) {
        for (unsigned byte = 0; byte < 256; ++byte) {
            const unsigned sum = tables[zeros - 1][byte];
            tables[zeros][byte] = static_cast<std::uint16_t>((sum << 8) ^ tables[0][sum >> 8]);
        }
    }
    return tables;
}

constexpr std::array<Table, kSlices> kTables = MakeTables();

}  // namespace

std::uint8_t FlacCrc8(const std::uint8_t* bytes, std::size_t count) {
    // Headers are a few bytes long.
    unsigned sum = 0;
    for (std::size_t at = 0; at < count; ++at) {
        sum ^= bytes[at];
        for (int bit = 0; bit < 8; ++bit) sum = (sum << 1) ^ ((sum & 0x80U) != 0 ? 0x107U : 0U);
    }
    return static_cast<std::uint8_t>(sum);
}

std::uint16_t FlacCrc16(const std::uint8_t* bytes, std::size_t count) {
    unsigned sum = 0;
    for (; count >= kSlices; count -= kSlices, bytes += kSlices) {
        unsigned next = kTables[7][bytes[0] ^ (sum >> 8)] ^ kTables[6][bytes[1] ^ (sum & 0xFFU)];
        for (std::size_t at = 2; at < kSlices; ++at) next ^= kTables[kSlices - 1 - at][bytes[at]];
        sum = next;
    }
    for (; count > 0; --count, ++bytes) sum = ((sum << 8) & 0xFFFFU) ^ kTables[0][(sum >> 8) ^ *bytes];
    return static_cast<std::uint16_t>(sum);
}

}  // namespace quillon
