#include "norvik/private/GdfEvents.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/LittleEndian.h"
#include "base/Text.h"
#include "norvik/private/Refusals.h"

namespace quillon {

namespace {

constexpr std::uint64_t kTableHeaderBytes = 8;
/// The table's header has its numbers the other way round from here on.
constexpr int kCountFirst = 194;
constexpr std::uint16_t kBreak = 0x7FFE;
constexpr std::uint16_t kSparseSample = 0x7FFF;
constexpr std::uint16_t kEndOfEvent = 0x8000;

/// Where the arrays of the table lie.
struct Table {
    bool detailed = false;    ///< with channels and durations
    std::uint64_t count = 0;  ///< as stated
    std::uint64_t start = 0;  ///< byte of the first array
    std::uint64_t there = 0;  ///< bytes from there to the end of the file
    double rate = 0.0;
};

/// The first `wanted` numbers of the array at byte `at` of the table, as far as the file reaches; the others are 0.
std::vector<std::uint8_t> ReadArray(ByteSource& source, const Table& table, std::uint64_t at, std::size_t width,
                                    std::size_t wanted) {
    std::vector<std::uint8_t> bytes(wanted * width);
    const std::uint64_t there = table.there - std::min(at, table.there);
    const std::size_t whole = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), there)) / width * width;
    source.ReadExactly(table.start + at, bytes.data(), whole);
    return bytes;
}

std::vector<GdfEvent> ReadArrays(ByteSource& source, const Table& table, std::size_t wanted) {
    const std::uint64_t count = table.count;
    const auto positions = ReadArray(source, table, 0, 4, wanted);
    const auto types = ReadArray(source, table, 4 * count, 2, wanted);
    const std::size_t detailed = table.detailed ? wanted : 0;
    const auto channels = ReadArray(source, table, 6 * count, 2, detailed);
    const auto durations = ReadArray(source, table, 8 * count, 4, detailed);
    std::vector<GdfEvent> events(wanted);
    for (std::size_t at = 0; at < wanted; ++at) {
        GdfEvent& event = events[at];
        // The first sample is 1; writers that count from 0 are known.
        event.position = std::max(Le32(&positions[4 * at]), 1U) - 1;
        event.type = Le16(&types[2 * at]);
        if (!table.detailed) continue;
        event.channel = Le16(&channels[2 * at]);
        event.duration = Le32(&durations[4 * at]);
    }
    return events;
}

double FastestRate(const GdfHeader& header) {
    std::uint64_t most = 1;
    for (const GdfSignal& signal : header.signals) most = std::max(most, signal.samplesPerRecord);
    return header.Rate(most);
}

/// Puts the events that are none to be shown where they belong.
void TakeEvents(const std::vector<GdfEvent>& read, const GdfHeader& header, GdfEvents& events) {
    const double seconds = static_cast<double>(header.records) * header.RecordSeconds();
    const auto end = std::nearbyint(seconds * events.rate);
    std::size_t outside = 0;
    for (const GdfEvent& event : read) {
        if (event.type == kSparseSample) continue;
        if (static_cast<double>(event.position) >= end) {
            ++outside;
        } else if (event.type == kBreak) {
            events.breaks.push_back(static_cast<double>(event.position) / events.rate);
        } else {
            events.all.push_back(event);
            // None lasts longer than the samples.
            const double left = end - static_cast<double>(event.position);
            if (event.duration > left) events.all.back().duration = static_cast<std::uint32_t>(left);
        }
    }
    std::stable_sort(events.all.begin(), events.all.end(),
                     [](const GdfEvent& left, const GdfEvent& right) { return left.position < right.position; });
    std::sort(events.breaks.begin(), events.breaks.end());
    if (outside == 0) return;
    events.notes.push_back(
        Say(u"%1 events outside the samples left out", u"пропущено событий вне отсчётов: %1", {Number(outside)}));
}

