#include "norvik/private/EdfReader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <set>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/private/EdfTimeline.h"
#include "norvik/private/RecordBlock.h"

namespace quillon {

namespace {

constexpr double kSecondsPerDay = 86400.0;

/// Signals that form blocks together: at one rate, and of 32 that follow each other in the file.
struct SignalGroup {
    std::vector<std::size_t> signals;  ///< indexes in EdfHeader::signals
    std::u16string title;              ///< what tells it from the other groups; empty for the only one
};

std::vector<SignalGroup> GroupSignals(const EdfHeader& header) {
    // The second key keeps channel numbers, which are ordinals modulo 32, unique in a block.
    using Key = std::pair<std::uint64_t, std::size_t>;
    std::vector<SignalGroup> groups;
    std::map<Key, std::size_t> known;
    std::map<std::uint64_t, std::size_t> groupsOfRate;
    for (std::size_t at = 0; at < header.signals.size(); ++at) {
        const std::uint64_t samples = header.signals[at].samplesPerRecord;
        const auto [entry, isNew] = known.try_emplace(Key{samples, at / kBlockChannels}, groups.size());
        if (isNew) {
            groups.emplace_back();
            ++groupsOfRate[samples];
        }
        groups[entry->second].signals.push_back(at);
    }
    for (SignalGroup& group : groups) {
        const std::uint64_t samples = header.signals[group.signals.front()].samplesPerRecord;
        if (groupsOfRate.size() > 1) {
            group.title = PlainNumber(static_cast<double>(samples) / header.recordSeconds) + u" Hz";
        }
        if (groupsOfRate[samples] > 1) {
            if (!group.title.empty()) group.title += u", ";
            group.title += Decimal(static_cast<std::int64_t>(group.signals.front() + 1));
            if (group.signals.size() > 1) {
                group.title += u"-" + Decimal(static_cast<std::int64_t>(group.signals.back() + 1));
            }
        }
    }
    return groups;
}

double StretchStart(const EdfHeader& header, const EdfStretch& stretch) {
    return header.startDate + stretch.onset / kSecondsPerDay;
}

/// Texts that tell the stretches apart: the time of day of their starts, as short as it can be.
std::vector<std::u16string> StretchTitles(const EdfHeader& header, const std::vector<EdfStretch>& stretches) {
    std::vector<std::u16string> titles(stretches.size());
    if (stretches.size() == 1) return titles;
    const auto time = [&](const EdfStretch& stretch, bool date, bool milliseconds) {
        std::string text = Iso8601(StretchStart(header, stretch));
        const std::size_t dateEnd = text.find('T');
        text[dateEnd] = ' ';
        if (!milliseconds) text.resize(text.find('.'));
        return Utf16(date ? text : text.substr(dateEnd + 1));
    };
    const bool dated = header.startDate != 0.0;
    for (const bool milliseconds : {false, true}) {
        for (const bool date : {false, true}) {
            if (date && !dated) continue;
            std::set<std::u16string> seen;
            for (std::size_t at = 0; at < stretches.size(); ++at) {
                titles[at] = time(stretches[at], date, milliseconds);
                seen.insert(titles[at]);
            }
            if (seen.size() == titles.size()) return titles;
        }
    }
    for (std::size_t at = 0; at < titles.size(); ++at) {
        titles[at] = time(stretches[at], false, false) + u" (" + Decimal(static_cast<std::int64_t>(at + 1)) + u")";
    }
    return titles;
}

/// Hands out the annotations that fall into blocks as their marks.
class MarkPlacer {
  public:
    explicit MarkPlacer(const std::vector<EdfAnnotation>& annotations)
        : m_annotations(annotations), m_byOnset(annotations.size()) {
        std::iota(m_byOnset.begin(), m_byOnset.end(), std::size_t{0});
        std::stable_sort(m_byOnset.begin(), m_byOnset.end(),
                         [&](std::size_t a, std::size_t b) { return annotations[a].onset < annotations[b].onset; });
    }

    /// Marks of a block that starts at `onset`, in order of position and, at one position, of the file.
    [[nodiscard]] std::vector<MarkDescription> Marks(double onset, double rate, std::int32_t sampleCount) {
        // Wider than the block by a sample on either side; the rounded position decides.
        const auto before = [&](std::size_t index, double time) { return m_annotations[index].onset < time; };
        const auto from = std::lower_bound(m_byOnset.begin(), m_byOnset.end(), onset - 1.0 / rate, before);
        const auto to = std::lower_bound(from, m_byOnset.end(), onset + (sampleCount + 1.0) / rate, before);
        std::vector<std::pair<std::int32_t, std::size_t>> found;
        for (auto index = from; index != to; ++index) {
            const double position = std::nearbyint((m_annotations[*index].onset - onset) * rate);
            if (position < 0.0 || position >= sampleCount) continue;
            m_bytes += sizeof(MarkDescription) + m_annotations[*index].text.size() * sizeof(char16_t);
            m_limitReached = m_limitReached || m_bytes > kAnnotationMemory;
            if (m_limitReached) break;
            found.emplace_back(static_cast<std::int32_t>(position), *index);
        }
        std::sort(found.begin(), found.end());
        std::vector<MarkDescription> marks;
        marks.reserve(found.size());
        for (const auto& [position, index] : found) marks.push_back({position, m_annotations[index].text});
        return marks;
    }

