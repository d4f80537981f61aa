#include "norvik/private/EdfReader.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "base/Text.h"
#include "norvik/private/EdfMarks.h"
#include "norvik/private/EdfMarksOnly.h"
#include "norvik/private/EdfScan.h"
#include "norvik/private/EdfTimeline.h"
#include "norvik/private/FrameCount.h"
#include "norvik/private/RecordBlock.h"
#include "norvik/private/SignalGroups.h"
#include "norvik/private/SignalRecords.h"

namespace quillon {

namespace {

/// A group and what its blocks share.
struct EdfGroup : SignalGroup {
    std::shared_ptr<const RecordLayout> layout;
    std::shared_ptr<const std::vector<ChannelDescription>> channels;
};

SampleKind KindOf(const EdfHeader& header) {
    return header.sampleBytes == 2 ? SampleKind::Int16 : SampleKind::Int24;
}

void DescribeChannels(const EdfHeader& header, EdfGroup& group) {
    const auto layout = std::make_shared<RecordLayout>();
    const auto channels = std::make_shared<std::vector<ChannelDescription>>();
    layout->recordBytes = header.recordBytes;
    layout->samplesPerRecord = header.signals[group.signals.front()].samplesPerRecord;
    layout->kind = KindOf(header);
    for (const std::size_t ordinal : group.signals) {
        const EdfSignal& signal = header.signals[ordinal];
        ChannelDescription channel;
        channel.number = static_cast<std::int16_t>(ordinal % kBlockChannels);
        channel.inputNumber = static_cast<std::int16_t>(ordinal + 1);
        channel.title = signal.label;
        channel.unit = signal.unit;
        channel.scale = static_cast<float>(signal.unitsPerSample);
        channel.offset = static_cast<float>(signal.unitsOffset);
        channels->push_back(std::move(channel));
        layout->offsets.push_back(signal.offset);
        layout->units.push_back({signal.unitsPerSample, signal.unitsOffset});
    }
    group.layout = layout;
    group.channels = channels;
}

std::vector<EdfGroup> MakeGroups(const EdfHeader& header) {
    std::vector<SignalShape> shapes;
    for (const EdfSignal& signal : header.signals) {
        const double rate = static_cast<double>(signal.samplesPerRecord) / header.recordSeconds;
        shapes.push_back({signal.samplesPerRecord, KindOf(header), rate});
    }
    std::vector<EdfGroup> groups;
    for (SignalGroup& group : GroupSignals(shapes)) {
        groups.push_back({std::move(group), nullptr, nullptr});
        DescribeChannels(header, groups.back());
    }
    return groups;
}

/// What the blocks of a file share, and what reads the rest of its annotations.
struct EdfFile {
    EdfFile(const std::shared_ptr<ByteSource>& from, EdfHeader read, std::uint64_t stepBytes)
        : source(from),
          header(std::move(read)),
          groups(MakeGroups(header)),
          // Blocks are counted in 16 bits.
          timeline(header, static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max()) / groups.size()),
          scan(source, header, timeline, marks, stepBytes) {}

    std::shared_ptr<ByteSource> source;
    EdfHeader header;
    std::vector<EdfGroup> groups;
    EdfTimeline timeline;
    EdfMarks marks;
    EdfScan scan;
    std::int32_t knownMarks = 0;  ///< version of the marks at the last Update
};

/// Samples per signal of a stretch, without the fill of the last record.
std::int32_t SamplesOf(const EdfFile& file, const EdfStretch& of, std::uint64_t samplesPerRecord) {
    const EdfHeader& header = file.header;
    const std::uint64_t all = of.records * samplesPerRecord;
    const std::uint64_t told = header.samplesTold.value_or(all);
    // A number that does not lead into the last record was told of another file that this one was made of.
    const bool whole = of.records == header.records && file.groups.size() == 1;
    const bool intoLast = told <= all && told > all - samplesPerRecord;
    return static_cast<std::int32_t>(whole && intoLast ? told : all);
}

/// A stretch of the signals of one group.
class EdfBlock final : public RecordBlock {
  public:
    EdfBlock(std::shared_ptr<EdfFile> file, std::size_t stretch, const EdfGroup& group)
        : RecordBlock(
              Describe(*file, stretch, group), file->source,
              file->header.dataStart + file->timeline.Stretches()[stretch].firstRecord * file->header.recordBytes,
              group.layout),
          m_file(std::move(file)),
          m_stretch(stretch) {}

    [[nodiscard]] std::u16string Title() const override {
        return JoinTitles(m_file->timeline.Title(m_stretch), m_description.title);
    }
    [[nodiscard]] std::int32_t MarkCount() const override { return static_cast<std::int32_t>(Marks().size()); }
    [[nodiscard]] std::int32_t MarkPosition(std::int32_t mark) const override { return Mark(mark).position; }
    [[nodiscard]] std::u16string MarkText(std::int32_t mark) const override { return m_file->marks.Text(Mark(mark)); }
    [[nodiscard]] double MarkDuration(std::int32_t mark) const override { return m_file->marks.Duration(Mark(mark)); }

  private:
    static BlockDescription Describe(const EdfFile& file, std::size_t stretch, const EdfGroup& group) {
        const EdfStretch& of = file.timeline.Stretches()[stretch];
        BlockDescription block;
        block.title = group.title;
        block.deviceName = file.header.deviceName;
        block.blockName = file.header.blockName;
        block.startTime = file.timeline.StartOf(of);
        block.sampleRate = static_cast<double>(group.layout->samplesPerRecord) / file.header.recordSeconds;
        block.sampleCount = SamplesOf(file, of, group.layout->samplesPerRecord);
        block.channels = group.channels;
        return block;
    }
    [[nodiscard]] const std::vector<EdfMarks::Mark>& Marks() const {
        return m_file->marks.Of(m_file->timeline.Stretches()[m_stretch].onset, SampleRate(), SampleCount());
    }
    [[nodiscard]] const EdfMarks::Mark& Mark(std::int32_t mark) const {
        if (mark < 1 || mark > MarkCount()) throw std::out_of_range("a mark outside the block");
        return Marks()[static_cast<std::size_t>(mark) - 1];
    }