void ReadTable(ByteSource& source, const GdfHeader& header, std::size_t most, GdfEvents& events) {
    const std::uint64_t at = header.dataStart + header.records * header.recordBytes;
    const std::uint64_t rest = source.Size() - at;
    if (rest == 0) return;
    std::array<std::uint8_t, kTableHeaderBytes> bytes{};
    if (rest >= bytes.size()) source.ReadExactly(at, bytes.data(), bytes.size());
    const std::uint8_t mode = bytes[0];
    // Bit 0 is set in every mode that there is, bits above 2 in none.
    if (mode % 2 == 0 || mode > 7) return events.notes.push_back(RemarkOnRest(rest));
    const std::uint32_t three = Le16(bytes.data() + 1) | static_cast<std::uint32_t>(bytes[3]) << 16U;
    const bool countFirst = header.hundredths >= kCountFirst;
    Table table{(mode & 2U) != 0, countFirst ? three : Le32(bytes.data() + 4), at + bytes.size(), rest - bytes.size(),
                countFirst ? static_cast<double>(LeFloat(bytes.data() + 4)) : static_cast<double>(three)};
    if (std::isfinite(table.rate) && table.rate > 0.0) events.rate = table.rate;

    const std::uint64_t behindPositions = table.there - std::min(table.there, 4 * table.count);
    const std::uint64_t whole = std::min(table.count, behindPositions / 2);
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(whole, most));
    TakeEvents(ReadArrays(source, table, wanted), header, events);
    if (whole < table.count) {
        events.notes.push_back(Say(u"the event table is cut short: %1 of %2 events",
                                   u"таблица событий обрезана: событий %1 из %2",
                                   {Number(whole), Number(table.count)}));
    }
    if (wanted < whole) {
        events.notes.push_back(Say(u"too many events, the first %1 read", u"слишком много событий, прочитаны первые %1",
                                   {Number(wanted)}));
    }
}

std::u16string PlainName(std::uint16_t type) {
    struct Entry {
        std::uint16_t type;
        std::u16string_view name;
    };
    constexpr Entry names[] = {{0x0101, u"artefact: eyes"},
                               {0x0102, u"artefact: heart"},
                               {0x0103, u"artefact: muscle"},
                               {0x0104, u"artefact: motion"},
                               {0x0105, u"artefact: electrode"},
                               {0x0106, u"artefact: sweat"},
                               {0x0107, u"artefact: mains"},
                               {0x0108, u"artefact: breathing"},
                               {0x0109, u"artefact: pulse"},
                               {0x0300, u"trial start"},
                               {0x0301, u"left hand"},
                               {0x0302, u"right hand"},
                               {0x0303, u"foot"},
                               {0x0304, u"tongue"},
                               {0x0311, u"beep"},
                               {0x0312, u"cross"},
                               {0x03FF, u"trial rejected"},
                               {0x0410, u"Sleep stage W"},
                               {0x0411, u"Sleep stage 1"},
                               {0x0412, u"Sleep stage 2"},
                               {0x0413, u"Sleep stage 3"},
                               {0x0414, u"Sleep stage 4"},
                               {0x0415, u"Sleep stage R"}};
    for (const Entry& entry : names) {
        if (entry.type == type) return std::u16string(entry.name);
    }
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    std::u16string text = u"0x";
    for (int shift = 12; shift >= 0; shift -= 4) text += digits[static_cast<std::size_t>(type >> shift & 15)];
    return text;
}

}  // namespace

std::u16string GdfEventName(std::uint16_t type) {
    if ((type & kEndOfEvent) == 0) return PlainName(type);
    return PlainName(static_cast<std::uint16_t>(type & ~kEndOfEvent)) + u" end";
}

GdfEvents ReadGdfEvents(ByteSource& source, const GdfHeader& header, std::size_t most) {
    GdfEvents events;
    events.rate = FastestRate(header);
    // Without a count of records, what follows them has been taken for records.
    if (!header.recordsStated) return events;
    try {
        ReadTable(source, header, most, events);
    } catch (const ReadError&) {
        events.notes.push_back(Say(u"the events cannot be read", u"события не читаются"));
    }
    return events;
}

std::vector<MarkDescription> GdfMarksWithin(const GdfEvents& events, const std::vector<std::u16string>& labels,
                                            double rate, std::uint64_t first, std::int32_t count) {
    const auto place = [&](const GdfEvent& event) {
        return std::nearbyint(static_cast<double>(event.position) * rate / events.rate);
    };
    std::vector<MarkDescription> marks;
    const auto start = static_cast<double>(first);
    auto event = std::lower_bound(events.all.begin(), events.all.end(), start,
                                  [&](const GdfEvent& at, double wanted) { return place(at) < wanted; });
    for (; event != events.all.end() && place(*event) < start + count; ++event) {
        MarkDescription mark;
        mark.position = static_cast<std::int32_t>(place(*event) - start);
        mark.text = GdfEventName(event->type);
        // As EDF+ files name the channel of an annotation, which the list of marks shows.
        if (event->channel > 0 && event->channel <= labels.size()) mark.text += u"@@" + labels[event->channel - 1U];
        mark.duration = static_cast<double>(event->duration) / events.rate;
        marks.push_back(std::move(mark));
    }
    return marks;
}

}  // namespace quillon
