#include "export/PngDeflate.h"

#include <algorithm>
#include <array>
#include <limits>

namespace quillon {

namespace {

constexpr std::size_t kLeastMatch = 4;
constexpr std::size_t kMostMatch = 258;
constexpr std::size_t kMostDistance = 32768;
constexpr unsigned kEndOfBlock = 256;

/// A length or a distance is told by the code of the largest base that does not exceed it, then by the rest.
constexpr std::array<std::uint16_t, 29> kLengthBases{3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
                                                     31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr std::array<std::uint8_t, 29> kLengthBits{0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                                   2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr std::array<std::uint16_t, 30> kDistanceBases{1,    2,    3,    4,    5,    7,    9,    13,    17,    25,
                                                       33,   49,   65,   97,   129,  193,  257,  385,   513,   769,
                                                       1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};

/// Packs bits into bytes, the lowest first.
class BitWriter {
  public:
    void Bits(std::uint32_t bits, unsigned count) {
        m_pending |= bits << m_count;
        for (m_count += count; m_count >= 8; m_count -= 8, m_pending >>= 8) Byte(m_pending);
    }
    /// Codes stand with their highest bit first.
    void Code(std::uint32_t code, unsigned count) {
        while (count-- > 0) Bits(code >> count & 1U, 1);
    }
    void Align() {
        if (m_count > 0) Bits(0, 8 - m_count);
    }
    void Byte(std::uint32_t byte) { m_bytes.push_back(static_cast<std::byte>(byte & 0xFFU)); }
    [[nodiscard]] std::vector<std::byte> Take() { return std::move(m_bytes); }

  private:
    std::vector<std::byte> m_bytes;
    std::uint32_t m_pending = 0;
    unsigned m_count = 0;
};

/// A literal byte, the end of the block or a length, in the fixed code.
void PutSymbol(BitWriter& writer, unsigned symbol) {
    if (symbol < 144) {
        writer.Code(0x30 + symbol, 8);
    } else if (symbol < 256) {
        writer.Code(0x190 + (symbol - 144), 9);
    } else if (symbol < 280) {
        writer.Code(symbol - 256, 7);
    } else {
        writer.Code(0xC0 + (symbol - 280), 8);
    }
}

template <typename Bases>
std::size_t CodeOf(const Bases& bases, std::size_t number) {
    return static_cast<std::size_t>(std::upper_bound(bases.begin(), bases.end(), number) - bases.begin()) - 1;
}

struct Match {
    std::size_t length = 0;
    std::size_t distance = 0;
};

void PutMatch(BitWriter& writer, const Match& match) {
    const std::size_t length = CodeOf(kLengthBases, match.length);
    PutSymbol(writer, kEndOfBlock + 1 + static_cast<unsigned>(length));
    writer.Bits(static_cast<std::uint32_t>(match.length - kLengthBases[length]), kLengthBits[length]);
    const std::size_t distance = CodeOf(kDistanceBases, match.distance);
    writer.Code(static_cast<std::uint32_t>(distance), 5);
    const auto bits = static_cast<unsigned>(distance < 2 ? 0 : distance / 2 - 1);
    writer.Bits(static_cast<std::uint32_t>(match.distance - kDistanceBases[distance]), bits);
}

/// Finds what is repeated.
class Matcher {
  public:
    Matcher(std::span<const std::byte> bytes, std::size_t rowBytes)
        : m_bytes(bytes), m_rowBytes(rowBytes), m_places(kPlaces, kNone) {}

    /// The longest repetition at a place, the nearest of these; of length 0 where there is none.
    [[nodiscard]] Match At(std::size_t place) const {
        Match best;
        if (m_bytes.size() - place < kLeastMatch) return best;
        const std::size_t known = m_places[KeyAt(place)];
        for (const std::size_t distance : {std::size_t{1}, m_rowBytes, known == kNone ? 0 : place - known}) {
            if (distance == 0 || distance > std::min(place, kMostDistance)) continue;
            const std::size_t length = LengthAt(place, distance);
            if (length > best.length) best = {length, distance};
        }
        return best.length < kLeastMatch ? Match() : best;
    }
    /// The bytes at a place can be repeated from now on.
    void Add(std::size_t place) {
        if (m_bytes.size() - place >= kLeastMatch) m_places[KeyAt(place)] = place;
    }

  private:
    static constexpr unsigned kKeyBits = 15;
    static constexpr std::size_t kPlaces = std::size_t{1} << kKeyBits;
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    [[nodiscard]] std::size_t KeyAt(std::size_t place) const {
        std::uint32_t four = 0;
        for (std::size_t at = 0; at < kLeastMatch; ++at)
            four = four << 8 | std::to_integer<std::uint32_t>(m_bytes[place + at]);
        constexpr std::uint32_t golden = 0x9E3779B1;  // 2^32 / the golden ratio spreads what is alike
        return four * golden >> (32 - kKeyBits);
    }
    [[nodiscard]] std::size_t LengthAt(std::size_t place, std::size_t distance) const {
        const std::size_t most = std::min(kMostMatch, m_bytes.size() - place);
        std::size_t length = 0;
        while (length < most && m_bytes[place + length] == m_bytes[place + length - distance]) ++length;
        return length;
    }

    std::span<const std::byte> m_bytes;
    std::size_t m_rowBytes;
    std::vector<std::size_t> m_places;  ///< last place of every key
};

std::uint32_t Adler32(std::span<const std::byte> bytes) {
    constexpr std::uint32_t modulus = 65521;
    std::uint32_t low = 1;
    std::uint32_t high = 0;
    for (const std::byte byte : bytes) {
        low = (low + std::to_integer<std::uint32_t>(byte)) % modulus;
        high = (high + low) % modulus;
    }
    return high << 16 | low;
}

}  // namespace

std::vector<std::byte> DeflatePicture(std::span<const std::byte> bytes, std::size_t rowBytes) {
    BitWriter writer;
    writer.Byte(0x78);  // deflate with a window of 32 KiB
    writer.Byte(0x01);
    writer.Bits(1, 1);  // the last block
    writer.Bits(1, 2);  // of fixed codes
    Matcher matcher(bytes, rowBytes);
    for (std::size_t at = 0; at < bytes.size();) {
        const Match match = matcher.At(at);
        if (match.length == 0) {
            PutSymbol(writer, std::to_integer<unsigned>(bytes[at]));
        } else {
            PutMatch(writer, match);
        }
        for (const std::size_t end = at + std::max<std::size_t>(match.length, 1); at < end; ++at) matcher.Add(at);
    }
    PutSymbol(writer, kEndOfBlock);
    writer.Align();
    const std::uint32_t sum = Adler32(bytes);
    for (const unsigned shift : {24U, 16U, 8U, 0U}) writer.Byte(sum >> shift);
    return writer.Take();
}

}  // namespace quillon
