#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <vector>

#include "norvik/private/WideSamples.h"

namespace quillon {
namespace {

constexpr SampleKind kKinds[] = {SampleKind::Int24,  SampleKind::Int32, SampleKind::Float32, SampleKind::Float64,
                                 SampleKind::Int8,   SampleKind::Uint8, SampleKind::Uint16,  SampleKind::Uint24,
                                 SampleKind::Uint32, SampleKind::Int64, SampleKind::Uint64};

bool IsUnsigned(SampleKind kind) {
    return kind == SampleKind::Uint8 || kind == SampleKind::Uint16 || kind == SampleKind::Uint24 ||
           kind == SampleKind::Uint32 || kind == SampleKind::Uint64;
}

/// Samples as they are stored, with `gap` bytes between them, and what they are.
struct Stored {
    std::vector<std::uint8_t> bytes;
    std::vector<double> values;
    StoredSamples samples;

    /// Shape 0: anything, the ends of the range too; 1: multiples of 1/32768 (1 in integers) from -1 to 1; 2: what lies
    /// in and next to the middle between two codes of scales with step 3.
    Stored(SampleKind kind, std::size_t count, std::size_t gap, int shape, std::mt19937& random) {
        const std::size_t size = SampleBytes(kind);
        const bool isFloat = kind == SampleKind::Float32 || kind == SampleKind::Float64;
        // Numbers that doubles hold.
        const int bits = static_cast<int>(std::min<std::size_t>(8 * size, 52));
        const double start = IsUnsigned(kind) ? 0.0 : -std::ldexp(1.0, bits - 1);
        for (std::size_t i = 0; i < count; ++i) {
            const auto whole = static_cast<std::int32_t>(random());
            const double multiple = static_cast<double>(static_cast<std::int32_t>(random() % 65536) - 32768);
            const double share = std::ldexp(static_cast<double>(static_cast<std::uint32_t>(whole)), bits - 32);
            double value = isFloat ? std::ldexp(whole, -static_cast<int>(random() % 60)) : start + std::floor(share);
            if (shape == 1) value = isFloat ? multiple / 32768.0 : multiple;
            if (shape == 2) value = isFloat ? multiple * 1.5 : multiple * 3.0 + static_cast<double>(random() % 3);
            if (isFloat && shape == 2 && random() % 2 == 0) value = std::nextafter(value, 0.0);
            if (!isFloat) value = std::clamp(value, start, start + std::ldexp(1.0, bits) - 1.0);
            if (kind == SampleKind::Float32) value = static_cast<double>(static_cast<float>(value));
            values.push_back(value);
        }
        for (const double special : {HUGE_VAL, -HUGE_VAL, std::nan(""), -0.0}) {
            if (isFloat && count > 0 && random() % 5 == 0) values[random() % count] = special;
        }
        for (std::size_t i = 0; i < count; ++i) {
            std::uint64_t stored = 0;
            if (!isFloat) stored = static_cast<std::uint64_t>(static_cast<std::int64_t>(values[i]));
            if (kind == SampleKind::Float32) stored = std::bit_cast<std::uint32_t>(static_cast<float>(values[i]));
            if (kind == SampleKind::Float64) stored = std::bit_cast<std::uint64_t>(values[i]);
            if (i > 0) bytes.resize(bytes.size() + gap, 0xAB);
            for (std::size_t at = 0; at < size; ++at) bytes.push_back(static_cast<std::uint8_t>(stored >> (8 * at)));
        }
        samples = {kind, bytes.data(), size + gap, count};
    }
};

TEST(WideSamples, ExtremesAndCodesAreThoseOfThePlainLoop) {
    std::mt19937 random(5);
    for (int round = 0; round < 6000; ++round) {
        const SampleKind kind = kKinds[static_cast<std::size_t>(round) % std::size(kKinds)];
        const std::size_t count = random() % (round % 16 < 4 ? 1200 : 40);
        const Stored stored(kind, count, random() % 3 == 0 ? random() % 70 : 0, round / 4 % 3, random);
        const bool isFloat = kind == SampleKind::Float32 || kind == SampleKind::Float64;

        SeenSamples seen;
        SeenSamples expected;
        // What was seen before counts too.
        if (random() % 2 == 0) seen = expected = {-1e-3, 1e-3, random() % 2 == 0};
        seen.Add(stored.samples);
        for (const double value : stored.values) {
            if (!std::isfinite(value)) continue;
            expected.minimum = std::min(expected.minimum, value);
            expected.maximum = std::max(expected.maximum, value);
            const double code = value * 32768.0;
            if (code < -32768.0 || code > 32767.0 || code != std::trunc(code)) expected.sixteenBits = false;
        }
        ASSERT_EQ(seen.minimum, expected.minimum) << round;
        ASSERT_EQ(seen.maximum, expected.maximum) << round;
        ASSERT_EQ(isFloat && seen.sixteenBits, isFloat && expected.sixteenBits) << round;

        const WideScale scales[] = {{0.0, 1.0},        {-7.0, 3.0},   {0.25, 0.1},
                                    {1e9, 123456.789}, {0.0, 5e-324}, {0.0, 1e306}};
        const WideScale scale = scales[random() % std::size(scales)];
        const double factor = random() % 2 == 0 ? 1.0 : 32768.0;
        // Room for the codes and no more.
        std::vector<std::int16_t> codes(count);
        CodeSamples(stored.samples, factor, scale, codes.data());
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_EQ(codes[i], scale.Code(stored.values[i] * factor)) << round << ' ' << i << ' ' << stored.values[i];
    }
}

}  // namespace
}  // namespace quillon
