#include "norvik/private/FlacFrame.h"

#include <array>
#include <bit>

#include "norvik/private/FlacBits.h"
#include "norvik/private/FlacCrc.h"
#include "norvik/private/FlacSubframe.h"

namespace quillon {

namespace {

constexpr std::size_t kLeastHeaderBytes = 6;
constexpr unsigned kMostDepth = 32;

/// A number of up to 36 bits, coded as UTF-8 codes characters.
bool ReadCodedNumber(FlacBits& bits, std::uint64_t& number) {
    const std::uint32_t first = bits.Read(8);
    const auto ones = static_cast<unsigned>(std::countl_one(static_cast<std::uint8_t>(first)));
    if (ones == 1 || ones == 8) return false;
    number = ones == 0 ? first : first & (0x7FU >> ones);
    for (unsigned at = 1; at < ones; ++at) {
        const std::uint32_t next = bits.Read(8);
        if ((next & 0xC0U) != 0x80U) return false;
        number = number << 6 | (next & 0x3FU);
    }
    return true;
}

/// 0 for a code that is reserved.
std::uint32_t BlockSize(unsigned code, FlacBits& bits) {
    if (code == 0) return 0;
    if (code == 1) return 192;
    if (code < 6) return 576U << (code - 2);
    if (code < 8) return bits.Read(code == 6 ? 8 : 16) + 1;
    return 256U << (code - 8);
}

/// What the frame says of the rate is not needed.
bool SkipRate(unsigned code, FlacBits& bits) {
    if (code == 15) return false;
    if (code >= 12) static_cast<void>(bits.Read(code == 12 ? 8 : 16));
    return true;
}

void Join(FlacStereo stereo, std::span<std::int32_t> first, std::span<std::int32_t> second) {
    const auto wrapped = [](std::uint32_t number) { return static_cast<std::int32_t>(number); };
    const auto bits = [](std::int32_t number) { return static_cast<std::uint32_t>(number); };
    const std::size_t count = first.size();
    switch (stereo) {
        case FlacStereo::Independent: return;
        case FlacStereo::LeftSide:
            for (std::size_t at = 0; at < count; ++at) second[at] = wrapped(bits(first[at]) - bits(second[at]));
            return;
        case FlacStereo::SideRight:
            for (std::size_t at = 0; at < count; ++at) first[at] = wrapped(bits(first[at]) + bits(second[at]));
            return;
        case FlacStereo::MidSide:
            for (std::size_t at = 0; at < count; ++at) {
                const std::uint32_t side = bits(second[at]);
                const std::uint32_t twice = bits(first[at]) << 1 | (side & 1U);
                first[at] = wrapped(twice + side) >> 1;
                second[at] = wrapped(twice - side) >> 1;
            }
            return;
    }
}

/// The same with a side channel of 33 bits.
void JoinWide(FlacStereo stereo, std::span<std::int32_t> other, std::span<const std::int64_t> side,
              std::span<std::int32_t> left, std::span<std::int32_t> right) {
    for (std::size_t at = 0; at < side.size(); ++at) {
        const std::int64_t whole = other[at];
        // Of a damaged frame the side channel may be anything; the sums wrap around.
        const auto difference = static_cast<std::uint64_t>(side[at]);
        const auto low = [](std::uint64_t number) { return static_cast<std::int32_t>(number); };
        if (stereo == FlacStereo::MidSide) {
            const std::uint64_t twice = static_cast<std::uint64_t>(whole) << 1 | (difference & 1U);
            left[at] = low((twice + difference) >> 1);
            right[at] = low((twice - difference) >> 1);
        } else if (stereo == FlacStereo::LeftSide) {
            right[at] = low(static_cast<std::uint64_t>(whole) - difference);
        } else {
            left[at] = low(static_cast<std::uint64_t>(whole) + difference);
        }
    }
}

bool ReadWideStereo(FlacBits& bits, FlacStereo stereo, FlacSamples& out) {
    std::vector<std::int64_t> side(out.count);
    const bool sideFirst = stereo == FlacStereo::SideRight;
    const std::span<std::int32_t> other = out.Channel(sideFirst ? 1 : 0);
    if (sideFirst && !ReadFlacSubframe(bits, kMostDepth + 1, std::span(side))) return false;
    if (!ReadFlacSubframe(bits, kMostDepth, other)) return false;
    if (!sideFirst && !ReadFlacSubframe(bits, kMostDepth + 1, std::span(side))) return false;
    JoinWide(stereo, other, side, out.Channel(0), out.Channel(1));
    return true;
}

bool ReadChannels(FlacBits& bits, const FlacFrameHeader& header, unsigned depth, FlacSamples& out) {
    const FlacStereo stereo = header.stereo;
    if (stereo != FlacStereo::Independent && depth == kMostDepth) return ReadWideStereo(bits, stereo, out);
    for (std::size_t channel = 0; channel < header.channels; ++channel) {
        const bool side = stereo != FlacStereo::Independent && channel == (stereo == FlacStereo::SideRight ? 0U : 1U);
        if (!ReadFlacSubframe(bits, depth + (side ? 1 : 0), out.Channel(channel))) return false;
    }
    if (stereo != FlacStereo::Independent) Join(stereo, out.Channel(0), out.Channel(1));
    return true;
}

}  // namespace

std::optional<FlacFrameHeader> ParseFlacFrameHeader(std::span<const std::uint8_t> bytes) {
    constexpr std::array<unsigned, 8> depths{0, 8, 12, 0, 16, 20, 24, 32};
    if (bytes.size() < kLeastHeaderBytes || bytes[0] != 0xFF || (bytes[1] & 0xFEU) != 0xF8U) return std::nullopt;
    const unsigned channels = bytes[3] >> 4;
    const unsigned depthCode = bytes[3] >> 1 & 7U;
    if (channels > 10 || depthCode == 3 || (bytes[3] & 1U) != 0) return std::nullopt;
    FlacFrameHeader header;
    header.variable = (bytes[1] & 1U) != 0;
    header.depth = depths[depthCode];
    header.channels = channels < kFlacChannels ? channels + 1 : 2;
    if (channels >= kFlacChannels) header.stereo = static_cast<FlacStereo>(channels - kFlacChannels + 1);
    FlacBits bits(bytes.data() + 4, bytes.size() - 4);
    if (!ReadCodedNumber(bits, header.number)) return std::nullopt;
    header.samples = BlockSize(bytes[2] >> 4, bits);
    if (header.samples == 0 || !SkipRate(bytes[2] & 15U, bits)) return std::nullopt;
    header.bytes = 4 + bits.Position() + 1;
    if (bits.Read(8) != FlacCrc8(bytes.data(), header.bytes - 1) || bits.Overrun()) return std::nullopt;
    return header;
}

std::size_t DecodeFlacFrame(const FlacFrameHeader& header, unsigned depth, std::span<const std::uint8_t> bytes,
                            FlacSamples& out) {
    out.count = header.samples;
    out.samples.resize(out.count * header.channels);
    FlacBits bits(bytes.data() + header.bytes, bytes.size() - header.bytes);
    if (!ReadChannels(bits, header, depth, out)) return 0;
    bits.Align();
    const std::size_t checked = header.bytes + bits.Position();
    const std::uint32_t stored = bits.Read(16);
    if (bits.Overrun() || stored != FlacCrc16(bytes.data(), checked)) return 0;
    return checked + 2;
}

}  // namespace quillon
