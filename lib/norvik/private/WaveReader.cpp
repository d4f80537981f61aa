#include "norvik/private/WaveReader.h"

#include <array>
#include <string_view>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/private/FrameBlock.h"
#include "norvik/private/FrameCount.h"
#include "norvik/private/Refusals.h"
#include "norvik/private/Sound.h"
#include "norvik/private/W64Chunks.h"
#include "norvik/private/WaveChunks.h"
#include "norvik/private/WaveFormat.h"
#include "norvik/private/WaveMarks.h"

namespace quillon {

namespace {

/// Offset of the origination date, "yyyy-mm-dd", in the broadcast extension (EBU Tech 3285); the time, "hh:mm:ss",
/// follows it.
constexpr std::size_t kBroadcastDate = 320;
constexpr std::size_t kBroadcastDateBytes = 18;

/// The decimal number of `size` digits at `at`; -1 where there are others than digits.
int Digits(std::string_view text, std::size_t at, std::size_t size) {
    int number = 0;
    for (const char letter : text.substr(at, size)) {
        if (letter < '0' || letter > '9') return -1;
        number = number * 10 + (letter - '0');
    }
    return number;
}

/// The start out of a broadcast extension; the separators differ among writers. False where it holds no date.
bool ReadBroadcastStart(std::span<const std::uint8_t> chunk, double& start) {
    if (chunk.size() < kBroadcastDate + kBroadcastDateBytes) return false;
    const std::string_view text = Characters(chunk.subspan(kBroadcastDate, kBroadcastDateBytes));
    CivilTime time{Digits(text, 0, 4),
                   Digits(text, 5, 2),
                   Digits(text, 8, 2),
                   Digits(text, 10, 2),
                   Digits(text, 13, 2),
                   Digits(text, 16, 2),
                   0};
    const bool dated = time.year >= 1 && time.month >= 1 && time.month <= 12 && time.day >= 1 && time.day <= 31;
    if (!dated) return false;
    const bool timed = time.hour >= 0 && time.hour < 24 && time.minute >= 0 && time.minute < 60 && time.second >= 0 &&
                       time.second < 61;
    if (!timed) time.hour = time.minute = time.second = 0;
    start = DateFromCivil(time);
    return true;
}

void CheckForm(ByteSource& source) {
    std::array<std::uint8_t, kFormHeaderBytes> start{};
    const std::size_t size = source.ReadAt(0, start.data(), start.size());
    const std::string_view text = Characters(start);
    if (text.substr(0, 4) == "RIFX") {
        throw FormatError(Say(u"RIFX (big-endian WAVE) at byte 0 is not supported",
                              u"RIFX (WAVE с обратным порядком байт) в байте 0 не поддерживается"));
    }
    if (size < kFormHeaderBytes) RefuseCutHeader(size, kFormHeaderBytes);
    if (!LooksLikeWave(start))
        throw FormatError(Say(u"no \"RIFF\" and \"WAVE\" at byte 0", u"нет \"RIFF\" и \"WAVE\" в байте 0"));
}

FrameCount CountWaveFrames(const WaveData& data, std::size_t frameBytes) {
    const bool own = data.chunk.declared == data.declared32;
    const bool wrapped = own && SizeWrapped(data.declared32, data.rest);
    if (data.sizeUnknown || wrapped) return CountUnclosedFrames(data.rest, frameBytes);
    return CountFrames(data.chunk.declared, data.rest, frameBytes);
}

/// Reads what the chunks hold, of which the first one begins at byte `first`.
RecordingContent ReadChunks(const std::shared_ptr<ByteSource>& source, const WaveChunks& chunks, std::uint64_t first,
                            std::u16string_view name) {
    if (!chunks.format) RefuseMissingChunk(u"fmt ", first, source->Size());
    const WaveFormat format = ParseWaveFormat(ReadWaveChunk(*source, *chunks.format), chunks.format->offset);
    if (!chunks.data) RefuseMissingChunk(u"data", first, source->Size());

    FrameRecording recording = DescribeSound(format.kind, format.channels, format.rate);
    recording.layout.dataOffset = chunks.data->chunk.offset;
    recording.layout.frameBytes = format.frameBytes;
    const FrameCount frames = CountWaveFrames(*chunks.data, format.frameBytes);
    recording.frameCount = frames.count;
    recording.startTime = source->ModifiedTime();
    const bool dated =
        chunks.broadcast && ReadBroadcastStart(ReadWaveChunk(*source, *chunks.broadcast), recording.startTime);
    if (chunks.cues) {
        WaveCueTexts texts;
        for (const WaveChunk& list : chunks.lists) texts.Add(ReadWaveChunk(*source, list));
        recording.marks = ReadWaveCues(ReadWaveChunk(*source, *chunks.cues), texts, chunks.playlist);
    }

    RecordingContent content;
    content.format = name;
    content.info = DescribeFrames(SoundName(name, format.kind, format.bits), recording);
    AppendRemark(content.info, frames.remark);
    if (!dated) AppendRemark(content.info, FileTimeRemark());
    content.blocks = MakeFrameBlocks(source, recording);
    return content;
}

}  // namespace

bool LooksLikeWave(std::span<const std::uint8_t> start) {
    if (start.size() < kFormHeaderBytes) return false;
    const std::string_view form = Characters(start.first(4));
    const bool known = form == "RIFF" || form == "RIFX" || form == "RF64" || form == "BW64";
    return known && Characters(start.subspan(8, 4)) == "WAVE";
}

RecordingContent ReadWave(const std::shared_ptr<ByteSource>& source) {
    CheckForm(*source);
    return ReadChunks(source, WalkWaveChunks(*source), kFormHeaderBytes, u"WAVE");
}

RecordingContent ReadW64(const std::shared_ptr<ByteSource>& source) {
    std::vector<std::uint8_t> start(16);
    start.resize(source->ReadAt(0, start.data(), start.size()));
    if (!LooksLikeW64(start)) {
        throw FormatError(Say(u"no GUID \"riff\" of W64 files at byte 0", u"в байте 0 нет GUID \"riff\" файлов W64"));
    }
    return ReadChunks(source, WalkW64Chunks(*source), kW64FormBytes, u"W64");
}

}  // namespace quillon
