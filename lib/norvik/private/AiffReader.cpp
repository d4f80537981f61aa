#include "norvik/private/AiffReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>

#include "base/BigEndian.h"
#include "base/Text.h"
#include "norvik/private/FrameBlock.h"
#include "norvik/private/FrameCount.h"
#include "norvik/private/Refusals.h"
#include "norvik/private/ReorderedSource.h"
#include "norvik/private/Sound.h"
#include "norvik/private/WaveChunks.h"

namespace quillon {

namespace {

constexpr std::size_t kCommonBytes = 18;
constexpr std::uint64_t kOffsetBytes = 8;  // in front of the samples

/// The chunks that a recording is read from; the first of a kind counts.
struct AiffChunks {
    std::optional<WaveChunk> common;
    std::optional<WaveChunk> sound;
    std::optional<WaveChunk> markers;
};

AiffChunks WalkChunks(ByteSource& source) {
    AiffChunks chunks;
    std::uint64_t at = kFormHeaderBytes;
    for (int count = 0; count < kMostChunks && at < source.Size(); ++count) {
        const std::optional<ChunkHeader> header = ReadChunkHeader(source, at, true);
        if (!header) break;
        WaveChunk chunk{at + kChunkHeaderBytes, header->size, 0};
        const std::uint64_t rest = source.Size() - chunk.offset;
        chunk.available = std::min(chunk.declared, rest);
        const auto keep = [&](std::string_view id, std::optional<WaveChunk>& place) {
            if (header->Id() == id && !place) place = chunk;
        };
        keep("COMM", chunks.common);
        keep("MARK", chunks.markers);
        if (header->Id() == "SSND" && !chunks.sound) {
            // A writer that was stopped, or whose target could not be rewound, has left the size open.
            const bool open = chunk.declared == 0 && !ReadChunkHeader(source, chunk.offset, true);
            if (open) chunk.declared = chunk.available = rest;
            chunks.sound = chunk;
        }
        at = NextChunk(source, chunk, true);
    }
    return chunks;
}

/// How the samples are stored.
struct AiffFormat {
    SampleKind kind = SampleKind::Int16;
    bool bigEndian = true;
    bool hasSign = true;  ///< of 8 bits
    std::uint16_t channels = 0;
    std::uint32_t frames = 0;
    std::uint16_t bits = 0;
    double rate = 0.0;
    std::u16string name;  ///< "AIFF", "AIFC sowt"
};

/// A float of 80 bits: a sign and 15 bits of exponent, then 64 of which the highest is the whole part.
double Extended(const std::uint8_t* bytes) {
    const std::uint16_t head = Be16(bytes);
    const int exponent = head & 0x7FFF;
    const double number = std::ldexp(static_cast<double>(Be64(bytes + 2)), exponent - 16383 - 63);
    return (head & 0x8000) != 0 ? -number : number;
}

SampleKind KindOfBytes(std::size_t bytes) {
    constexpr SampleKind kinds[] = {SampleKind::Unsigned8, SampleKind::Int16, SampleKind::Int24, SampleKind::Int32};
    return kinds[bytes - 1];
}

void ApplyCompression(std::string_view type, std::uint64_t offset, AiffFormat& format) {
    constexpr std::string_view whole[] = {"NONE", "twos", "sowt", "in24", "in32", "raw "};
    const bool isWhole = std::find(std::begin(whole), std::end(whole), type) != std::end(whole);
    format.name = u"AIFC " + FromLatin1(Trim(type));
    format.bigEndian = type != "sowt";
    if (type == "in24") format.bits = 24;
    if (type == "in32") format.bits = 32;
    if (type == "raw ") {
        format.bits = 8;
        format.hasSign = false;
    }
    if (isWhole) return;
    const bool single = type == "fl32" || type == "FL32";
    const bool isDouble = type == "fl64" || type == "FL64";
    if (!single && !isDouble) {
        throw FormatError(Say(u"compressed samples, '%1', at byte %2", u"сжатые отсчёты, «%1», в байте %2",
                              {FromLatin1(type), Number(offset)}));
    }
    format.kind = single ? SampleKind::Float32 : SampleKind::Float64;
    format.bits = single ? 32 : 64;
}

AiffFormat ParseCommon(std::span<const std::uint8_t> chunk, std::uint64_t offset, bool compressed) {
    const std::size_t needed = compressed ? kCommonBytes + 4 : kCommonBytes;
    if (chunk.size() < needed) {
        throw FormatError(Say(u"the \"COMM\" chunk at byte %1 is shorter than %2 bytes: %3",
                              u"блок \"COMM\" в байте %1 короче %2 байт: %3",
                              {Number(offset), Number(needed), Number(chunk.size())}));
    }
    AiffFormat format;
    format.name = u"AIFF";
    format.channels = Be16(chunk.data());
    format.frames = Be32(chunk.data() + 2);
    format.bits = Be16(chunk.data() + 6);
    format.rate = Extended(chunk.data() + 8);
    if (format.channels == 0 || format.channels > 32767)
        RefuseField(u"channel count", u"число каналов", format.channels, offset);
    if (!std::isfinite(format.rate) || format.rate < 1e-9 || format.rate > 1e12) {
        const std::u16string shown =
            std::isfinite(format.rate) && std::abs(format.rate) < 1e12 ? ShortestDecimal(format.rate) : u"?";
        RefuseField(u"sample rate", u"частота дискретизации", shown, offset + 8);
    }
    if (compressed) ApplyCompression(Characters(chunk.subspan(kCommonBytes, 4)), offset + kCommonBytes, format);
    if (IsFloat(format.kind)) return format;
    if (format.bits == 0 || format.bits > 32)
        RefuseField(u"bits per sample", u"разрядность отсчёта", format.bits, offset + 6);
    // Samples of fewer bits than their bytes hold have zeros below them.
    format.kind = KindOfBytes((format.bits + 7U) / 8);
    return format;
}

/// The markers in order of position; the number of one stands in for its text.
std::vector<FrameMark> ReadMarkers(std::span<const std::uint8_t> chunk) {
    constexpr std::size_t kFixed = 7;  // number, position and size of the text
    std::vector<FrameMark> marks;
    if (chunk.size() < 2) return marks;
    const std::size_t count = Be16(chunk.data());
    std::size_t at = 2;
    while (marks.size() < count && chunk.size() - at >= kFixed) {
        const std::uint8_t* const marker = chunk.data() + at;
        const std::size_t size = std::min<std::size_t>(marker[6], chunk.size() - at - kFixed);
        const std::string_view text = Trim(Characters(chunk.subspan(at + kFixed, size)));
        marks.push_back({Be32(marker + 2), text.empty() ? Number(Be16(marker)) : FromUtf8OrLatin1(text)});
        // The text and its size take an even number of bytes.
        at = std::min(at + kFixed + size + (size + 1) % 2, chunk.size());
    }
    std::stable_sort(marks.begin(), marks.end(),
                     [](const FrameMark& left, const FrameMark& right) { return left.position < right.position; });
    return marks;
}

/// `skipped`: bytes of the chunk in front of the samples; `rest`: those of the file behind that.
FrameCount CountSound(const AiffFormat& format, const WaveChunk& chunk, std::uint64_t skipped, std::uint64_t rest) {
    const std::uint64_t frameBytes = format.channels * std::uint64_t{SampleBytes(format.kind)};
    const std::uint64_t available = std::min(chunk.available - std::min(chunk.available, skipped), rest);
    if (format.frames == 0) return CountUnclosedFrames(available, frameBytes);
    const std::uint64_t stated = format.frames * frameBytes;
    // The size of a chunk beyond 4 GiB has lost its highest bits.
    const bool wrapped = stated > available && static_cast<std::uint32_t>(stated + skipped) == chunk.declared;
    return CountFrames(stated, wrapped ? rest : available, frameBytes);
}

/// Reads the form; returns whether it is AIFC.
bool ReadForm(ByteSource& source) {
    std::vector<std::uint8_t> start(kFormHeaderBytes);
    start.resize(source.ReadAt(0, start.data(), start.size()));
    if (!LooksLikeAiff(start))
        throw FormatError(Say(u"no \"FORM\" and \"AIFF\" at byte 0", u"нет \"FORM\" и \"AIFF\" в байте 0"));
    return start.back() == 'C';
}

}  // namespace

bool LooksLikeAiff(std::span<const std::uint8_t> start) {
    if (start.size() < kFormHeaderBytes || Characters(start.first(4)) != "FORM") return false;
    const std::string_view type = Characters(start.subspan(8, 4));
    return type == "AIFF" || type == "AIFC";
}

RecordingContent ReadAiff(const std::shared_ptr<ByteSource>& source) {
    const bool compressed = ReadForm(*source);
    const AiffChunks chunks = WalkChunks(*source);
    if (!chunks.common) RefuseMissingChunk(u"COMM", kFormHeaderBytes, source->Size());
    const AiffFormat format = ParseCommon(ReadWaveChunk(*source, *chunks.common), chunks.common->offset, compressed);
    if (!chunks.sound) RefuseMissingChunk(u"SSND", kFormHeaderBytes, source->Size());
    std::array<std::uint8_t, kOffsetBytes> bytes{};
    if (chunks.sound->available < bytes.size()) RefuseCutHeader(source->Size(), chunks.sound->offset + bytes.size());
    source->ReadExactly(chunks.sound->offset, bytes.data(), bytes.size());
    const std::uint64_t skipped = kOffsetBytes + Be32(bytes.data());
    const std::uint64_t start = std::min(chunks.sound->offset + skipped, source->Size());
    FrameRecording recording = DescribeSound(format.kind, format.channels, format.rate);
    const FrameCount frames = CountSound(format, *chunks.sound, skipped, source->Size() - start);
    recording.frameCount = frames.count;
    recording.startTime = source->ModifiedTime();
    if (chunks.markers) recording.marks = ReadMarkers(ReadWaveChunk(*source, *chunks.markers));

    RecordingContent content;
    content.format = compressed ? u"AIFC" : u"AIFF";
    content.info = DescribeFrames(SoundName(format.name, format.kind, format.bits), recording);
    AppendRemark(content.info, frames.remark);
    AppendRemark(content.info, FileTimeRemark());
    content.blocks = MakeFrameBlocks(
        std::make_shared<ReorderedSource>(source, SampleBytes(format.kind), format.bigEndian,
                                          format.kind == SampleKind::Unsigned8 && format.hasSign, start),
        recording);
    return content;
}

}  // namespace quillon