    /// True when marks were left out because they took too much memory.
    [[nodiscard]] bool LimitReached() const { return m_limitReached; }

  private:
    const std::vector<EdfAnnotation>& m_annotations;
    std::vector<std::size_t> m_byOnset;
    std::size_t m_bytes = 0;
    bool m_limitReached = false;
};

std::shared_ptr<FileBlock> MakeBlock(const std::shared_ptr<ByteSource>& source, const EdfHeader& header,
                                     const EdfStretch& stretch, const SignalGroup& group,
                                     const std::u16string& stretchTitle, MarkPlacer& placer) {
    const std::uint64_t samplesPerRecord = header.signals[group.signals.front()].samplesPerRecord;
    RecordLayout layout;
    layout.start = header.dataStart + stretch.firstRecord * header.recordBytes;
    layout.recordBytes = header.recordBytes;
    layout.samplesPerRecord = samplesPerRecord;
    layout.sampleBytes = header.sampleBytes;
    BlockDescription block;
    block.title = stretchTitle;
    if (!stretchTitle.empty() && !group.title.empty()) block.title += u", ";
    block.title += group.title;
    block.deviceName = header.deviceName;
    block.blockName = header.blockName;
    block.startTime = StretchStart(header, stretch);
    block.sampleRate = static_cast<double>(samplesPerRecord) / header.recordSeconds;
    block.sampleCount = static_cast<std::int32_t>(stretch.records * samplesPerRecord);
    for (const std::size_t ordinal : group.signals) {
        const EdfSignal& signal = header.signals[ordinal];
        ChannelDescription channel;
        channel.number = static_cast<std::int16_t>(ordinal % kBlockChannels);
        channel.inputNumber = static_cast<std::int16_t>(ordinal + 1);
        channel.title = signal.label;
        channel.unit = signal.unit;
        channel.scale = static_cast<float>(signal.unitsPerSample);
        channel.offset = static_cast<float>(signal.unitsOffset);
        block.channels.push_back(std::move(channel));
        layout.offsets.push_back(signal.offset);
        layout.units.push_back({signal.unitsPerSample, signal.unitsOffset});
    }
    block.marks = std::make_shared<const std::vector<MarkDescription>>(
        placer.Marks(stretch.onset, block.sampleRate, block.sampleCount));
    return std::make_shared<RecordBlock>(std::move(block), source, std::move(layout));
}

Bilingual Describe(const EdfHeader& header, const std::vector<Bilingual>& timelineNotes) {
    const std::size_t signals = header.signals.size();
    Bilingual info = Say(signals == 1 ? u"%1, %2 signal" : u"%1, %2 signals", u"%1, сигналов: %2",
                         {header.format, Decimal(static_cast<std::int64_t>(signals))});
    const Bilingual records =
        Say(header.records == 1 ? u", %1 record of %2 s" : u", %1 records of %2 s", u", записей: %1 по %2 с",
            {Decimal(static_cast<std::int64_t>(header.records)), PlainNumber(header.recordSeconds)});
    info.english += records.english;
    info.russian += records.russian;
    for (const std::vector<Bilingual>* notes : {&header.notes, &timelineNotes}) {
        for (const Bilingual& note : *notes) {
            info.english += u"; " + note.english;
            info.russian += u"; " + note.russian;
        }
    }
    return info;
}

}  // namespace

RecordingContent ReadEdf(const std::shared_ptr<ByteSource>& source) {
    const EdfHeader header = ReadEdfHeader(*source);
    const std::vector<SignalGroup> groups = GroupSignals(header);
    // Blocks are counted in 16 bits.
    const std::size_t maxBlocks = static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max());
    EdfTimeline timeline = ReadEdfTimeline(source, header, maxBlocks / groups.size());
    const std::vector<std::u16string> stretchTitles = StretchTitles(header, timeline.stretches);
    MarkPlacer placer(timeline.annotations.All());
    RecordingContent content;
    for (std::size_t stretch = 0; stretch < timeline.stretches.size(); ++stretch) {
        for (const SignalGroup& group : groups) {
            content.blocks.push_back(
                MakeBlock(source, header, timeline.stretches[stretch], group, stretchTitles[stretch], placer));
        }
    }
    if (placer.LimitReached()) {
        timeline.notes.push_back(
            Say(u"too many marks, the last ones left out", u"слишком много меток, последние пропущены"));
    }
    content.format = header.format;
    content.info = Describe(header, timeline.notes);
    return content;
}

}  // namespace quillon
