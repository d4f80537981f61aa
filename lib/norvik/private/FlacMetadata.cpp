#include "norvik/private/FlacMetadata.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/LittleEndian.h"
#include "base/Text.h"
#include "norvik/private/Refusals.h"

namespace quillon {

namespace {

constexpr std::size_t kBlockHeaderBytes = 4;
constexpr std::size_t kStreamInformationBytes = 34;
constexpr std::size_t kSeekPointBytes = 18;
constexpr std::size_t kTagHeaderBytes = 10;
/// In a cue sheet: up to its tracks, a track without its indexes, and an index.
constexpr std::size_t kCueSheetBytes = 396;
constexpr std::size_t kTrackBytes = 36;
constexpr std::size_t kIndexBytes = 12;
/// The track that only tells where the last one ends: on a compact disc, and elsewhere.
constexpr std::uint8_t kLeadOutOfDisc = 170;
constexpr std::uint8_t kLeadOut = 255;
/// More blocks than any writer makes; keeps a damaged file from being walked for minutes.
constexpr int kMostMetadata = 10000;

enum BlockType : unsigned { kStreamInformation = 0, kSeekTable = 3, kComments = 4, kCueSheet = 5 };

struct BlockHeader {
    bool last = false;
    unsigned type = 0;
    std::size_t size = 0;
};

/// The big-endian number of `size` bytes.
std::uint64_t Big(std::span<const std::uint8_t> bytes, std::size_t offset, std::size_t size) {
    std::uint64_t number = 0;
    for (const std::uint8_t byte : bytes.subspan(offset, size)) number = number << 8 | byte;
    return number;
}

std::string_view Characters(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

BlockHeader ReadBlockHeader(ByteSource& source, std::uint64_t offset) {
    std::array<std::uint8_t, kBlockHeaderBytes> bytes{};
    const std::size_t read = source.ReadAt(offset, bytes.data(), bytes.size());
    const BlockHeader header{(bytes[0] & 0x80U) != 0, bytes[0] & 0x7FU, static_cast<std::size_t>(Big(bytes, 1, 3))};
    if (read != bytes.size() || header.size > source.Size() - offset - kBlockHeaderBytes) {
        throw FormatError(Say(u"the metadata block at byte %1 reaches beyond the end of the file",
                              u"блок метаданных в байте %1 выходит за конец файла", {Number(offset)}));
    }
    return header;
}

/// `offset`: byte of the file where the block's content begins.
void TakeStreamInformation(std::span<const std::uint8_t> block, std::uint64_t offset, FlacMetadata& metadata) {
    if (block.size() < kStreamInformationBytes) {
        RefuseField(u"stream information shorter than 34 bytes:", u"сведения о потоке короче 34 байт:", block.size(),
                    offset);
    }
    const std::uint64_t packed = Big(block, 10, 8);
    metadata.leastBlock = static_cast<std::uint32_t>(Big(block, 0, 2));
    metadata.mostBlock = static_cast<std::uint32_t>(Big(block, 2, 2));
    metadata.rate = static_cast<std::uint32_t>(packed >> 44);
    metadata.channels = static_cast<unsigned>(packed >> 41 & 7U) + 1;
    metadata.depth = static_cast<unsigned>(packed >> 36 & 31U) + 1;
    metadata.samples = packed & ((std::uint64_t{1} << 36) - 1);
    if (metadata.rate == 0) RefuseField(u"sample rate", u"частота дискретизации", 0, offset + 10);
    if (metadata.depth < 4) RefuseField(u"bits per sample", u"разрядность отсчёта", metadata.depth, offset + 12);
}

void TakeSeekTable(std::span<const std::uint8_t> block, FlacMetadata& metadata) {
    for (; block.size() >= kSeekPointBytes; block = block.subspan(kSeekPointBytes)) {
        // Offsets count from the first frame, which is not known yet.
        const FlacSeekPoint point{Big(block, 0, 8), Big(block, 8, 8)};
        if (point.sample != ~std::uint64_t{0}) metadata.seekPoints.push_back(point);
    }
}

/// The title out of comments, NAME=text, after the name of the writer; sizes are little-endian here.
void TakeTitle(std::span<const std::uint8_t> block, FlacMetadata& metadata) {
    const auto take = [&block] {
        if (block.size() < 4) return std::string_view();
        const std::size_t size = std::min<std::size_t>(Le32(block.data()), block.size() - 4);
        const std::string_view text = Characters(block.subspan(4, size));
        block = block.subspan(4 + size);
        return text;
    };
    constexpr std::u16string_view name = u"title=";
    static_cast<void>(take());
    if (block.size() < 4) return;
    block = block.subspan(4);
    while (!block.empty() && metadata.title.empty()) {
        const std::string_view comment = take();
        if (comment.empty() && block.size() < 4) return;
        if (LowerCase(FromLatin1(comment.substr(0, name.size()))) != name) continue;
        metadata.title = FromUtf8OrLatin1(Trim(comment.substr(name.size(), 200)));
        std::replace_if(
            metadata.title.begin(), metadata.title.end(), [](char16_t letter) { return letter < u' '; }, u' ');
    }
}

/// A mark for every track at its first index.
void TakeCueSheet(std::span<const std::uint8_t> block, FlacMetadata& metadata) {
    if (block.size() < kCueSheetBytes) return;
    for (block = block.subspan(kCueSheetBytes); block.size() >= kTrackBytes;) {
        const std::uint8_t track = block[8];
        const std::size_t indexes = block[35];
        const std::size_t size = kTrackBytes + indexes * kIndexBytes;
        if (size > block.size() || track == kLeadOut || track == kLeadOutOfDisc) break;
        std::uint64_t position = Big(block, 0, 8);
        if (indexes > 0) position += Big(block, kTrackBytes, 8);
        metadata.marks.push_back({position, Decimal(track)});
        block = block.subspan(size);
    }
    std::stable_sort(metadata.marks.begin(), metadata.marks.end(),
                     [](const FrameMark& left, const FrameMark& right) { return left.position < right.position; });
}

void TakeBlock(ByteSource& source, const BlockHeader& header, std::uint64_t offset, FlacMetadata& metadata) {
    if (header.type != kStreamInformation && header.type != kSeekTable && header.type != kComments &&
        header.type != kCueSheet)
        return;
    std::vector<std::uint8_t> block(header.size);
    source.ReadExactly(offset, block.data(), block.size());
    switch (header.type) {
        case kSeekTable: return TakeSeekTable(block, metadata);
        case kComments: return TakeTitle(block, metadata);
        case kCueSheet: return TakeCueSheet(block, metadata);
        default: return TakeStreamInformation(block, offset, metadata);
    }
}

/// Points whose places can be, in order, counted from the start of the file.
void PlaceSeekPoints(FlacMetadata& metadata, std::uint64_t size) {
    std::erase_if(metadata.seekPoints,
                  [&](const FlacSeekPoint& point) { return point.offset >= size - metadata.firstFrame; });
    for (FlacSeekPoint& point : metadata.seekPoints) point.offset += metadata.firstFrame;
    std::stable_sort(metadata.seekPoints.begin(), metadata.seekPoints.end(),
                     [](const FlacSeekPoint& left, const FlacSeekPoint& right) { return left.sample < right.sample; });
}

}  // namespace

std::uint64_t FlacMarkerOffset(std::span<const std::uint8_t> start) {
    if (start.size() < kTagHeaderBytes || Characters(start.first(3)) != "ID3") return 0;
    std::uint64_t size = 0;
    for (const std::uint8_t byte : start.subspan(6, 4)) size = size << 7 | (byte & 0x7FU);
    const bool footer = (start[5] & 0x10U) != 0;
    return size + kTagHeaderBytes * (footer ? 2 : 1);
}

FlacMetadata ReadFlacMetadata(ByteSource& source) {
    std::array<std::uint8_t, kTagHeaderBytes> start{};
    const std::size_t read = source.ReadAt(0, start.data(), start.size());
    const std::uint64_t marker = FlacMarkerOffset(std::span(start).first(read));
    std::array<std::uint8_t, 4> letters{};
    if (source.ReadAt(marker, letters.data(), letters.size()) != letters.size() || Characters(letters) != "fLaC")
        throw FormatError(Say(u"no \"fLaC\" at byte %1", u"нет \"fLaC\" в байте %1", {Number(marker)}));

    FlacMetadata metadata;
    std::uint64_t at = marker + letters.size();
    bool last = false;
    for (int count = 0; !last && count < kMostMetadata; ++count) {
        const BlockHeader header = ReadBlockHeader(source, at);
        if (count == 0 && header.type != kStreamInformation) {
            throw FormatError(Say(u"the first metadata block at byte %1 is of type %2, not the stream information",
                                  u"первый блок метаданных в байте %1 типа %2 – не сведения о потоке",
                                  {Number(at), Number(header.type)}));
        }
        const std::uint64_t content = at + kBlockHeaderBytes;
        if (count == 0 || header.type != kStreamInformation) TakeBlock(source, header, content, metadata);
        at = content + header.size;
        last = header.last;
    }
    metadata.firstFrame = at;
    PlaceSeekPoints(metadata, source.Size());
    return metadata;
}

}  // namespace quillon
