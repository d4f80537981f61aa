#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "norvik/private/WideScale.h"

namespace quillon {

/// How one sample is stored; all little-endian. Unsigned8 gives the code sample - 128; of all other whole numbers that
/// are not Int16 the code stands for the number itself. Float samples are full scale at 1.
enum class SampleKind {
    Unsigned8,
    Int16,
    Int24,
    Int32,
    Float32,
    Float64,
    Int8,
    Uint8,
    Uint16,
    Uint24,
    Uint32,
    Int64,
    Uint64
};

[[nodiscard]] std::size_t SampleBytes(SampleKind kind);
[[nodiscard]] bool IsFloat(SampleKind kind);
/// True for the kinds whose codes are chosen by what the samples are.
[[nodiscard]] bool IsWide(SampleKind kind);

/// Whole numbers are kept exactly by this factor where floats hold what was recorded with 16 bits.
inline constexpr double kSixteenBits = 32768.0;

/// Samples of one channel, `step` bytes from one to the next.
struct StoredSamples {
    SampleKind kind = SampleKind::Int24;  ///< a wide one
    const std::uint8_t* first = nullptr;
    std::size_t step = 0;
    std::size_t count = 0;
};

/// Frames are taken by as many bytes at a time when one channel after the other is, as what the first channel has
/// brought into the processor's cache then serves the others.
inline constexpr std::size_t kTileBytes = 16384;

/// What has been seen of one channel's samples; undefined and infinite ones do not count.
struct SeenSamples {
    double minimum = std::numeric_limits<double>::infinity();
    double maximum = -std::numeric_limits<double>::infinity();
    bool sixteenBits = true;  ///< of floats: every sample is a multiple of 1/32768 from -1 to below 1

    void Add(const StoredSamples& samples);
};

/// How a channel's wide samples become codes: the sample times `factor` is what `scale` takes.
struct WideCoding {
    double factor = 1.0;
    WideScale scale;
};

/// Chooses it by what was seen. value = sample x unitsPerSample + unitsOffset; `headroom` as of ChooseWideScale.
[[nodiscard]] WideCoding ChooseCoding(SampleKind kind, const SeenSamples& seen, double unitsPerSample,
                                      double unitsOffset, double headroom);

/// codes[i] = scale.Code(sample i x factor).
void CodeSamples(const StoredSamples& samples, double factor, const WideScale& scale, std::int16_t* codes);

}  // namespace quillon
