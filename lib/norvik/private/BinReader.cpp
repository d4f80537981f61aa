#include "norvik/private/BinReader.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>

#include "base/DateTime.h"
#include "base/LittleEndian.h"
#include "base/Text.h"
#include "norvik/SystemBytes.h"
#include "norvik/private/FrameBlock.h"
#include "norvik/private/FrameCount.h"

namespace quillon {

namespace {

constexpr std::size_t kFileHeaderBytes = 128;
constexpr std::size_t kChannelBytes = 80;
constexpr std::size_t kDataHeaderBytes = 8;
constexpr std::size_t kRateOffset = 24;
constexpr std::size_t kChannelCountOffset = 32;

bool HasSignature(const std::uint8_t* bytes, std::string_view signature) {
    return std::equal(signature.begin(), signature.end(), bytes,
                      [](char letter, std::uint8_t byte) { return static_cast<std::uint8_t>(letter) == byte; });
}

void RequireSignature(const std::uint8_t* header, std::size_t offset, std::string_view signature) {
    if (HasSignature(header + offset, signature)) return;
    throw FormatError(Say(u"no \"%1\" at byte %2", u"нет \"%1\" в байте %2",
                          {Utf16(signature), Decimal(static_cast<std::int64_t>(offset))}));
}

std::u16string FixedText(const std::uint8_t* bytes, std::size_t size) {
    std::string text;
    for (std::size_t at = 0; at < size && bytes[at] != 0; ++at) text.push_back(static_cast<char>(bytes[at]));
    return FromUtf8OrSystemBytes(Trim(text));
}

/// False where the header holds no possible date.
bool ReadStart(const std::uint8_t* header, double& start) {
    const auto field = [&](std::size_t index) { return static_cast<int>(Le16(header + 8 + 2 * index)); };
    const CivilTime time{field(0), field(1), field(3), field(4), field(5), field(6), field(7)};
    const bool possible = time.year >= 1 && time.year <= 9999 && time.month >= 1 && time.month <= 12 && time.day >= 1 &&
                          time.day <= 31 && time.hour < 24 && time.minute < 60 && time.second < 61 &&
                          time.millisecond < 1000;
    if (possible) start = DateFromCivil(time);
    return possible;
}

/// The header with all channel records and the data header.
std::vector<std::uint8_t> ReadHeader(ByteSource& source) {
    const auto require = [&](std::uint64_t size) {
        if (source.Size() >= size) return;
        throw FormatError(
            Say(u"the header ends at byte %1 of %2", u"заголовок обрывается на байте %1 из %2",
                {Decimal(static_cast<std::int64_t>(source.Size())), Decimal(static_cast<std::int64_t>(size))}));
    };
    require(kFileHeaderBytes);
    std::vector<std::uint8_t> header(kFileHeaderBytes);
    source.ReadExactly(0, header.data(), header.size());
    RequireSignature(header.data(), 0, "ABIN");
    const std::size_t channels = Le16(header.data() + kChannelCountOffset);
    if (channels == 0) throw FormatError(Say(u"channel count 0 at byte 32", u"число каналов 0 в байте 32"));
    const float rate = LeFloat(header.data() + kRateOffset);
    if (!std::isfinite(rate) || rate <= 0.0F) {
        throw FormatError(Say(u"sample rate %1 at byte 24", u"частота дискретизации %1 в байте 24",
                              {ShortestDecimal(static_cast<double>(rate))}));
    }
    const std::size_t size = kFileHeaderBytes + channels * kChannelBytes + kDataHeaderBytes;
    require(size);
    header.resize(size);
    source.ReadExactly(0, header.data(), size);
    return header;
}

struct BinChannels {
    std::vector<ChannelDescription> list;
    bool scalesReplaced = false;
};

BinChannels ReadChannels(const std::uint8_t* header, std::size_t count) {
    BinChannels channels;
    std::vector<std::int32_t> inputs;
    for (std::size_t index = 0; index < count; ++index) {
        const std::size_t offset = kFileHeaderBytes + index * kChannelBytes;
        RequireSignature(header, offset, "ADCh");
        const std::uint8_t* record = header + offset;
        ChannelDescription channel;
        const auto stored = static_cast<std::int32_t>(Le32(record + 4));
        inputs.push_back(stored);
        const bool sensible = stored >= 0 && stored < 32767;
        channel.inputNumber = static_cast<std::int16_t>(
            sensible ? stored + 1 : std::min<std::int32_t>(static_cast<std::int32_t>(index) + 1, 32767));
        channel.title = FixedText(record + 8, 32);
        channel.unit = FixedText(record + 40, 24);
        const float scale = LeFloat(record + 64);
        const float shift = LeFloat(record + 68);
        const bool usable = std::isfinite(scale) && scale != 0.0F && std::isfinite(shift);
        channels.scalesReplaced = channels.scalesReplaced || !usable;
        channel.scale = std::isfinite(scale) && scale != 0.0F ? scale : 1.0F;
        channel.offset = std::isfinite(shift) ? shift : 0.0F;
        channels.list.push_back(std::move(channel));
    }
    const bool inRange = std::all_of(inputs.begin(), inputs.end(), [](std::int32_t n) { return n >= 0 && n < 32; });
    const bool distinct = std::set<std::int32_t>(inputs.begin(), inputs.end()).size() == count;
    for (std::size_t index = 0; index < count; ++index) {
        channels.list[index].number = static_cast<std::int16_t>(
            inRange && distinct ? inputs[index] : static_cast<std::int32_t>(index % kBlockChannels));
    }
    return channels;
}

}  // namespace

bool LooksLikeBin(std::span<const std::uint8_t> start) {
    return start.size() >= 4 && HasSignature(start.data(), "ABIN");
}

RecordingContent ReadBin(const std::shared_ptr<ByteSource>& source) {
    const std::vector<std::uint8_t> header = ReadHeader(*source);
    const std::size_t count = Le16(header.data() + kChannelCountOffset);
    BinChannels channels = ReadChannels(header.data(), count);
    RequireSignature(header.data(), header.size() - kDataHeaderBytes, "data");

    FrameRecording recording;
    recording.layout = {SampleKind::Int16, header.size(), 2 * count, 0};
    const std::uint32_t declared = Le32(header.data() + header.size() - 4);
    const std::uint64_t available = source->Size() - header.size();
    const bool unclosed = declared == 0 || declared == 0xFFFFFFFF || SizeWrapped(declared, available);
    const FrameCount frames = unclosed ? CountUnclosedFrames(available, recording.layout.frameBytes)
                                       : CountFrames(declared, available, recording.layout.frameBytes);
    recording.frameCount = frames.count;
    recording.sampleRate = static_cast<double>(LeFloat(header.data() + kRateOffset));
    recording.deviceName = FixedText(header.data() + 64, 16);
    recording.channels = std::move(channels.list);
    recording.startTime = source->ModifiedTime();
    const bool dated = ReadStart(header.data(), recording.startTime);

    RecordingContent content;
    content.format = u"BIN";
    content.info = DescribeFrames({content.format, content.format}, recording);
    AppendRemark(content.info, frames.remark);
    if (!dated) AppendRemark(content.info, FileTimeRemark());
    if (channels.scalesReplaced)
        AppendRemark(content.info, Say(u"unusable scales replaced", u"негодные масштабы заменены"));
    content.blocks = MakeFrameBlocks(source, recording);
    return content;
}

}  // namespace quillon
