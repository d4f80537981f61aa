#include "norvik/private/WfdbReader.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "base/DateTime.h"
#include "base/FilePath.h"
#include "base/Text.h"
#include "norvik/private/EdfAnnotations.h"
#include "norvik/private/FrameCount.h"
#include "norvik/private/Refusals.h"
#include "norvik/private/SectionedText.h"
#include "norvik/private/WfdbAnnotations.h"
#include "norvik/private/WfdbHeader.h"
#include "norvik/private/WfdbRecord.h"

namespace quillon {

namespace {

constexpr std::uint64_t kHeaderBytes = std::uint64_t{4} << 20;
/// Headers of all segments together.
constexpr std::uint64_t kSegmentHeaderBytes = std::uint64_t{64} << 20;
/// Segments that cannot be read, after which no further ones are tried: every missing file is looked for in the whole
/// folder.
constexpr std::size_t kMostUnread = 1000;
constexpr std::uint64_t kAnnotationBytes = std::uint64_t{64} << 20;
/// Which annotators are looked for, in this order.
constexpr std::array<std::u16string_view, 7> kAnnotators{u".atr", u".ari", u".ecg", u".qrs", u".st", u".apn", u".ann"};

/// A record within the recording.
struct Part {
    std::shared_ptr<const WfdbRecord> record;
    std::uint64_t firstFrame = 0;
    std::uint64_t frames = 0;
    std::u16string title;  ///< empty for the only one
};

/// What a recording consists of.
struct Parts {
    std::vector<Part> all;
    std::uint64_t frames = 0;  ///< up to the end of the last one
    std::vector<Bilingual> remarks;
};

/// The records that a master record names.
class Segments {
  public:
    Segments(const RecordingFile& file, const std::shared_ptr<CompanionPool>& files)
        : m_companions(file.companions), m_files(files) {}

    Parts Open(const WfdbHeader& master) {
        Parts parts;
        for (std::size_t at = 0; at < master.segments.size(); ++at) {
            const WfdbSegment& segment = master.segments[at];
            if (at == 0 && segment.frames == 0 && !segment.IsGap()) ReadLayout(segment.name);
            if (segment.frames > 0 && !segment.IsGap()) {
                if (const std::shared_ptr<const WfdbRecord> record = Find(segment.name))
                    Add(record, segment, Number(at + 1) + u"/" + Number(master.segments.size()), parts);
            }
            parts.frames += segment.frames;
        }
        if (parts.all.empty()) {
            const Bilingual reason = Say(u"no segment can be read", u"не читается ни один сегмент");
            if (m_leftOut == 0) throw FormatError(reason);
            throw FormatError(
                {reason.english + u"; " + m_firstLeftOut.english, reason.russian + u"; " + m_firstLeftOut.russian});
        }
        Tell(parts.remarks);
        return parts;
    }

