#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "norvik/TemporaryFolder.h"

namespace quillon::testing {

/// Bits, the most significant one first.
class BitWriter {
  public:
    BitWriter& Put(std::uint64_t number, unsigned bits) {
        while (bits-- > 0) {
            if (m_used++ % 8 == 0) bytes += '\0';
            const auto last = static_cast<std::uint8_t>(bytes.back());
            bytes.back() = static_cast<char>(last * 2U | (number >> bits & 1U));
        }
        return *this;
    }
    BitWriter& Signed(std::int64_t number, unsigned bits) { return Put(static_cast<std::uint64_t>(number), bits); }
    BitWriter& Unary(std::uint64_t zeros) {
        for (; zeros > 0; --zeros) Put(0, 1);
        return Put(1, 1);
    }
    /// A remainder in long division of all bytes by a polynomial.
    BitWriter& Crc(std::uint32_t polynomial, unsigned width) {
        std::uint32_t sum = 0;
        for (const char byte : bytes) {
            for (unsigned bit = 8; bit-- > 0;) {
                const bool one = ((sum >> (width - 1) ^ static_cast<std::uint8_t>(byte) >> bit) & 1U) != 0;
                sum = (sum << 1 ^ (one ? polynomial : 0)) & ((1U << width) - 1);
            }
        }
        return Put(sum, width);
    }
    BitWriter& Align() { return Put(0, static_cast<unsigned>((8 - m_used % 8) % 8)); }
    std::string bytes;

  private:
    std::size_t m_used = 0;
};

/// Writes FLAC files that use every way to store samples, as chance decides.
struct FlacBuilder {
    using Samples = std::vector<std::int64_t>;
    using Dice = std::independent_bits_engine<std::mt19937, 32, std::uint32_t>;

    unsigned channels = 1;
    unsigned depth = 16;
    std::uint32_t block = 100;  ///< samples of a frame; where it is variable, the most
    bool variable = false;
    std::uint64_t firstNumber = 0;  ///< sample number that the first frame has
    Dice random{20240607};
    std::vector<Samples> samples{};       ///< by channel
    std::vector<std::string> frames{};    ///< the whole ones
    std::vector<std::uint64_t> firsts{};  ///< sample that each of them begins with

    /// Samples of another nature every now and then: noise, ramps, equal ones, ones that end with zeros.
    void Record(std::size_t count) {
        samples.assign(channels, {});
        const std::int64_t full = std::int64_t{1} << (depth - 1);
        for (Samples& channel : samples) {
            std::int64_t sample = 0;
            unsigned nature = 0;
            while (channel.size() < count) {
                if (random() % 60 == 0) nature = random() % 5;
                const auto noise = static_cast<std::int64_t>(random()) - (std::int64_t{1} << 31);
                if (nature == 0) sample = noise >> (32 - depth);
                if (nature == 1) sample += 3;
                if (nature == 2) sample = sample >> 2 << 2;
                if (nature == 3) sample += noise >> (33 - std::min(depth, 8U));
                channel.push_back(sample = std::clamp(sample, -full, full - 1));
            }
        }
        // Channels that are much alike, as stereo mostly is.
        for (std::size_t at = 0; channels == 2 && random() % 2 == 0 && at < count; ++at)
            samples[1][at] = std::clamp(samples[0][at] + random() % 4, -full, full - 1);
    }
    void Encode() {
        frames.clear();
        for (std::uint64_t first = 0; first < samples[0].size();) {
            const std::uint64_t most = variable ? random() % block + 1 : block;
            const std::uint64_t count = std::min<std::uint64_t>(most, samples[0].size() - first);
            firsts.push_back(first);
            frames.push_back(Frame(first, static_cast<std::size_t>(count)));
            first += count;
        }
    }