    std::shared_ptr<EdfFile> m_file;
    std::size_t m_stretch;
};

std::vector<Bilingual> Notes(const EdfFile& file) {
    std::vector<Bilingual> notes;
    const auto number = [](std::uint64_t count) { return Decimal(static_cast<std::int64_t>(count)); };
    const bool discontinuous = file.header.discontinuous;
    if (file.scan.Readable() < file.header.records) {
        notes.push_back(discontinuous ? Say(u"times of the records read up to record %1, the others left out",
                                            u"время записей прочитано до записи %1, остальные пропущены",
                                            {number(file.scan.Readable())})
                                      : Say(u"annotations read up to record %1 only",
                                            u"аннотации прочитаны до записи %1", {number(file.scan.Readable())}));
    }
    if (discontinuous && file.scan.WithoutOnset() > 0) {
        notes.push_back(Say(u"%1 records without an onset taken as gapless",
                            u"записей без времени начала: %1, приняты за непрерывные",
                            {number(file.scan.WithoutOnset())}));
    }
    if (discontinuous && file.header.annotations.empty()) {
        notes.push_back(
            Say(u"no annotation signal, taken as gapless", u"нет сигнала аннотаций, принят за непрерывный"));
    }
    const std::vector<EdfStretch>& stretches = file.timeline.Stretches();
    if (stretches.size() > 1) {
        notes.push_back(Say(u"%1 stretches", u"участков: %1", {number(stretches.size())}));
    }
    if (file.timeline.Full()) {
        notes.push_back(Say(u"too many stretches, read up to record %1",
                            u"слишком много участков, прочитано записей: %1",
                            {number(stretches.back().firstRecord + stretches.back().records)}));
    }
    if (file.scan.Malformed() > 0) {
        notes.push_back(Say(u"%1 damaged annotations left out", u"пропущено повреждённых аннотаций: %1",
                            {number(file.scan.Malformed())}));
    }
    if (file.marks.LimitReached()) {
        notes.push_back(Say(u"too many annotations, the first %1 read", u"слишком много аннотаций, прочитаны первые %1",
                            {number(file.marks.Count())}));
    }
    return notes;
}

Bilingual Describe(const EdfFile& file) {
    const EdfHeader& header = file.header;
    Bilingual info = DescribeRecords(header.format, header.signals.size(), header.records, header.recordSeconds);
    const std::vector<Bilingual> found = Notes(file);
    for (const std::vector<Bilingual>* notes : {&header.notes, &found}) {
        for (const Bilingual& note : *notes) AppendRemark(info, note);
    }
    return info;
}

/// Adds the blocks of stretches that were found since, and makes those of the last one anew where it has grown.
bool UpdateBlocks(const std::shared_ptr<EdfFile>& file, RecordingContent& content) {
    const std::vector<EdfStretch>& stretches = file->timeline.Stretches();
    const std::size_t groups = file->groups.size();
    std::size_t made = content.blocks.size() / groups;
    if (made > 0) {
        const std::int32_t samples =
            SamplesOf(*file, stretches[made - 1], file->groups.back().layout->samplesPerRecord);
        if (samples != content.blocks.back()->SampleCount()) --made;
    }
    if (made == stretches.size()) return false;
    content.blocks.resize(made * groups);
    for (; made < stretches.size(); ++made) {
        for (const EdfGroup& group : file->groups)
            content.blocks.push_back(std::make_shared<EdfBlock>(file, made, group));
    }
    return true;
}

/// Takes over what a step has found.
void Update(const std::shared_ptr<EdfFile>& file, RecordingContent& content) {
    content.share = file->scan.Share();
    Bilingual info = Describe(*file);
    const bool marks = file->marks.Version() != file->knownMarks;
    file->knownMarks = file->marks.Version();
    const bool changed = info.english != content.info.english;
    content.info = std::move(info);
    if (UpdateBlocks(file, content) || marks || changed) ++content.version;
}

}  // namespace

RecordingContent ReadEdf(const std::shared_ptr<ByteSource>& source, const ReadBudget& budget) {
    EdfHeader header = ReadEdfHeader(*source);
    if (header.signals.empty()) return ReadEdfMarks(source, std::move(header), budget);
    const auto file = std::make_shared<EdfFile>(source, std::move(header), budget.step);
    bool more = true;
    while (more && file->scan.BytesRead() < budget.opening) more = file->scan.Step(0);
    RecordingContent content;
    content.format = file->header.format;
    Update(file, content);
    if (!more) return content;
    content.readMore = [file](RecordingContent& to, std::int16_t block, std::int32_t nearSample) {
        const std::size_t groups = file->groups.size();
        const std::vector<EdfStretch>& stretches = file->timeline.Stretches();
        const std::size_t at = block < 1 ? 0 : static_cast<std::size_t>(block) - 1;
        const std::uint64_t record =
            static_cast<std::uint64_t>(std::max(nearSample, 0)) / file->groups[at % groups].layout->samplesPerRecord;
        const bool left = file->scan.Step(stretches[std::min(at / groups, stretches.size() - 1)].firstRecord + record);
        Update(file, to);
        return left;
    };
    return content;
}

}  // namespace quillon
