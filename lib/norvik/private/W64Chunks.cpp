#include "norvik/private/W64Chunks.h"

#include <algorithm>
#include <array>

#include "base/LittleEndian.h"
#include "base/Text.h"

namespace quillon {

namespace {

using Guid = std::array<std::uint8_t, 16>;

constexpr std::uint64_t kHeaderBytes = 24;
constexpr Guid kRiff{'r', 'i', 'f', 'f', 0x2E, 0x91, 0xCF, 0x11, 0xA5, 0xD6, 0x28, 0xDB, 0x04, 0xC1, 0x00, 0x00};

/// Names of four letters share the rest.
constexpr Guid Named(std::string_view letters) {
    Guid guid{0, 0, 0, 0, 0xF3, 0xAC, 0xD3, 0x11, 0x8C, 0xD1, 0x00, 0xC0, 0x4F, 0x8E, 0xDB, 0x8A};
    for (std::size_t at = 0; at < letters.size(); ++at) guid[at] = static_cast<std::uint8_t>(letters[at]);
    return guid;
}

struct Header {
    Guid id{};
    std::uint64_t size = 0;  ///< with the header
};

std::optional<Header> ReadHeader(ByteSource& source, std::uint64_t offset) {
    std::array<std::uint8_t, kHeaderBytes> bytes{};
    if (source.ReadAt(offset, bytes.data(), bytes.size()) != bytes.size()) return std::nullopt;
    Header header;
    std::copy_n(bytes.begin(), header.id.size(), header.id.begin());
    header.size = Le64(bytes.data() + header.id.size());
    return header;
}

/// Every chunk begins at a multiple of 8 bytes.
std::uint64_t Aligned(std::uint64_t offset) {
    return (offset + 7) / 8 * 8;
}

/// True when a whole chunk lies at `offset`, so that what comes before it has ended there.
bool LongChunkFollows(ByteSource& source, std::uint64_t offset) {
    const std::optional<Header> header = ReadHeader(source, offset);
    return header && header->size >= kHeaderBytes && header->size <= source.Size() - offset;
}

}  // namespace

bool LooksLikeW64(std::span<const std::uint8_t> start) {
    return start.size() >= kRiff.size() && std::equal(kRiff.begin(), kRiff.end(), start.begin());
}

WaveChunks WalkW64Chunks(ByteSource& source) {
    constexpr Guid format = Named("fmt ");
    constexpr Guid data = Named("data");
    constexpr Guid broadcast = Named("bext");
    WaveChunks chunks;
    std::uint64_t at = kW64FormBytes;
    for (int count = 0; count < kMostChunks && at < source.Size(); ++count) {
        const std::optional<Header> header = ReadHeader(source, at);
        if (!header) break;
        const std::uint64_t offset = at + kHeaderBytes;
        const std::uint64_t rest = source.Size() - offset;
        const bool isData = header->id == data && !chunks.data;
        if (header->size < kHeaderBytes && !(isData && header->size == 0)) {
            if (chunks.data) break;
            throw FormatError(Say(u"chunk at byte %1 has a size below 24", u"размер блока в байте %1 меньше 24",
                                  {Decimal(static_cast<std::int64_t>(at))}));
        }
        const std::uint64_t size = std::max(header->size, kHeaderBytes) - kHeaderBytes;
        const WaveChunk chunk{offset, size, std::min(size, rest)};
        if (header->id == format && !chunks.format) chunks.format = chunk;
        if (header->id == broadcast && !chunks.broadcast) chunks.broadcast = chunk;
        if (isData) {
            // Sizes of 64 bits do not wrap.
            chunks.data = WaveData{chunk, size == 0 && !LongChunkFollows(source, offset), rest, 0xFFFFFFFF};
            if (chunks.data->sizeUnknown) break;
        }
        at = Aligned(offset + chunk.available);
    }
    return chunks;
}

}  // namespace quillon
