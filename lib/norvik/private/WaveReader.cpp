#include "norvik/private/WaveReader.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/private/FrameBlock.h"
#include "norvik/private/FrameCount.h"
#include "norvik/private/WaveChunks.h"
#include "norvik/private/WaveFormat.h"
#include "norvik/private/WaveMarks.h"

namespace quillon {

namespace {

constexpr std::size_t kFormHeaderBytes = 12;
/// Offset of the origination date, "yyyy-mm-dd", in the broadcast extension (EBU Tech 3285); the time, "hh:mm:ss",
/// follows it.
constexpr std::size_t kBroadcastDate = 320;
constexpr std::size_t kBroadcastDateBytes = 18;

std::string_view Characters(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

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
    if (size < kFormHeaderBytes) {
        throw FormatError(Say(u"the header ends at byte %1 of 12", u"заголовок обрывается на байте %1 из 12",
                              {Decimal(static_cast<std::int64_t>(size))}));
    }
    if (!LooksLikeWave(start))
        throw FormatError(Say(u"no \"RIFF\" and \"WAVE\" at byte 0", u"нет \"RIFF\" и \"WAVE\" в байте 0"));
}

FrameCount CountWaveFrames(const WaveData& data, std::size_t frameBytes) {
    const bool own = data.chunk.declared == data.declared32;
    const bool wrapped = own && SizeWrapped(data.declared32, data.rest);
    if (data.sizeUnknown || wrapped) return CountUnclosedFrames(data.rest, frameBytes);
    return CountFrames(data.chunk.declared, data.rest, frameBytes);
}

[[noreturn]] void RefuseMissing(std::u16string_view chunk, const ByteSource& source) {
    throw FormatError(Say(u"no \"%1\" chunk from byte 12 to %2", u"нет блока \"%1\" в байтах с 12 по %2",
                          {std::u16string(chunk), Decimal(static_cast<std::int64_t>(source.Size()))}));
}

FrameRecording DescribeRecording(const WaveFormat& format, const WaveData& data) {
    FrameRecording recording;
    recording.layout = {format.kind, data.chunk.offset, format.frameBytes, 0};
    recording.sampleRate = format.rate;
    for (std::size_t index = 0; index < format.channels; ++index) {
        ChannelDescription channel;
        channel.number = static_cast<std::int16_t>(index % kBlockChannels);
        channel.inputNumber = static_cast<std::int16_t>(std::min<std::size_t>(index + 1, 32767));
        channel.unit = u"FS";
        channel.scale = static_cast<float>(FullScaleUnit(format.kind));
        recording.channels.push_back(std::move(channel));
    }
    return recording;
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
    const WaveChunks chunks = WalkWaveChunks(*source);
    if (!chunks.format) RefuseMissing(u"fmt ", *source);
    const WaveFormat format = ParseWaveFormat(ReadWaveChunk(*source, *chunks.format), chunks.format->offset);
    if (!chunks.data) RefuseMissing(u"data", *source);

    FrameRecording recording = DescribeRecording(format, *chunks.data);
    const FrameCount frames = CountWaveFrames(*chunks.data, format.frameBytes);
    recording.frameCount = frames.count;
    recording.startTime = source->ModifiedTime();
    if (chunks.broadcast) {
        static_cast<void>(ReadBroadcastStart(ReadWaveChunk(*source, *chunks.broadcast), recording.startTime));
    }
    if (chunks.cues) {
        WaveCueTexts texts;
        for (const WaveChunk& list : chunks.lists) texts.Add(ReadWaveChunk(*source, list));
        recording.marks = ReadWaveCues(ReadWaveChunk(*source, *chunks.cues), texts, chunks.playlist);
    }

    RecordingContent content;
    content.format = u"WAVE";
    content.info = DescribeFrames(WaveFormatName(format), recording);
    AppendRemark(content.info, frames.remark);
    content.blocks = MakeFrameBlocks(source, recording);
    return content;
}

}  // namespace quillon
