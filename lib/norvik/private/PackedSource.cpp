#include "norvik/private/PackedSource.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>

#include "base/LittleEndian.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

namespace {

constexpr std::size_t kLongestGroup = 4;

struct PackedGroup {
    std::size_t bytes;
    std::size_t samples;
};

PackedGroup GroupOf(Packing packing) {
    return packing == Packing::Format212 ? PackedGroup{3, 2} : PackedGroup{4, 3};
}

/// Samples that lie whole in the first bytes of a group.
std::size_t SamplesOfCutGroup(Packing packing, std::size_t bytes) {
    if (packing == Packing::Format311 && bytes == 3) return 2;
    return bytes >= 2 ? 1 : 0;
}

std::uint64_t CountSamples(Packing packing, std::uint64_t bytes) {
    const PackedGroup group = GroupOf(packing);
    return bytes / group.bytes * group.samples +
           SamplesOfCutGroup(packing, static_cast<std::size_t>(bytes % group.bytes));
}

template <unsigned Bits>
void PutSigned(std::uint8_t* out, std::uint32_t sample) {
    constexpr std::uint32_t sign = 1U << (Bits - 1);
    PutLe16(out, static_cast<std::uint16_t>(((sample & (2 * sign - 1)) ^ sign) - sign));
}

void Unpack212(const std::uint8_t* in, std::size_t groups, std::uint8_t* out) {
    // The 16 bytes that are loaded hold five groups; four are taken, each into 32 bits as two numbers of 16.
    for (; groups >= 6; groups -= 4, in += 12, out += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
        const __m128i first = _mm_unpacklo_epi32(bytes, _mm_srli_si128(bytes, 3));
        const __m128i second = _mm_unpacklo_epi32(_mm_srli_si128(bytes, 6), _mm_srli_si128(bytes, 9));
        const __m128i four = _mm_unpacklo_epi64(first, second);
        const __m128i high = _mm_slli_epi32(_mm_and_si128(four, _mm_set1_epi32(0xF000)), 12);
        const __m128i pairs = _mm_or_si128(_mm_and_si128(four, _mm_set1_epi32(0x00FF0FFF)), high);
        const __m128i samples = _mm_srai_epi16(_mm_slli_epi16(pairs, 4), 4);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), samples);
    }
    for (; groups > 0; --groups, in += 3, out += 4) {
        const std::uint32_t middle = in[1];
        PutSigned<12>(out, in[0] | (middle & 0x0FU) << 8);
        PutSigned<12>(out + 2, in[2] | (middle & 0xF0U) << 4);
    }
}

void Unpack310(const std::uint8_t* in, std::size_t groups, std::uint8_t* out) {
    for (; groups > 0; --groups, in += 4, out += 6) {
        const std::uint32_t first = Le16(in);
        const std::uint32_t second = Le16(in + 2);
        PutSigned<10>(out, first >> 1);
        PutSigned<10>(out + 2, second >> 1);
        PutSigned<10>(out + 4, first >> 11 | second >> 11 << 5);
    }
}

void Unpack311(const std::uint8_t* in, std::size_t groups, std::uint8_t* out) {
    for (; groups > 0; --groups, in += 4, out += 6) {
        const std::uint32_t word = Le32(in);
        PutSigned<10>(out, word);
        PutSigned<10>(out + 2, word >> 10);
        PutSigned<10>(out + 4, word >> 20);
    }
}

void Unpack(Packing packing, const std::uint8_t* in, std::size_t groups, std::uint8_t* out) {
    switch (packing) {
        case Packing::Format212: return Unpack212(in, groups, out);
        case Packing::Format310: return Unpack310(in, groups, out);
        case Packing::Format311: return Unpack311(in, groups, out);
    }
}

}  // namespace

PackedSource::PackedSource(std::shared_ptr<ByteSource> stored, Packing packing)
    : UnitSource(2 * CountSamples(packing, stored->Size()), 2 * GroupOf(packing).samples),
      m_stored(std::move(stored)),
      m_packing(packing) {
    SetErrorLanguage(m_stored->ErrorLanguage());
}

void PackedSource::ReadUnits(std::uint64_t first, std::size_t count, std::uint8_t* out) {
    const std::size_t groupBytes = GroupOf(m_packing).bytes;
    const std::size_t most = kPieceBytes / groupBytes;
    const std::uint64_t whole = m_stored->Size() / groupBytes;
    while (count > 0) {
        const std::uint64_t offset = first * groupBytes;
        if (first >= whole) {
            std::array<std::uint8_t, kLongestGroup> cut{};
            m_stored->ReadExactly(offset, cut.data(), static_cast<std::size_t>(m_stored->Size() - offset));
            return Unpack(m_packing, cut.data(), 1, out);
        }
        const auto groups = static_cast<std::size_t>(std::min<std::uint64_t>(std::min(count, most), whole - first));
        Unpack(m_packing, m_piece.Read(*m_stored, offset, groups * groupBytes), groups, out);
        first += groups;
        count -= groups;
        out += groups * UnitBytes();
    }
}

}  // namespace quillon
