#include "norvik/private/FlacFinder.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "base/Text.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

namespace {

/// What is read where it is not known whether the next bytes are needed, too.
constexpr std::uint64_t kProbeBytes = std::uint64_t{64} * 1024;
/// How far the first frame may lie behind the metadata.
constexpr std::uint64_t kFirstFrameBytes = std::uint64_t{16} << 20;

/// Samples that may be decoded in vain while a search goes on, and for each byte that it has passed: a few bytes can
/// claim many samples, and a file of such frames must not keep the program busy for minutes.
constexpr std::uint64_t kVainSamples = std::uint64_t{1} << 22;
constexpr std::uint64_t kVainSamplesPerByte = 16;

/// More than any frame that an encoder makes: twice the samples as they are.
std::size_t MostBytes(const FlacFrameHeader& header, unsigned depth) {
    return std::size_t{header.samples} * header.channels * (depth + 1) / 4 + 4096;
}

}  // namespace

FlacFinder::FlacFinder(std::shared_ptr<ByteSource> source, const FlacMetadata& metadata)
    : m_source(std::move(source)), m_channels(metadata.channels), m_depth(metadata.depth) {
    FindFirst(metadata);
}

std::span<const std::uint8_t> FlacFinder::Bytes(std::uint64_t offset, std::size_t count) {
    const std::uint64_t left = m_source->Size() - offset;
    const auto wanted = std::min<std::uint64_t>(count, left);
    const std::uint64_t windowEnd = m_windowOffset + m_window.size();
    const bool inside = offset >= m_windowOffset && offset <= windowEnd;
    if (!inside || windowEnd - offset < wanted) {
        // The further reading goes on, the more is read ahead.
        const std::uint64_t most = std::max<std::uint64_t>(kPieceBytes, 4 * wanted);
        const std::uint64_t ahead = inside ? std::min<std::uint64_t>(2 * m_window.size(), most) : kProbeBytes;
        const auto size = static_cast<std::size_t>(std::min(std::max(ahead, wanted), left));
        m_window = {};
        m_window = {m_piece.Read(*m_source, offset, size), size};
        m_windowOffset = offset;
    }
    return m_window.subspan(static_cast<std::size_t>(offset - m_windowOffset));
}

bool FlacFinder::IsAlike(const FlacFrameHeader& header) const {
    if (header.channels != m_channels) return false;
    if (!m_known) return true;
    return (header.depth == 0 || header.depth == m_depth) && header.variable == m_variable &&
           (m_variable || header.samples <= m_numberScale);
}

std::optional<FlacPlace> FlacFinder::At(const FlacRange& range, FlacSamples& out) {
    const std::uint64_t offset = range.firstByte;
    if (offset >= range.endByte) return std::nullopt;
    const std::span<const std::uint8_t> start = Bytes(offset, kFlacHeaderBytes);
    const std::optional<FlacFrameHeader> header =
        ParseFlacFrameHeader(start.first(std::min(start.size(), kFlacHeaderBytes)));
    if (!header || !IsAlike(*header)) return std::nullopt;
    // A number has 36 bits and counts up to 65536 samples each.
    const std::uint64_t number = header->number * m_numberScale;
    if (number < m_firstNumber) return std::nullopt;
    FlacPlace place{number - m_firstNumber, number - m_firstNumber + header->samples, offset, 0};
    if (place.first < range.firstSample || place.end > range.endSample) return std::nullopt;
    const unsigned depth = m_known || header->depth == 0 ? m_depth : header->depth;
    const std::size_t most = MostBytes(*header, depth);
    const std::span<const std::uint8_t> bytes = Bytes(offset, most);
    const std::size_t size = DecodeFlacFrame(*header, depth, bytes.first(std::min(bytes.size(), most)), out);
    if (size == 0) {
        m_vainSamples += std::uint64_t{header->samples} * header->channels;
        return std::nullopt;
    }
    place.next = offset + size;
    return place;
}

