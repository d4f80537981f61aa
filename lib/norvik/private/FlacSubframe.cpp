#include "norvik/private/FlacSubframe.h"

#include <algorithm>
#include <array>
#include <bit>
#include <type_traits>
#include <vector>

#include "norvik/private/FlacPredictor.h"

namespace quillon {

namespace {

/// The residuals of one partition.
bool ReadPartition(FlacBits& bits, unsigned parameterBits, std::span<std::int32_t> residuals) {
    const unsigned parameter = bits.Read(parameterBits);
    if (parameter != (1U << parameterBits) - 1) {
        bits.ReadRice(parameter, residuals.data(), residuals.size());
        return !bits.Overrun();
    }
    const unsigned width = bits.Read(5);
    for (std::int32_t& residual : residuals) residual = static_cast<std::int32_t>(bits.ReadSigned(width));
    return !bits.Overrun();
}

/// All residuals of a subframe whose predictor has `order` coefficients; they follow as many samples.
bool ReadResiduals(FlacBits& bits, unsigned order, std::span<std::int32_t> samples) {
    const unsigned coding = bits.Read(2);
    const unsigned partitionOrder = bits.Read(4);
    const std::size_t size = samples.size() >> partitionOrder;
    if (coding > 1 || size << partitionOrder != samples.size() || size < order) return false;
    std::size_t first = order;
    for (std::size_t end = size; end <= samples.size(); first = end, end += size) {
        if (!ReadPartition(bits, coding == 0 ? 4 : 5, samples.subspan(first, end - first))) return false;
    }
    return true;
}

bool ReadResiduals(FlacBits& bits, unsigned order, std::span<std::int64_t> samples) {
    std::vector<std::int32_t> residuals(samples.size());
    if (!ReadResiduals(bits, order, std::span(residuals))) return false;
    std::copy(residuals.begin() + order, residuals.end(), samples.begin() + order);
    return true;
}

template <typename Sample>
void ReadSamples(FlacBits& bits, unsigned depth, std::span<Sample> samples) {
    for (Sample& sample : samples) {
        if (bits.Overrun()) return;
        sample = static_cast<Sample>(bits.ReadSigned(depth));
    }
}

template <typename Sample>
bool ReadLinear(FlacBits& bits, unsigned order, unsigned depth, std::span<Sample> samples) {
    ReadSamples(bits, depth, samples.first(order));
    const unsigned precision = bits.Read(4) + 1;
    const std::int64_t shift = bits.ReadSigned(5);
    if (precision == 16 || shift < 0) return false;
    std::array<std::int32_t, kFlacMostOrder> coefficients{};
    for (unsigned at = 0; at < order; ++at) coefficients[at] = static_cast<std::int32_t>(bits.ReadSigned(precision));
    if (!ReadResiduals(bits, order, samples)) return false;
    const bool narrow = depth + precision + static_cast<unsigned>(std::bit_width(order - 1)) <= 32;
    RestoreLinear(std::span<const std::int32_t>(coefficients).first(order), static_cast<unsigned>(shift), narrow,
                  samples);
    return true;
}

/// `kind`: the six bits that tell how the samples are stored.
template <typename Sample>
bool ReadByKind(FlacBits& bits, unsigned kind, unsigned depth, std::span<Sample> samples) {
    if (kind == 0) {
        std::fill(samples.begin(), samples.end(), static_cast<Sample>(bits.ReadSigned(depth)));
        return true;
    }
    if (kind == 1) {
        ReadSamples(bits, depth, samples);
        return true;
    }
    const bool linear = kind >= 32;
    const unsigned order = linear ? kind - 31 : kind - 8;
    if (kind < 8 || (!linear && order > kFlacMostFixedOrder) || order > samples.size()) return false;
    if (linear) return ReadLinear(bits, order, depth, samples);
    ReadSamples(bits, depth, samples.first(order));
    if (!ReadResiduals(bits, order, samples)) return false;
    RestoreFixed(order, samples);
    return true;
}

}  // namespace

template <typename Sample>
bool ReadFlacSubframe(FlacBits& bits, unsigned depth, std::span<Sample> samples) {
    if (bits.Read(1) != 0) return false;
    const unsigned kind = bits.Read(6);
    const std::uint32_t wasted = bits.Read(1) != 0 ? bits.ReadZeros() + 1 : 0;
    if (wasted >= depth || !ReadByKind(bits, kind, depth - wasted, samples) || bits.Overrun()) return false;
    if (wasted == 0) return true;
    using Unsigned = std::make_unsigned_t<Sample>;
    for (Sample& sample : samples) sample = static_cast<Sample>(static_cast<Unsigned>(sample) << wasted);
    return true;
}

template bool ReadFlacSubframe<std::int32_t>(FlacBits&, unsigned, std::span<std::int32_t>);
template bool ReadFlacSubframe<std::int64_t>(FlacBits&, unsigned, std::span<std::int64_t>);

}  // namespace quillon