  private:
    void Add(const std::shared_ptr<const WfdbRecord>& record, const WfdbSegment& segment, std::u16string title,
             Parts& parts) {
        if (record->frames < segment.frames) ++m_cut;
        if (parts.remarks.empty()) parts.remarks = record->remarks;
        parts.all.push_back({record, parts.frames, std::min(record->frames, segment.frames), std::move(title)});
    }
    /// Null for one that cannot be read.
    std::shared_ptr<const WfdbRecord> Find(const std::string& name) {
        const auto [entry, isNew] = m_known.try_emplace(name);
        if (isNew && m_unread < kMostUnread) {
            entry->second = Read(FileNameOf(FromUtf8OrLatin1(name)));
            if (!entry->second) ++m_unread;
        }
        if (!entry->second) ++m_leftOut;
        return entry->second;
    }
    std::shared_ptr<const WfdbRecord> Read(const std::u16string& name) {
        Bilingual error;
        const std::u16string fileName = name + u".hea";
        try {
            std::optional<WfdbHeader> header = ReadHeader(fileName, error);
            if (header && !header->isMaster) {
                SetOrdinals(*header);
                return std::make_shared<WfdbRecord>(OpenWfdbRecord(std::move(*header), name, *m_files));
            }
            if (header) error = Say(u"a segment that has segments itself", u"сегмент, у которого есть свои сегменты");
        } catch (const FormatError& failure) {
            error = failure.Reason();
        }
        if (m_firstLeftOut.english.empty())
            m_firstLeftOut = {fileName + u": " + error.english, fileName + u": " + error.russian};
        return nullptr;
    }
    std::optional<WfdbHeader> ReadHeader(const std::u16string& fileName, Bilingual& error) {
        const std::shared_ptr<ByteSource> source = m_companions.Open(fileName, error);
        if (!source) return std::nullopt;
        const std::string text = ReadTextStart(*source, std::min(kHeaderBytes, m_headerBytesLeft));
        m_headerBytesLeft -= text.size();
        return ParseWfdbHeader(text);
    }
    /// The first segment, when it has no length, only tells what signals the others may have.
    void ReadLayout(const std::string& name) {
        Bilingual ignored;
        try {
            const auto layout = ReadHeader(FileNameOf(FromUtf8OrLatin1(name)) + u".hea", ignored);
            if (!layout || layout->titles.size() > kBlockChannels) return;
            for (const std::u16string& title : layout->titles) m_layout.try_emplace(title, m_layout.size());
        } catch (const FormatError&) {
            // Segments are complete without it.
        }
    }
    /// Numbers the signals of a segment as the layout does, so that each keeps its number in all segments.
    void SetOrdinals(WfdbHeader& header) const {
        std::set<std::size_t> ordinals;
        for (const WfdbSignal& signal : header.signals) {
            const auto known = m_layout.find(signal.title);
            if (known == m_layout.end() || !ordinals.insert(known->second).second) return;
        }
        for (WfdbSignal& signal : header.signals) signal.ordinal = m_layout.at(signal.title);
    }
    void Tell(std::vector<Bilingual>& remarks) const {
        if (m_leftOut > 0) {
            const Bilingual count =
                Say(u"%1 segments left out, first ", u"пропущено сегментов: %1, первый ", {Number(m_leftOut)});
            remarks.push_back({count.english + m_firstLeftOut.english, count.russian + m_firstLeftOut.russian});
        }
        if (m_cut > 0) remarks.push_back(Say(u"%1 segments cut short", u"обрезано сегментов: %1", {Number(m_cut)}));
    }

