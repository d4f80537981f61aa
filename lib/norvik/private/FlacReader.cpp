#include "norvik/private/FlacReader.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "base/Text.h"
#include "norvik/private/FlacBlock.h"
#include "norvik/private/FlacFrames.h"
#include "norvik/private/FlacMetadata.h"
#include "norvik/private/FrameCount.h"

namespace quillon {

namespace {

constexpr std::string_view kMarker = "fLaC";

Bilingual CountRemark(std::uint64_t declared, std::uint64_t found) {
    if (declared != 0) return CountFrames(declared, found, 1).remark;
    return Say(u"length taken from the last frame", u"длина взята из последнего кадра");
}

Bilingual DepthRemark(unsigned declared, unsigned found) {
    if (declared == found) return {};
    return Say(u"samples of %1 bits, not of %2 as the stream information says",
               u"отсчёты по %1 бит, а не по %2, как в сведениях о потоке", {Decimal(found), Decimal(declared)});
}

Bilingual TitleRemark(const std::u16string& title) {
    if (title.empty()) return {};
    return Say(u"title: %1", u"название: %1", {title});
}

FrameRecording DescribeRecording(FlacMetadata& metadata, const FlacFrames& frames) {
    FrameRecording recording;
    recording.frameCount = frames.Samples();
    recording.sampleRate = metadata.rate;
    recording.marks = std::move(metadata.marks);
    for (std::size_t index = 0; index < metadata.channels; ++index) {
        ChannelDescription channel;
        channel.number = static_cast<std::int16_t>(index);
        channel.inputNumber = static_cast<std::int16_t>(index + 1);
        channel.unit = u"FS";
        channel.scale = std::ldexp(1.0F, 1 - static_cast<int>(frames.Depth()));
        recording.channels.push_back(std::move(channel));
    }
    return recording;
}

}  // namespace

bool LooksLikeFlac(std::span<const std::uint8_t> start) {
    const std::uint64_t marker = FlacMarkerOffset(start);
    if (marker + kMarker.size() > start.size()) return false;
    const std::span<const std::uint8_t> letters = start.subspan(static_cast<std::size_t>(marker), kMarker.size());
    return std::equal(letters.begin(), letters.end(), kMarker.begin());
}

RecordingContent ReadFlac(const std::shared_ptr<ByteSource>& source) {
    FlacMetadata metadata = ReadFlacMetadata(*source);
    const auto frames = std::make_shared<FlacFrames>(source, metadata);
    FrameRecording recording = DescribeRecording(metadata, *frames);
    recording.startTime = source->ModifiedTime();

    RecordingContent content;
    content.format = u"FLAC";
    const std::u16string depth = Decimal(frames->Depth());
    content.info = DescribeFrames(Say(u"FLAC, %1 bit", u"FLAC, %1 бит", {depth}), recording);
    AppendRemark(content.info, CountRemark(metadata.samples, frames->Samples()));
    AppendRemark(content.info, DepthRemark(metadata.depth, frames->Depth()));
    AppendRemark(content.info, FileTimeRemark());
    AppendRemark(content.info, TitleRemark(metadata.title));
    content.blocks = MakeBlocks(recording, [&](BlockDescription description, std::uint64_t first, std::size_t) {
        return std::make_shared<FlacBlock>(frames, first, std::move(description));
    });
    return content;
}

}  // namespace quillon