    /// `total` and the sizes of frames as the file claims them.
    [[nodiscard]] std::string StreamInformation(std::uint64_t total, std::uint32_t least = 0) const {
        BitWriter bits;
        bits.Put(least != 0 ? least : variable ? 16 : block, 16).Put(block, 16).Put(0, 48).Put(44100, 20);
        bits.Put(channels - 1, 3).Put(depth - 1, 5).Put(total, 36).Put(0, 64).Put(0, 64);
        return bits.bytes;
    }
    static std::string Metadata(unsigned type, const std::string& content, bool last = false) {
        return BitWriter().Put(last ? 1 : 0, 1).Put(type, 7).Put(content.size(), 24).bytes + content;
    }
    [[nodiscard]] std::string Header() const {
        return "fLaC" + Metadata(0, StreamInformation(samples[0].size()), true);
    }
    [[nodiscard]] std::string Body() const {
        std::string body;
        for (const std::string& frame : frames) body += frame;
        return body;
    }
    [[nodiscard]] std::string File() const { return Header() + Body(); }

  private:
    static void PutNumber(BitWriter& bits, std::uint64_t number) {
        if (number < 0x80) {
            bits.Put(number, 8);
            return;
        }
        unsigned more = 1;
        while (number >> (5 * more + 6) != 0) ++more;
        bits.Put(0xFFU << (7 - more), 8);
        bits.bytes.back() = static_cast<char>(bits.bytes.back() | static_cast<char>(number >> (6 * more)));
        while (more-- > 0) bits.Put(2, 2).Put(number >> (6 * more) & 63U, 6);
    }
    std::string Frame(std::uint64_t first, std::size_t count) {
        const auto part = [&](std::size_t channel) {
            const auto from = samples[channel].begin() + static_cast<std::ptrdiff_t>(first);
            return Samples(from, from + static_cast<std::ptrdiff_t>(count));
        };
        std::vector<Samples> stored;
        for (std::size_t channel = 0; channel < channels; ++channel) stored.push_back(part(channel));
        const unsigned stereo = channels == 2 ? random() % 4 : 0;
        for (std::size_t at = 0; stereo != 0 && at < count; ++at) {
            const std::int64_t left = stored[0][at];
            const std::int64_t right = stored[1][at];
            if (stereo != 2) stored[1][at] = left - right;
            if (stereo == 2) stored[0][at] = left - right;
            if (stereo == 3) stored[0][at] = (left + right) >> 1;
        }
        BitWriter bits;
        bits.Put(0x3FFE, 14).Put(variable ? 1 : 0, 2);
        const bool small = count <= 256 && random() % 2 == 0;
        const unsigned sizeCode = count == 192 ? 1 : count == 1024 ? 10 : small ? 6 : 7;
        const unsigned rateCode = std::array<unsigned, 5>{0, 9, 12, 13, 14}[random() % 5];
        constexpr std::array<unsigned, 8> depths{0, 8, 12, 99, 16, 20, 24, 32};
        const auto known = std::find(depths.begin(), depths.end(), depth);
        const auto depthCode = known == depths.end() || random() % 2 == 0 ? 0 : known - depths.begin();
        bits.Put(sizeCode, 4).Put(rateCode, 4).Put(stereo == 0 ? channels - 1 : 7 + stereo, 4);
        bits.Put(static_cast<std::uint64_t>(depthCode), 3).Put(0, 1);
        PutNumber(bits, variable ? first + firstNumber : (first + firstNumber) / block);
        if (sizeCode == 6 || sizeCode == 7) bits.Put(count - 1, sizeCode == 6 ? 8 : 16);
        if (rateCode >= 12) bits.Put(rateCode == 12 ? 44 : rateCode == 13 ? 44100 : 4410, rateCode == 12 ? 8 : 16);
        bits.Crc(0x07, 8);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const bool side = stereo != 0 && channel == (stereo == 2 ? 0U : 1U);
            Subframe(bits, stored[channel], depth + (side ? 1 : 0));
        }
        return bits.Align().Crc(0x8005, 16).bytes;
    }
    void Subframe(BitWriter& bits, Samples part, unsigned width) {
        std::uint64_t all = std::uint64_t{1} << (width - 1);
        for (const std::int64_t sample : part) all |= static_cast<std::uint64_t>(sample);
        const auto zeros = static_cast<unsigned>(std::countr_zero(all));
        const unsigned wasted = zeros > 0 ? random() % (zeros + 1) : 0;
        for (std::int64_t& sample : part) sample >>= wasted;
        width -= wasted;
        const auto begin = [&](unsigned kind) {
            bits.Put(kind, 7).Put(wasted > 0 ? 1 : 0, 1);
            if (wasted > 0) bits.Unary(wasted - 1);
        };
        if (std::count(part.begin(), part.end(), part[0]) == std::ptrdiff_t(part.size()) && random() % 4 != 0) {
            begin(0);
            bits.Signed(part[0], width);
        } else if (!Predicted(bits, begin, part, width)) {
            begin(1);
            for (const std::int64_t sample : part) bits.Signed(sample, width);
        }
    }
    /// False, with nothing written, where residuals would need more than 32 bits.
    template <typename Begin>
    bool Predicted(BitWriter& bits, const Begin& begin, const Samples& part, unsigned width) {
        constexpr std::array<std::array<std::int64_t, 4>, 5> fixed{{{}, {1}, {2, -1}, {3, -3, 1}, {4, -6, 4, -1}}};
        const bool linear = random() % 2 == 0;
        const unsigned order = linear ? random() % 32 + 1 : random() % 5;
        if (order > part.size()) return false;
        const unsigned precision = random() % 15 + 1;
        const unsigned shift = linear ? random() % 16 : 0;
        std::vector<std::int64_t> coefficients(fixed[order % 5].begin(), fixed[order % 5].end());
        if (linear) {
            coefficients.clear();
            for (unsigned at = 0; at < order; ++at)
                coefficients.push_back((static_cast<std::int64_t>(random()) - (std::int64_t{1} << 31)) >>
                                       (32 - precision));
        }
        Samples residuals;
        for (std::size_t at = order; at < part.size(); ++at) {
            std::int64_t sum = 0;
            for (std::size_t back = 0; back < order; ++back) sum += coefficients[back] * part[at - 1 - back];
            residuals.push_back(part[at] - (sum >> shift));
            if (std::abs(residuals.back()) >= std::int64_t{1} << 30) return false;
        }
        begin(linear ? 31 + order : 8 + order);
        for (std::size_t at = 0; at < order; ++at) bits.Signed(part[at], width);
        if (linear) {
            bits.Put(precision - 1, 4).Put(shift, 5);
            for (const std::int64_t coefficient : coefficients) bits.Signed(coefficient, precision);
        }
        Residuals(bits, residuals, order);
        return true;
    }
    void Residuals(BitWriter& bits, const Samples& residuals, unsigned order) {
        const std::size_t count = residuals.size() + order;
        unsigned partitions = random() % 5;
        while (count % (std::size_t{1} << partitions) != 0 || count >> partitions < order) --partitions;
        const bool wide = random() % 2 == 0;
        bits.Put(wide ? 1 : 0, 2).Put(partitions, 4);
        auto from = residuals.begin();
        for (std::size_t end = count >> partitions; end <= count; end += count >> partitions) {
            const auto to = residuals.begin() + static_cast<std::ptrdiff_t>(end - order);
            std::uint64_t all = 0;
            for (auto at = from; at != to; ++at) all |= static_cast<std::uint64_t>(*at < 0 ? ~*at : *at);
            const bool silent = std::all_of(from, to, [](std::int64_t residual) { return residual == 0; });
            const unsigned needed = silent ? 0 : static_cast<unsigned>(std::bit_width(all)) + 1;
            const unsigned most = wide ? 30 : 14;
            // Long runs of zeros, though not so that a frame becomes larger than any encoder would leave it.
            const bool rare = random() % 16 == 0 && to - from <= 40;
            const unsigned parameter = std::min(most, needed - std::min(needed, random() % (rare ? 9 : 4)));
            const bool escaped = random() % 4 == 0 || needed > parameter + 8 || (!rare && needed > parameter + 4);
            bits.Put(escaped ? most + 1 : parameter, wide ? 5 : 4);
            if (escaped) bits.Put(needed, 5);
            for (; from != to; ++from) {
                const auto folded = static_cast<std::uint64_t>(*from < 0 ? -2 * *from - 1 : 2 * *from);
                if (escaped) {
                    bits.Signed(*from, needed);
                } else {
                    bits.Unary(folded >> parameter).Put(folded, parameter);
                }
            }
            if (end == count) break;
        }
    }
};

}  // namespace quillon::testing
