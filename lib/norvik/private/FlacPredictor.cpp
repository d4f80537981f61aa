#include "norvik/private/FlacPredictor.h"

#include <array>
#include <type_traits>
#include <utility>

namespace quillon {

namespace {

/// The residuals are differences of this order, so summing them up as often gives the samples.
template <unsigned Order, typename Sample>
void SumUp(std::span<Sample> samples) {
    using Unsigned = std::make_unsigned_t<Sample>;
    std::array<Unsigned, Order> sums{};  // the last difference of each order, of order 0 first
    for (unsigned at = 0; at < Order; ++at) sums[at] = static_cast<Unsigned>(samples[Order - 1 - at]);
    for (unsigned depth = 1; depth < Order; ++depth) {
        for (unsigned at = Order - 1; at >= depth; --at) sums[at] = sums[at - 1] - sums[at];
    }
    for (Sample& sample : samples.subspan(Order)) {
        auto sum = static_cast<Unsigned>(sample);
        for (unsigned at = Order; at-- > 0;) sum = sums[at] += sum;
        sample = static_cast<Sample>(sum);
    }
}

/// What a predictor of any order works on.
template <typename Sample>
struct Linear {
    std::span<const std::int32_t> coefficients;
    unsigned shift;
    std::span<Sample> samples;
};

/// `Order` 0: that of the coefficients.
template <typename Sum, unsigned Order, typename Sample>
void Restore(const Linear<Sample>& linear) {
    using Unsigned = std::make_unsigned_t<Sum>;
    const std::size_t order = Order == 0 ? linear.coefficients.size() : Order;
    std::array<Unsigned, kFlacMostOrder> coefficients{};
    for (std::size_t at = 0; at < order; ++at)
        coefficients[at] = static_cast<Unsigned>(static_cast<Sum>(linear.coefficients[at]));
    const unsigned shift = linear.shift;
    Sample* const end = linear.samples.data() + linear.samples.size();
    Sample last = linear.samples[order - 1];
    for (Sample* next = linear.samples.data() + order; next != end; ++next) {
        // The latest sample comes last and from a register, because the others are known long before.
        Unsigned sum = 0;
        for (std::size_t back = order; back > 1; --back)
            sum += coefficients[back - 1] * static_cast<Unsigned>(next[-static_cast<std::ptrdiff_t>(back)]);
        sum += coefficients[0] * static_cast<Unsigned>(last);
        using Wrapping = std::make_unsigned_t<Sample>;
        last =
            static_cast<Sample>(static_cast<Wrapping>(*next) + static_cast<Wrapping>(static_cast<Sum>(sum) >> shift));
        *next = last;
    }
}

/// Orders up to which a loop of its own pays: those that encoders use for sound.
constexpr std::size_t kUnrolled = 12;

template <typename Sum, typename Sample, unsigned... Order>
void RestoreByOrder(const Linear<Sample>& linear, std::integer_sequence<unsigned, Order...>) {
    constexpr std::array<void (*)(const Linear<Sample>&), sizeof...(Order)> functions{Restore<Sum, Order, Sample>...};
    const std::size_t order = linear.coefficients.size();
    functions[order < functions.size() ? order : 0](linear);
}

}  // namespace

template <typename Sample>
void RestoreFixed(unsigned order, std::span<Sample> samples) {
    switch (order) {
        case 1: return SumUp<1>(samples);
        case 2: return SumUp<2>(samples);
        case 3: return SumUp<3>(samples);
        case 4: return SumUp<4>(samples);
        default: return;
    }
}

template <typename Sample>
void RestoreLinear(std::span<const std::int32_t> coefficients, unsigned shift, bool narrow, std::span<Sample> samples) {
    constexpr std::make_integer_sequence<unsigned, kUnrolled + 1> orders;
    const Linear<Sample> linear{coefficients, shift, samples};
    if (narrow) return RestoreByOrder<std::int32_t>(linear, orders);
    RestoreByOrder<std::int64_t>(linear, orders);
}

template void RestoreFixed<std::int32_t>(unsigned, std::span<std::int32_t>);
template void RestoreFixed<std::int64_t>(unsigned, std::span<std::int64_t>);
template void RestoreLinear<std::int32_t>(std::span<const std::int32_t>, unsigned, bool, std::span<std::int32_t>);
template void RestoreLinear<std::int64_t>(std::span<const std::int32_t>, unsigned, bool, std::span<std::int64_t>);

}  // namespace quillon
