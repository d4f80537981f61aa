#include "norvik/private/WaveChunks.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/LittleEndian.h"

namespace quillon {

namespace {

constexpr std::uint32_t kUnknownSize = 0xFFFFFFFF;
constexpr std::uint64_t kMetadataBytes = std::uint64_t{16} * 1024 * 1024;

/// 64-bit sizes of chunks whose own header holds all ones.
struct LongSizes {
    struct Entry {
        std::array<char, 4> id{};
        std::uint64_t size = 0;
    };
    std::vector<Entry> entries;

    [[nodiscard]] std::optional<std::uint64_t> Find(std::string_view id) const {
        for (const Entry& entry : entries) {
            if (std::string_view(entry.id.data(), entry.id.size()) == id) return entry.size;
        }
        return std::nullopt;
    }
};

bool IsIdLetter(char letter) {
    return letter >= 0x20 && letter <= 0x7E;
}

/// The "ds64" chunk: size of the form, of the data, sample count, then a table of further chunks.
LongSizes ReadLongSizes(ByteSource& source, const WaveChunk& chunk) {
    const std::vector<std::uint8_t> bytes = ReadWaveChunk(source, chunk);
    LongSizes sizes;
    if (bytes.size() < 16) return sizes;
    sizes.entries.push_back({{'d', 'a', 't', 'a'}, Le64(bytes.data() + 8)});
    if (bytes.size() < 28) return sizes;
    const std::size_t count = std::min<std::size_t>(Le32(bytes.data() + 24), (bytes.size() - 28) / 12);
    for (std::size_t index = 0; index < std::min<std::size_t>(count, 64); ++index) {
        const std::uint8_t* at = bytes.data() + 28 + 12 * index;
        LongSizes::Entry entry;
        std::transform(at, at + 4, entry.id.begin(), [](std::uint8_t byte) { return static_cast<char>(byte); });
        entry.size = Le64(at + 4);
        sizes.entries.push_back(entry);
    }
    return sizes;
}

/// True when a whole chunk lies at `offset`, so that what comes before it has ended there.
bool ChunkFollows(ByteSource& source, std::uint64_t offset) {
    const std::optional<ChunkHeader> header = ReadChunkHeader(source, offset);
    return header && offset + kChunkHeaderBytes + header->size <= source.Size();
}

WaveData DescribeData(ByteSource& source, const WaveChunk& chunk, const ChunkHeader& header, bool longSize) {
    WaveData data{chunk, false, source.Size() - chunk.offset, header.size};
    const bool open = (header.size == kUnknownSize && !longSize) || chunk.declared == 0;
    data.sizeUnknown = open && !ChunkFollows(source, chunk.offset);
    return data;
}

void KeepFirst(std::optional<WaveChunk>& place, const WaveChunk& chunk) {
    if (!place) place = chunk;
}

}  // namespace

std::optional<ChunkHeader> ReadChunkHeader(ByteSource& source, std::uint64_t offset, bool bigEndian) {
    std::array<std::uint8_t, kChunkHeaderBytes> bytes{};
    if (source.ReadAt(offset, bytes.data(), bytes.size()) != bytes.size()) return std::nullopt;
    ChunkHeader header;
    std::transform(bytes.begin(), bytes.begin() + 4, header.id.begin(),
                   [](std::uint8_t byte) { return static_cast<char>(byte); });
    if (!std::all_of(header.id.begin(), header.id.end(), IsIdLetter)) return std::nullopt;
    if (bigEndian) std::reverse(bytes.begin() + 4, bytes.end());
    header.size = Le32(bytes.data() + 4);
    return header;
}

std::uint64_t NextChunk(ByteSource& source, const WaveChunk& chunk, bool bigEndian) {
    const std::uint64_t end = chunk.offset + chunk.available;
    if (chunk.available % 2 == 0) return end;
    const bool unpadded = ReadChunkHeader(source, end, bigEndian).has_value();
    return unpadded ? end : end + 1;
}

WaveChunks WalkWaveChunks(ByteSource& source) {
    WaveChunks chunks;
    LongSizes longSizes;
    std::uint64_t at = kFormHeaderBytes;
    for (int count = 0; count < kMostChunks && at < source.Size(); ++count) {
        const std::optional<ChunkHeader> header = ReadChunkHeader(source, at);
        if (!header) break;
        WaveChunk chunk{at + kChunkHeaderBytes, header->size, 0};
        std::optional<std::uint64_t> longSize;
        if (header->size == kUnknownSize) longSize = longSizes.Find(header->Id());
        if (longSize) chunk.declared = *longSize;
        chunk.available = std::min(chunk.declared, source.Size() - chunk.offset);

        const std::string_view id = header->Id();
        if (id == "ds64") longSizes = ReadLongSizes(source, chunk);
        if (id == "fmt ") KeepFirst(chunks.format, chunk);
        if (id == "cue ") KeepFirst(chunks.cues, chunk);
        if (id == "bext") KeepFirst(chunks.broadcast, chunk);
        if (id == "plst") chunks.playlist = true;
        if (id == "LIST") chunks.lists.push_back(chunk);
        if (id == "data" && !chunks.data) {
            chunks.data = DescribeData(source, chunk, *header, longSize.has_value());
            if (chunks.data->sizeUnknown) break;
        }
        at = NextChunk(source, chunk);
    }
    return chunks;
}

std::vector<std::uint8_t> ReadWaveChunk(ByteSource& source, const WaveChunk& chunk) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(chunk.available, kMetadataBytes)));
    source.ReadExactly(chunk.offset, bytes.data(), bytes.size());
    return bytes;
}

}  // namespace quillon
