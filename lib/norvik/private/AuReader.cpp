#include "norvik/private/AuReader.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/BigEndian.h"
#include "base/Text.h"
#include "norvik/private/FrameCount.h"
#include "norvik/private/Refusals.h"
#include "norvik/private/ReorderedSource.h"
#include "norvik/private/Sound.h"

namespace quillon {

namespace {

constexpr std::size_t kHeaderBytes = 24;
constexpr std::uint32_t kUnknownSize = 0xFFFFFFFF;

bool Begins(std::span<const std::uint8_t> bytes, std::string_view letters) {
    return bytes.size() >= letters.size() && std::equal(letters.begin(), letters.end(), bytes.begin());
}

/// 8 bits have a sign.
SampleKind KindOf(std::uint32_t encoding) {
    switch (encoding) {
        case 2: return SampleKind::Unsigned8;
        case 3: return SampleKind::Int16;
        case 4: return SampleKind::Int24;
        case 5: return SampleKind::Int32;
        case 6: return SampleKind::Float32;
        case 7: return SampleKind::Float64;
        default: break;
    }
    if (encoding == 1 || encoding == 27) {
        throw FormatError(Say(u"compressed samples, %1 (%2), at byte 12", u"сжатые отсчёты, %1 (%2), в байте 12",
                              {encoding == 1 ? u"mu-law" : u"A-law", Number(encoding)}));
    }
    throw FormatError(Say(u"encoding %1 at byte 12 is not supported", u"кодирование %1 в байте 12 не поддерживается",
                          {Number(encoding)}));
}

}  // namespace

bool LooksLikeAu(std::span<const std::uint8_t> start) {
    return Begins(start, ".snd") || Begins(start, "dns.");
}

RecordingContent ReadAu(const std::shared_ptr<ByteSource>& source) {
    std::array<std::uint8_t, kHeaderBytes> header{};
    const std::size_t size = source->ReadAt(0, header.data(), header.size());
    if (Begins(header, "dns.")) {
        throw FormatError(Say(u"little-endian AU at byte 0 is not supported",
                              u"AU с обратным порядком байт в байте 0 не поддерживается"));
    }
    if (!Begins(header, ".snd")) throw FormatError(Say(u"no \".snd\" at byte 0", u"нет \".snd\" в байте 0"));
    if (size < kHeaderBytes) RefuseCutHeader(size, kHeaderBytes);
    const std::uint32_t offset = Be32(header.data() + 4);
    const std::uint32_t stated = Be32(header.data() + 8);
    const std::uint32_t rate = Be32(header.data() + 16);
    const std::uint32_t channels = Be32(header.data() + 20);
    const SampleKind kind = KindOf(Be32(header.data() + 12));
    const std::size_t width = SampleBytes(kind);
    if (offset < kHeaderBytes || offset > source->Size()) RefuseField(u"data offset", u"начало данных", offset, 4);
    if (rate == 0) RefuseField(u"sample rate", u"частота дискретизации", rate, 16);
    if (channels == 0 || channels > kPieceBytes / width) RefuseField(u"channel count", u"число каналов", channels, 20);

    FrameRecording recording = DescribeSound(kind, channels, rate);
    const std::uint64_t rest = source->Size() - offset;
    const bool open = stated == kUnknownSize || stated == 0 || SizeWrapped(stated, rest);
    const FrameCount frames = open ? CountUnclosedFrames(rest, recording.layout.frameBytes)
                                   : CountFrames(stated, rest, recording.layout.frameBytes);
    recording.frameCount = frames.count;
    recording.startTime = source->ModifiedTime();

    RecordingContent content;
    content.format = u"AU";
    content.info = DescribeFrames(SoundName(content.format, kind, 8 * width), recording);
    AppendRemark(content.info, frames.remark);
    AppendRemark(content.info, FileTimeRemark());
    content.blocks = MakeFrameBlocks(
        std::make_shared<ReorderedSource>(source, width, true, kind == SampleKind::Unsigned8, offset), recording);
    return content;
}

}  // namespace quillon
