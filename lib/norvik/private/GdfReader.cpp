#include "norvik/private/GdfReader.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/private/EdfAnnotations.h"
#include "norvik/private/FrameBlock.h"
#include "norvik/private/FrameCount.h"
#include "norvik/private/GdfEvents.h"
#include "norvik/private/RecordBlock.h"
#include "norvik/private/SignalGroups.h"

namespace quillon {

namespace {

/// Bytes that the text of a mark takes at most, roughly.
constexpr std::size_t kMarkTextBytes = 96;

/// A group and what its blocks share.
struct Group : SignalGroup {
    double rate = 0.0;
    std::shared_ptr<const RecordLayout> layout;
    std::shared_ptr<const std::vector<ChannelDescription>> channels;
    bool asFrames = false;  ///< a record is a frame, in which the group's channels follow each other
};

void DescribeChannels(const GdfHeader& header, Group& group) {
    const auto layout = std::make_shared<RecordLayout>();
    const auto channels = std::make_shared<std::vector<ChannelDescription>>();
    const GdfSignal& front = header.signals[group.signals.front()];
    layout->recordBytes = header.recordBytes;
    layout->samplesPerRecord = front.samplesPerRecord;
    layout->kind = front.kind;
    for (const std::size_t ordinal : group.signals) {
        const GdfSignal& signal = header.signals[ordinal];
        ChannelDescription channel;
        channel.number = static_cast<std::int16_t>(ordinal % kBlockChannels);
        channel.inputNumber = static_cast<std::int16_t>(std::min<std::size_t>(signal.channel + 1, 32767));
        channel.title = signal.label;
        channel.unit = signal.unit;
        channel.scale = static_cast<float>(signal.units.perSample);
        channel.offset = static_cast<float>(signal.units.offset);
        channels->push_back(std::move(channel));
        layout->offsets.push_back(signal.offset);
        layout->units.push_back(signal.units);
    }
    const std::size_t width = SampleBytes(layout->kind);
    const std::vector<std::uint64_t>& offsets = layout->offsets;
    group.asFrames = layout->samplesPerRecord == 1 && layout->recordBytes <= kPieceBytes &&
                     offsets.front() % width == 0 && offsets.back() - offsets.front() == (offsets.size() - 1) * width;
    group.rate = header.Rate(front.samplesPerRecord);
    group.layout = layout;
    group.channels = channels;
}

std::vector<Group> MakeGroups(const GdfHeader& header) {
    std::vector<SignalShape> shapes;
    for (const GdfSignal& signal : header.signals)
        shapes.push_back({signal.samplesPerRecord, signal.kind, header.Rate(signal.samplesPerRecord)});
    std::vector<Group> groups;
    for (SignalGroup& group : GroupSignals(shapes)) {
        if (groups.size() == kMostBlocks) break;
        groups.emplace_back();
        static_cast<SignalGroup&>(groups.back()) = std::move(group);
        DescribeChannels(header, groups.back());
    }
    return groups;
}

/// What the blocks of a file are made of.
struct GdfFile {
    std::shared_ptr<ByteSource> source;
    GdfHeader header;
    std::vector<Group> groups;
    GdfEvents events;
    std::vector<double> starts;  ///< seconds: where stretches begin

