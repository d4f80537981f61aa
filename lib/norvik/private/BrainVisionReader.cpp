#include "norvik/private/BrainVisionReader.h"

#include <algorithm>
#include <initializer_list>

#include "base/FilePath.h"
#include "base/Text.h"
#include "norvik/private/BrainVisionHeader.h"
#include "norvik/private/BrainVisionMarkers.h"
#include "norvik/private/FrameCount.h"
#include "norvik/private/RecordBlock.h"
#include "norvik/private/Refusals.h"
#include "norvik/private/ReorderedSource.h"
#include "norvik/private/SectionedText.h"
#include "norvik/private/TextSamples.h"

namespace quillon {

namespace {

constexpr std::uint64_t kMostHeaderBytes = std::uint64_t{4} << 20;
constexpr std::uint64_t kMarkerBytes = std::uint64_t{64} << 20;

struct Companion {
    std::shared_ptr<ByteSource> source;  ///< null: not found
    std::u16string stated;               ///< the name that the header gives
    Bilingual error;                     ///< where it could not be opened by that name
    Bilingual remark;                    ///< where it was found by another one
};

/// Opens what the header names. Users rename recordings and leave the names inside the header as they are, so the
/// header's own name is tried with the stated extension and with `extensions`.
Companion FindCompanion(const RecordingFile& file, std::string_view stated,
                        std::initializer_list<std::u16string_view> extensions) {
    const std::u16string bare = BareNameOf(file.name);
    Companion found;
    // A path would be that of another computer.
    found.stated = FileNameOf(FromUtf8OrLatin1(stated));
    if (const std::size_t at = found.stated.find(u"$b"); at != std::u16string::npos) found.stated.replace(at, 2, bare);
    found.source = file.companions.Open(found.stated, found.error);
    if (found.source) return found;
    const std::size_t point = found.stated.rfind(u'.');
    std::vector<std::u16string> names;
    if (point != std::u16string::npos) names.push_back(bare + found.stated.substr(point));
    for (const std::u16string_view extension : extensions) names.push_back(bare + std::u16string(extension));
    for (const std::u16string& name : names) {
        Bilingual ignored;
        found.source = file.companions.Open(name, ignored);
        if (!found.source) continue;
        found.remark = ReadInstead(name, found.stated);
        break;
    }
    return found;
}

/// Where the samples lie, in the form that blocks read.
struct StoredFrames {
    std::shared_ptr<ByteSource> source;
    SampleKind kind = SampleKind::Int16;
    std::size_t frameBytes = 0;
    std::uint64_t count = 0;
    std::uint64_t perChannel = 0;  ///< numbers from the first of a channel to the first of the next, where vectorized
    Bilingual remark;
};

void CountStored(const BrainVisionHeader& header, StoredFrames& frames) {
    const std::uint64_t size = frames.source->Size();
    frames.count = frames.perChannel = size / frames.frameBytes;
    if (header.vectorized) {
        const std::uint64_t width = SampleBytes(frames.kind);
        const std::uint64_t channels = frames.frameBytes / width;
        const std::uint64_t points = header.dataPoints.value_or(0);
        const bool reachesLast = points > 0 && points <= size / width / std::max<std::uint64_t>(channels - 1, 1);
        const std::uint64_t ofLast = reachesLast ? size / width - points * (channels - 1) : 0;
        const bool odd = size % frames.frameBytes != 0;
        // Where the size is that of no whole file, or of one whose last channel is cut, only the header tells where a
        // channel begins.
        if (odd || (ofLast > 0 && ofLast < points)) {
            frames.perChannel = points;
            frames.count = std::min(points, ofLast);
        }
        if (odd && frames.count == 0) {
            throw FormatError(Say(u"%1 bytes of samples are not %2 channels of equal length",
                                  u"%1 байт отсчётов — не %2 каналов равной длины", {Number(size), Number(channels)}));
        }
    }
    if (frames.count == 0) {
        throw FormatError(Say(u"no whole sample of every channel: %1 bytes of %2",
                              u"нет ни одного отсчёта всех каналов: байт %1 из %2",
                              {Number(size), Number(frames.frameBytes)}));
    }
    if (header.dataPoints.value_or(0) > frames.count)
        frames.remark = CountFrames(*header.dataPoints, frames.count, 1).remark;
}

StoredFrames FindFrames(const BrainVisionHeader& header, std::shared_ptr<ByteSource> data) {
    const std::size_t channels = header.channels.size() + (header.extraChannel ? 1 : 0);
    StoredFrames frames;
    Bilingual remark;
    frames.kind = header.kind;
    if (header.isText) {
        TextSamples samples = ReadTextSamples(*data, header.columns, channels, header.vectorized);
        data = samples.source;
        frames.kind = samples.kind;
        remark = samples.remark;
    }
    const std::size_t width = SampleBytes(frames.kind);
    frames.frameBytes = channels * width;
    if (frames.frameBytes > kPieceBytes) {
        throw FormatError(Say(u"%1 channels of %2 bytes are too many", u"каналов по %2 байт слишком много: %1",
                              {Number(channels), Number(width)}));
    }
    frames.source = std::move(data);
    if (!header.isText && (header.bigEndian || header.isUnsigned)) {
        frames.source =
            std::make_shared<ReorderedSource>(std::move(frames.source), width, header.bigEndian, header.isUnsigned);
    }
    CountStored(header, frames);
    if (!remark.english.empty()) frames.remark = std::move(remark);
    return frames;
}

FrameRecording DescribeRecording(const BrainVisionHeader& header, const StoredFrames& frames) {
    FrameRecording recording;
    recording.layout = {frames.kind, 0, frames.frameBytes, 0};
    recording.frameCount = frames.count;
    recording.sampleRate = header.rate;
    for (std::size_t index = 0; index < header.channels.size(); ++index) {
        const BrainVisionChannel& stored = header.channels[index];
        ChannelDescription channel;
        channel.number = static_cast<std::int16_t>(index % kBlockChannels);
        channel.inputNumber = static_cast<std::int16_t>(std::min<std::size_t>(index + 1, 32767));
        channel.title = stored.title;
        channel.unit = stored.unit;
        channel.scale = static_cast<float>(stored.resolution);
        if (header.isUnsigned) channel.offset = static_cast<float>(stored.resolution * 32768.0);
        recording.channels.push_back(std::move(channel));
    }
    return recording;
}

/// The blocks of samples that lie channel after channel.
std::vector<std::shared_ptr<FileBlock>> MakeVectorizedBlocks(const StoredFrames& frames,
                                                             const FrameRecording& recording) {
    const std::uint64_t width = SampleBytes(frames.kind);
    std::vector<std::shared_ptr<const RecordLayout>> layouts;  // of each group of channels
    for (std::size_t first = 0; first < recording.channels.size(); first += kBlockChannels) {
        const auto layout = std::make_shared<RecordLayout>();
        layout->recordBytes = frames.perChannel * frames.frameBytes;
        layout->samplesPerRecord = frames.perChannel;
        layout->kind = frames.kind;
        for (std::size_t at = first; at < std::min(first + kBlockChannels, recording.channels.size()); ++at) {
            const ChannelDescription& channel = recording.channels[at];
            layout->offsets.push_back(at * frames.perChannel * width);
            layout->units.push_back({static_cast<double>(channel.scale), static_cast<double>(channel.offset)});
        }
        layouts.push_back(layout);
    }
    return MakeBlocks(recording, [&](BlockDescription description, std::uint64_t firstFrame, std::size_t firstChannel) {
        return std::make_shared<RecordBlock>(std::move(description), frames.source, firstFrame * width,
                                             layouts[firstChannel / kBlockChannels]);
    });
}

Bilingual FormatOf(const BrainVisionHeader& header) {
    const std::u16string numbers = header.isText ? u"ASCII" : header.numberFormat;
    Bilingual format =
        header.vectorized
            ? Say(u"BrainVision %1 (%2, vectorized)", u"BrainVision %1 (%2, по каналам)", {header.version, numbers})
            : Say(u"BrainVision %1 (%2, multiplexed)", u"BrainVision %1 (%2, по отсчётам)", {header.version, numbers});
    return format;
}

/// Reads the markers into the recording; returns what is odd about them.
std::vector<Bilingual> ReadMarkers(const RecordingFile& file, const BrainVisionHeader& header,
                                   FrameRecording& recording) {
    std::vector<Bilingual> remarks;
    BrainVisionMarkers markers;
    if (!header.markerFile.empty()) {
        const Companion found = FindCompanion(file, header.markerFile, {u".vmrk", u".amrk"});
        remarks.push_back(found.remark);
        if (found.source) {
            markers = ParseBrainVisionMarkers(ReadTextStart(*found.source, kMarkerBytes), recording.frameCount);
        } else {
            remarks.push_back(Say(u"the marker file '%1' is not here", u"файла маркеров «%1» нет", {found.stated}));
        }
        markers.limitReached = markers.limitReached || (found.source && found.source->Size() > kMarkerBytes);
    }
    ApplyMarkers(markers, header, recording);
    if (markers.leftOut > 0) {
        remarks.push_back(Say(u"%1 markers outside the samples left out", u"пропущено маркеров вне отсчётов: %1",
                              {Number(markers.leftOut)}));
    }
    if (markers.limitReached) {
        remarks.push_back(Say(u"too many markers, the first %1 read", u"слишком много маркеров, прочитаны первые %1",
                              {Number(markers.all.size())}));
    }
    return remarks;
}

}  // namespace

RecordingContent ReadBrainVision(const RecordingFile& file) {
    const BrainVisionHeader header = ParseBrainVisionHeader(ReadTextStart(*file.source, kMostHeaderBytes));
    const Companion data = FindCompanion(file, header.dataFile, {u".eeg", u".dat"});
    if (!data.source) {
        const Bilingual reason =
            Say(u"the header names the data file '%1', which cannot be opened in its folder",
                u"заголовок называет файл данных «%1», который в его папке не открывается", {data.stated});
        throw FormatError({reason.english + u": " + data.error.english, reason.russian + u": " + data.error.russian});
    }
    const StoredFrames frames = FindFrames(header, data.source);
    FrameRecording recording = DescribeRecording(header, frames);
    recording.startTime = data.source->ModifiedTime();
    std::vector<Bilingual> remarks = header.notes;
    remarks.push_back(data.remark);
    remarks.push_back(frames.remark);
    for (Bilingual& remark : ReadMarkers(file, header, recording)) remarks.push_back(std::move(remark));

    RecordingContent content;
    content.format = u"BrainVision";
    content.info = DescribeFrames(FormatOf(header), recording);
    content.blocks =
        header.vectorized ? MakeVectorizedBlocks(frames, recording) : MakeFrameBlocks(frames.source, recording);
    const std::size_t groups = (recording.channels.size() + kBlockChannels - 1) / kBlockChannels;
    if (recording.stretches.size() > kMostBlocks / groups) {
        remarks.push_back(Say(u"too many segments, the first %1 read", u"слишком много сегментов, прочитаны первые %1",
                              {Number(content.blocks.size() / groups)}));
    }
    if (recording.startTime == data.source->ModifiedTime()) remarks.push_back(FileTimeRemark());
    for (const Bilingual& remark : remarks) AppendRemark(content.info, remark);
    return content;
}

}  // namespace quillon
