#include "nsp/SideBySide.h"

#include <algorithm>
#include <bit>

#include "nsp/LaneSearch.h"

namespace quillon::nsp {

namespace {

constexpr std::size_t kLanes = 8;
constexpr std::size_t kGroupVectors = 5;
constexpr std::size_t kGroup = kGroupVectors * kLanes;  // samples
static_assert(kGroup == kLeastSideBySide);
static_assert(kMostSideBySide <= kGroup * LaneSearch::kMostGroups);

/// Joins the lanes of each channel by `join`, two vectors at a time: half as many vectors with the same number of
/// samples in them, in the order of the sources.
template <std::size_t Channels, typename Join>
__m128i Fold(const __m128i* v, Join join) {
    const auto halves = [&](std::size_t at) {
        return join(_mm_unpacklo_epi64(v[at], v[at + 1]), _mm_unpackhi_epi64(v[at], v[at + 1]));
    };
    if constexpr (Channels == 4) return halves(0);
    const auto quarters = [&](std::size_t at) {
        const __m128 a = _mm_castsi128_ps(halves(at));
        const __m128 b = _mm_castsi128_ps(halves(at + 2));
        return join(_mm_castps_si128(_mm_shuffle_ps(a, b, 0x88)), _mm_castps_si128(_mm_shuffle_ps(a, b, 0xDD)));
    };
    if constexpr (Channels == 2) return quarters(0);
    if constexpr (Channels == 1) {
        const auto low = [](__m128i lanes) { return _mm_srai_epi32(_mm_slli_epi32(lanes, 16), 16); };
        const __m128i a = quarters(0);
        const __m128i b = quarters(4);
        return join(_mm_packs_epi32(low(a), low(b)), _mm_packs_epi32(_mm_srai_epi32(a, 16), _mm_srai_epi32(b, 16)));
    }
}

/// One bit for each sample of a group that equals `value`.
std::uint64_t PlacesOf(const std::int16_t* group, std::int16_t value) {
    const __m128i wanted = _mm_set1_epi16(value);
    const auto found = [&](std::size_t vector) { return _mm_cmpeq_epi16(LoadLanes(group + vector * kLanes), wanted); };
    const auto bits = [](__m128i a, __m128i b) {
        return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(a, b))));
    };
    return bits(found(0), found(1)) | bits(found(2), found(3)) << 16U | bits(found(4), _mm_setzero_si128()) << 32U;
}

}  // namespace

template <std::size_t Channels>
LaneExtremes ReduceSideBySide(const std::int16_t* const* sources, std::size_t count) {
    constexpr std::size_t kSources = kLanes / Channels;
    LaneSearch search{};
    // The last group overlaps the one before it: a sample seen twice changes nothing.
    const auto start = [count](std::size_t group) { return std::min(group * kGroup, count - kGroup); };
    for (std::size_t group = 0; group * kGroup < count; ++group) {
        const std::size_t at = start(group);
        __m128i highest[kSources];
        __m128i lowest[kSources];
        for (std::size_t i = 0; i < kSources; ++i) {
            const auto range = LaneRange::Of<kGroupVectors>(sources[i] + at, kLanes);
            highest[i] = range.highest;
            lowest[i] = range.lowest;
        }
        const LaneRange folded{Fold<Channels>(highest, [](__m128i a, __m128i b) { return _mm_max_epi16(a, b); }),
                               Fold<Channels>(lowest, [](__m128i a, __m128i b) { return _mm_min_epi16(a, b); })};
        if (group == 0) {
            search = LaneSearch::Of(folded);
        } else {
            search.Add(folded, _mm_set1_epi16(static_cast<std::int16_t>(group)));
        }
    }
    return search.Result([&](std::size_t lane, std::size_t group, const Extremes& values) {
        constexpr std::uint64_t kOfChannel = Channels == 1   ? ~std::uint64_t{0}
                                             : Channels == 2 ? 0x5555555555555555U
                                                             : 0x1111111111111111U;
        const std::int16_t* const from = sources[lane / Channels] + start(group);
        const std::uint64_t wanted = kOfChannel << (lane % Channels);
        return std::countr_zero(PlacesOf(from, values.minimum) & wanted) <
               std::countr_zero(PlacesOf(from, values.maximum) & wanted);
    });
}

template LaneExtremes ReduceSideBySide<1>(const std::int16_t* const*, std::size_t);
template LaneExtremes ReduceSideBySide<2>(const std::int16_t* const*, std::size_t);
template LaneExtremes ReduceSideBySide<4>(const std::int16_t* const*, std::size_t);

}  // namespace quillon::nsp