    /// Samples of a group before stretch `at`.
    [[nodiscard]] std::uint64_t FirstSample(std::size_t at, const Group& group) const {
        const std::uint64_t all = header.records * group.layout->samplesPerRecord;
        if (at == starts.size()) return all;
        return std::min(static_cast<std::uint64_t>(std::nearbyint(starts[at] * group.rate)), all);
    }
};

/// Stretches begin behind the breaks, and where blocks would get too many samples.
void FindStretches(GdfFile& file) {
    std::uint64_t most = 1;
    for (const Group& group : file.groups) most = std::max(most, group.layout->samplesPerRecord);
    const std::uint64_t longest = static_cast<std::uint64_t>(kBlockSamples) / most;
    std::vector<double>& starts = file.starts;
    starts = file.events.breaks;
    starts.push_back(0.0);
    for (std::uint64_t record = longest; record < file.header.records && record / longest <= kMostBlocks;
         record += longest)
        starts.push_back(static_cast<double>(record) * file.header.RecordSeconds());
    std::sort(starts.begin(), starts.end());
    starts.erase(std::unique(starts.begin(), starts.end()), starts.end());
}

std::shared_ptr<FileBlock> MakeBlock(const GdfFile& file, const Group& group, std::uint64_t first,
                                     BlockDescription description) {
    const RecordLayout& layout = *group.layout;
    const std::uint64_t record = first / layout.samplesPerRecord;
    const std::uint64_t start = file.header.dataStart + record * layout.recordBytes;
    if (!group.asFrames)
        return std::make_shared<RecordBlock>(std::move(description), file.source, start, group.layout,
                                             first % layout.samplesPerRecord);
    const FrameLayout frames{layout.kind, start, static_cast<std::size_t>(layout.recordBytes),
                             static_cast<std::size_t>(layout.offsets.front() / SampleBytes(layout.kind))};
    return std::make_shared<FrameBlock>(file.source, frames, std::move(description));
}

std::vector<std::shared_ptr<FileBlock>> MakeStretch(const GdfFile& file, std::size_t stretch) {
    const double fileStart = file.header.startDate != 0.0 ? file.header.startDate : file.source->ModifiedTime();
    std::vector<std::shared_ptr<FileBlock>> blocks;
    std::map<double, std::shared_ptr<const std::vector<MarkDescription>>> marks;  // by rate
    for (const Group& group : file.groups) {
        const std::uint64_t first = file.FirstSample(stretch, group);
        const std::uint64_t count = file.FirstSample(stretch + 1, group) - first;
        // Between two breaks that are near to each other a slow signal may have no sample.
        if (count == 0) continue;
        BlockDescription block;
        if (file.starts.size() > 1) {
            block.title = Decimal(static_cast<std::int64_t>(stretch) + 1) + u"/" +
                          Decimal(static_cast<std::int64_t>(file.starts.size()));
            if (!group.title.empty()) block.title += u", ";
        }
        block.title += group.title;
        block.startTime = fileStart + file.starts[stretch] / kSecondsPerDay;
        block.sampleRate = group.rate;
        block.sampleCount = static_cast<std::int32_t>(count);
        block.channels = group.channels;
        auto& shared = marks[group.rate];
        if (!shared) {
            shared = std::make_shared<const std::vector<MarkDescription>>(
                GdfMarksWithin(file.events, file.header.labels, group.rate, first, block.sampleCount));
        }
        block.marks = shared;
        blocks.push_back(MakeBlock(file, group, first, std::move(block)));
    }
    return blocks;
}

Bilingual Describe(const GdfFile& file, std::size_t rates) {
    const GdfHeader& header = file.header;
    const std::u16string format = u"GDF " + header.version;
    if (rates > 1) return DescribeRecords(format, header.signals.size(), header.records, header.RecordSeconds());
    FrameRecording recording;
    recording.channels.resize(header.signals.size());
    recording.sampleRate = file.groups.front().rate;
    recording.frameCount = header.records * file.groups.front().layout->samplesPerRecord;
    return DescribeFrames({format, format}, recording);
}

}  // namespace

RecordingContent ReadGdf(const std::shared_ptr<ByteSource>& source) {
    GdfFile file{source, ReadGdfHeader(*source), {}, {}, {}};
    file.groups = MakeGroups(file.header);
    std::set<double> rates;
    for (const Group& group : file.groups) rates.insert(group.rate);
    // Blocks of another rate have marks of their own.
    const std::size_t eventBytes = sizeof(GdfEvent) + rates.size() * (sizeof(MarkDescription) + kMarkTextBytes);
    file.events = ReadGdfEvents(*source, file.header, kAnnotationMemory / eventBytes);
    FindStretches(file);

    RecordingContent content;
    content.format = u"GDF";
    content.info = Describe(file, rates.size());
    for (const std::vector<Bilingual>* notes : {&file.header.notes, &file.events.notes})
        for (const Bilingual& note : *notes) AppendRemark(content.info, note);
    if (file.header.startDate == 0.0) AppendRemark(content.info, FileTimeRemark());
    const std::size_t most = std::max<std::size_t>(kMostBlocks / file.groups.size(), 1);
    for (std::size_t stretch = 0; stretch < std::min(file.starts.size(), most); ++stretch) {
        for (auto& block : MakeStretch(file, stretch)) content.blocks.push_back(std::move(block));
    }
    if (file.starts.size() > most) {
        AppendRemark(content.info,
                     Say(u"too many stretches, the first %1 read", u"слишком много участков, прочитаны первые %1",
                         {Decimal(static_cast<std::int64_t>(most))}));
    }
    return content;
}

}  // namespace quillon