    const Companions& m_companions;
    const std::shared_ptr<CompanionPool>& m_files;
    std::map<std::string, std::shared_ptr<const WfdbRecord>> m_known;
    std::map<std::u16string, std::size_t> m_layout;  ///< ordinals of signals by title
    std::uint64_t m_headerBytesLeft = kSegmentHeaderBytes;
    std::size_t m_unread = 0;  ///< of m_known
    std::size_t m_leftOut = 0;
    std::size_t m_cut = 0;
    Bilingual m_firstLeftOut;
};

Parts OpenSingle(WfdbHeader header, const std::u16string& headerName, CompanionPool& files) {
    const std::uint64_t declared = header.frames;
    const auto record = std::make_shared<WfdbRecord>(OpenWfdbRecord(std::move(header), headerName, files));
    Parts parts;
    parts.remarks = record->remarks;
    parts.frames = record->frames;
    if (declared > 0) {
        FrameCount count = CountFrames(declared, record->frames, 1);
        parts.frames = count.count;
        parts.remarks.push_back(std::move(count.remark));
    }
    parts.all.push_back({record, 0, parts.frames, {}});
    return parts;
}

/// The annotators in the order in which they are tried: the one that was opened first.
std::vector<std::u16string_view> Annotators(const RecordingFile& file) {
    std::vector<std::u16string_view> annotators(kAnnotators.begin(), kAnnotators.end());
    const std::u16string opened = LowerCase(file.member);
    std::stable_partition(annotators.begin(), annotators.end(),
                          [&](std::u16string_view extension) { return opened.ends_with(extension); });
    return annotators;
}

/// The annotations of the first annotator that has any.
WfdbAnnotations ReadAnnotations(const RecordingFile& file, std::size_t groups, std::vector<Bilingual>& remarks) {
    for (const std::u16string_view extension : Annotators(file)) {
        const std::u16string name = BareNameOf(file.name) + std::u16string(extension);
        Bilingual ignored;
        const std::shared_ptr<ByteSource> source = file.companions.Open(name, ignored);
        if (!source) continue;
        std::optional<WfdbAnnotations> annotations;
        if (source->Size() <= kAnnotationBytes) {
            const std::string bytes = ReadTextStart(*source, kAnnotationBytes);
            annotations = ParseWfdbAnnotations({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                                               kAnnotationMemory / groups);
        }
        if (!annotations) {
            remarks.push_back(Say(u"annotations in %1 not read", u"аннотации в %1 не прочитаны", {name}));
            continue;
        }
        remarks.push_back(annotations->limitReached ? Say(u"too many annotations in %1, the first %2 read",
                                                          u"слишком много аннотаций в %1, прочитаны первые %2",
                                                          {name, Number(annotations->all.size())})
                                                    : Say(u"annotations of %1", u"аннотации из %1", {name}));
        return *std::move(annotations);
    }
    return {};
}

/// Adds the blocks of a part. `rate`: frames per second of the recording.
void AddBlocks(const Part& part, const WfdbAnnotations& annotations, double rate, double startTime,
               std::vector<std::shared_ptr<FileBlock>>& blocks) {
    for (const WfdbGroup& group : part.record->groups) {
        const auto perFrame = static_cast<double>(group.samplesPerFrame);
        FrameRecording recording;
        recording.layout = group.layout;
        recording.frameCount = part.frames * group.samplesPerFrame;
        recording.sampleRate = part.record->header.rate * perFrame;
        recording.startTime = startTime + static_cast<double>(part.firstFrame) / rate / kSecondsPerDay;
        recording.channels.resize(group.channels->size());
        const double ticks = annotations.ticksPerSecond > 0.0 ? annotations.ticksPerSecond : rate;
        recording.marks = WfdbMarks(annotations, rate / ticks * perFrame, part.firstFrame * group.samplesPerFrame,
                                    recording.frameCount);
        for (auto& block : MakeBlocks(recording, [&](BlockDescription description, std::uint64_t first, std::size_t) {
                 FrameLayout layout = group.layout;
                 layout.dataOffset = first * layout.frameBytes;
                 description.channels = group.channels;
                 description.title = JoinTitles(JoinTitles(part.title, group.title), description.title);
                 return std::make_shared<FrameBlock>(group.source, layout, std::move(description));
             }))
            blocks.push_back(std::move(block));
    }
}

/// "WFDB, format 212, 2 channels at 360 Hz, 650000 samples"
Bilingual Describe(const WfdbHeader& header, const Parts& parts) {
    if (header.isMaster) {
        return Say(u"WFDB, %1 segments, %2 samples at %3 Hz", u"WFDB, сегментов: %1, отсчётов: %2, частота %3 Гц",
                   {Number(parts.all.size()), Number(parts.frames), ShortestDecimal(header.rate)});
    }
    const WfdbHeader& record = parts.all.front().record->header;
    std::set<int> formats;
    for (const WfdbSignal& signal : record.signals) formats.insert(signal.format);
    std::u16string list;
    for (const int format : formats) list += (list.empty() ? u"" : u"+") + Decimal(format);
    FrameRecording recording;
    recording.frameCount = parts.frames;
    recording.sampleRate = header.rate;
    recording.channels.resize(record.signals.size());
    return DescribeFrames(Say(u"WFDB, format %1", u"WFDB, формат %1", {list}), recording);
}

}  // namespace

RecordingContent ReadWfdb(const RecordingFile& file) {
    const WfdbHeader header = ParseWfdbHeader(ReadTextStart(*file.source, kHeaderBytes));
    const auto files = std::make_shared<CompanionPool>(file.companions);
    Parts parts =
        header.isMaster ? Segments(file, files).Open(header) : OpenSingle(header, BareNameOf(file.name), *files);
    std::vector<Bilingual> remarks = header.notes;
    remarks.insert(remarks.end(), parts.remarks.begin(), parts.remarks.end());
    std::size_t groups = 1;
    for (const Part& part : parts.all) groups = std::max(groups, part.record->groups.size());
    const WfdbAnnotations annotations = ReadAnnotations(file, groups, remarks);

    const double startTime = header.startTime.value_or(file.source->ModifiedTime());
    RecordingContent content;
    content.format = u"WFDB";
    for (std::size_t at = 0; at < parts.all.size(); ++at) {
        AddBlocks(parts.all[at], annotations, header.rate, startTime, content.blocks);
        if (content.blocks.size() <= kMostBlocks) continue;
        content.blocks.resize(kMostBlocks);
        remarks.push_back(Say(u"too many blocks, read up to segment %1",
                              u"слишком много блоков, прочитано сегментов: %1", {Number(at + 1)}));
        break;
    }
    content.info = Describe(header, parts);
    if (!header.startTime) remarks.push_back(FileTimeRemark());
    for (const Bilingual& remark : remarks) AppendRemark(content.info, remark);
    if (!header.remark.empty()) AppendRemark(content.info, Say(u"note: %1", u"заметка: %1", {header.remark}));
    return content;
}

}  // namespace quillon