std::optional<FlacPlace> FlacFinder::Search(FlacRange range, FlacSamples& out) {
    const std::uint64_t start = range.firstByte;
    m_vainSamples = 0;
    while (range.firstByte < range.endByte) {
        if (m_vainSamples > kVainSamples + kVainSamplesPerByte * (range.firstByte - start)) break;
        const std::span<const std::uint8_t> bytes = Bytes(range.firstByte, kFlacHeaderBytes);
        const auto size =
            static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), range.endByte - range.firstByte));
        if (size == 0) break;
        const void* const found = std::memchr(bytes.data(), 0xFF, size);
        if (found == nullptr) {
            range.firstByte += size;
            continue;
        }
        range.firstByte += static_cast<std::uint64_t>(static_cast<const std::uint8_t*>(found) - bytes.data());
        if (const std::optional<FlacPlace> place = At(range, out)) return place;
        ++range.firstByte;
    }
    return std::nullopt;
}

void FlacFinder::FindFirst(const FlacMetadata& metadata) {
    const std::uint64_t start = metadata.firstFrame;
    const std::uint64_t size = m_source->Size();
    m_first = {0, 0, start, start};
    if (start == size) return;
    const auto number = [](std::uint64_t value) { return Decimal(static_cast<std::int64_t>(value)); };
    const std::span<const std::uint8_t> bytes = Bytes(start, kFlacHeaderBytes);
    std::optional<FlacFrameHeader> header = ParseFlacFrameHeader(bytes.first(std::min(bytes.size(), kFlacHeaderBytes)));
    if (header && header->channels != m_channels) {
        throw FormatError(Say(u"the frame at byte %1 has %2 channels, the stream information %3",
                              u"в кадре в байте %1 каналов: %2, а в сведениях о потоке: %3",
                              {number(start), number(header->channels), number(m_channels)}));
    }
    FlacSamples samples;
    FlacRange range{.firstByte = start, .endByte = std::min(size, start + kFirstFrameBytes)};
    const std::optional<FlacPlace> place = Search(range, samples);
    if (!place) {
        throw FormatError(
            Say(u"no whole frame from byte %1 on", u"нет целых кадров начиная с байта %1", {number(start)}));
    }
    const std::span<const std::uint8_t> first = Bytes(place->offset, kFlacHeaderBytes);
    header = ParseFlacFrameHeader(first.first(std::min(first.size(), kFlacHeaderBytes)));
    if (header->depth != 0) m_depth = header->depth;
    m_variable = header->variable;
    // The last frame is shorter than the others, and may be the first one that is whole.
    const bool sameSizes = metadata.leastBlock == metadata.mostBlock && header->samples <= metadata.mostBlock;
    if (!m_variable) m_numberScale = header->number > 0 && sameSizes ? metadata.mostBlock : header->samples;
    const std::uint64_t firstSample = header->number * m_numberScale;
    // A part of a longer stream keeps its numbers.
    if (place->offset == start) m_firstNumber = firstSample;
    m_known = true;
    m_first = {firstSample - m_firstNumber, firstSample - m_firstNumber + header->samples, place->offset, place->next};
}

FlacPlace FlacFinder::Last(std::uint64_t most, FlacSamples& out) {
    FlacPlace last = m_first;
    FlacRange range{m_first.end, most, m_first.next, m_source->Size()};
    // From the end on backwards, then by halves: what follows the last frame may be long.
    std::uint64_t from = range.endByte - std::min(range.endByte - range.firstByte, kProbeBytes);
    std::uint64_t end = range.endByte;
    while (from > last.next) {
        const std::optional<FlacPlace> place =
            Search({last.end, most, from, std::min(end, from + 16 * kProbeBytes)}, out);
        if (place) {
            last = *place;
        } else {
            end = from;
        }
        if (end <= last.next + kProbeBytes || (place && end == range.endByte)) break;
        from = last.next + (end - last.next) / 2;
    }
    for (range.firstByte = last.next; range.firstByte < end; range.firstByte = last.next) {
        range.firstSample = last.end;
        range.endByte = end;
        const std::optional<FlacPlace> place = Search(range, out);
        if (!place) break;
        last = *place;
    }
    return last;
}

}  // namespace quillon
