#include "export/EdfPlusMarks.h"

#include <algorithm>
#include <cmath>

#include "base/Text.h"
#include "export/EdfText.h"

namespace quillon {

namespace {

constexpr char kAfterText = '\x14';
constexpr char kBeforeDuration = '\x15';
constexpr std::size_t kLongestText = 4096;  ///< bytes; every record has room for the longest

/// Digits behind the point.
std::size_t PlacesOf(double seconds) {
    const std::string text = EdfOnset(seconds);
    return text.size() - std::min(text.find('.'), text.size() - 1) - 1;
}

}  // namespace

EdfPlusMarks::EdfPlusMarks(const RecordingBlock& block, const SampleSpan& range, double fraction)
    : m_block(block), m_fraction(fraction) {
    const std::int32_t marks = block.MarkCount();
    for (std::int32_t mark = 1; mark <= marks; ++mark) {
        const std::int32_t sample = block.MarkPosition(mark) - range.first;
        if (sample >= 0 && sample < range.count) m_marks.push_back({.mark = mark, .sample = sample});
    }
}

std::string EdfPlusMarks::TextOf(std::int32_t mark) const {
    std::u16string text = m_block.MarkText(mark);
    // Of the control characters the standard allows these three; the others end texts and lists.
    for (char16_t& letter : text) {
        const bool allowed = letter == u'\t' || letter == u'\n' || letter == u'\r';
        if (letter < u' ' && !allowed) letter = u' ';
    }
    // An annotation without a text is none.
    return text.empty() ? "Mark" : Utf8Within(text, kLongestText);
}

std::string EdfPlusMarks::ListOf(const Told& told) const {
    std::string list = EdfOnset(m_fraction + told.sample / m_records.rate);
    // A duration has no sign.
    if (const double duration = m_block.MarkDuration(told.mark); duration > 0.0)
        list += kBeforeDuration + EdfOnset(duration).substr(1);
    return list + kAfterText + TextOf(told.mark) + kAfterText + '\0';
}

std::string EdfPlusMarks::StampOf(std::int32_t record) const {
    return EdfOnset(m_fraction + record * m_seconds, static_cast<int>(m_places)) + kAfterText + kAfterText + '\0';
}

std::size_t EdfPlusMarks::MostOfOneRecord() const {
    std::size_t most = 0;
    std::size_t here = 0;
    std::int32_t record = -1;
    for (const Told& told : m_marks) {
        if (OwnRecord(told) != record) here = 0;
        record = OwnRecord(told);
        here += told.bytes;
        most = std::max(most, here);
    }
    return most;
}

bool EdfPlusMarks::Lay(std::size_t room) {
    // The latest record of each that leaves room for those behind it.
    std::int32_t record = m_records.count - 1;
    std::size_t taken = 0;
    for (auto told = m_marks.rbegin(); told != m_marks.rend(); ++told) {
        if (taken + told->bytes > room) {
            if (--record < 0) return false;
            taken = 0;
        }
        taken += told->bytes;
        told->record = record;
    }
    // Its own, the latest one, or where those before it have left room.
    record = 0;
    taken = 0;
    for (Told& told : m_marks) {
        const bool full = taken + told.bytes > room;
        const std::int32_t at = std::max(full ? record + 1 : record, std::min(OwnRecord(told), told.record));
        taken = at == record ? taken + told.bytes : told.bytes;
        told.record = record = at;
    }
    return true;
}

void EdfPlusMarks::Plan(const EdfPlusRecords& records, std::size_t dataBytes) {
    constexpr std::size_t usual = 120;
    constexpr std::size_t dataPerMarks = 4;  // a record's marks may take a quarter of what its samples take
    m_records = records;
    m_seconds = EdfValue(records.seconds);
    std::size_t longest = 0;
    for (Told& told : m_marks) {
        told.bytes = ListOf(told).size();
        longest = std::max(longest, told.bytes);
    }
    const std::size_t most = MostOfOneRecord();
    std::size_t room = std::min(most, std::max({longest, usual, dataBytes / dataPerMarks}));
    while (!Lay(room)) {
        const std::size_t more = room + room / 4 + 1;
        room = room < most ? std::min(most, more) : more;
    }
    // All times of records are sums of these two. As many digits as the last, and as many places as any.
    m_places = std::max(PlacesOf(m_fraction), PlacesOf(m_seconds));
    const double last = m_fraction + (records.count - 1) * m_seconds;
    const std::size_t stamp = EdfOnset(std::ceil(last), 0).size() + (m_places > 0 ? 1 + m_places : 0) + 3;
    m_width = (stamp + room + 1) / 2 * 2;
    m_record = 0;
    m_next = 0;
}

std::string EdfPlusMarks::NextRecord() {
    std::string bytes = StampOf(m_record);
    for (; m_next < m_marks.size() && m_marks[m_next].record == m_record; ++m_next) bytes += ListOf(m_marks[m_next]);
    ++m_record;
    bytes.resize(m_width, '\0');
    return bytes;
}

}  // namespace quillon
