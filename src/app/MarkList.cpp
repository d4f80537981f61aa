#include "app/MarkList.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/Text.h"
#include "format/NumberText.h"
#include "view/Readout.h"

namespace quillon {

namespace {

/// A field of comma-separated values.
std::string Field(const std::u16string& text) {
    const std::string plain = Utf8(text);
    if (plain.find_first_of(",\"\r\n") == std::string::npos) return plain;
    std::string quoted = "\"";
    for (const char letter : plain) quoted += letter == '"' ? "\"\"" : std::string(1, letter);
    return quoted + '"';
}

/// A length, not a place: never a time of day.
std::u16string SecondsText(double seconds, FormatOptions format) {
    format.timeOfDay = false;
    return FormatTime(seconds, u" ", format);
}

}  // namespace

MarkWords WordsOf(const std::u16string& markText) {
    const std::size_t at = markText.rfind(u"@@");
    if (at == std::u16string::npos) return {markText, {}};
    return {markText.substr(0, at), markText.substr(at + 2)};
}

bool MarkList::Contains(const BlockMark& mark) const {
    return m_filter.empty() || LowerCase(mark.text).find(m_filter) != std::u16string::npos;
}

void MarkList::Update() {
    m_lines.clear();
    m_marks = m_block.marks.size();
    for (std::size_t at = 0; at < m_block.marks.size(); ++at)
        if (Contains(m_block.marks[at])) m_lines.push_back(static_cast<std::uint32_t>(at));
}

bool MarkList::SetFilter(const std::u16string& typed) {
    std::u16string filter = LowerCase(typed);
    if (filter == m_filter) return false;
    m_filter = std::move(filter);
    Update();
    return true;
}

std::u16string MarkList::Cell(std::size_t line, Column column) const {
    const BlockMark& mark = Mark(line);
    switch (column) {
        case Time: return PositionText(m_block, mark.position + 1, u" ", m_format);
        case Duration: return mark.seconds > 0.0 ? SecondsText(mark.seconds, m_format) : std::u16string();
        case Channel: return WordsOf(mark.text).channel;
        case Text: return WordsOf(mark.text).text;
        case ColumnCount: break;
    }
    return {};
}

std::optional<std::size_t> MarkList::LineAt(std::int32_t sample) const {
    if (Count() == 0) return std::nullopt;
    const auto behind = std::partition_point(
        m_lines.begin(), m_lines.end(), [&](std::uint32_t mark) { return m_block.marks[mark].position <= sample; });
    if (behind == m_lines.begin()) return std::nullopt;
    return static_cast<std::size_t>(behind - m_lines.begin()) - 1;
}

std::vector<std::vector<std::u16string>> MarkList::Counts() const {
    std::map<std::u16string, std::size_t> counts;
    for (std::size_t line = 0; line < Count(); ++line) ++counts[WordsOf(Mark(line).text).text];
    std::vector<std::pair<std::u16string, std::size_t>> sorted(counts.begin(), counts.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& one, const auto& other) { return one.second > other.second; });
    std::vector<std::vector<std::u16string>> rows;
    for (const auto& [text, count] : sorted) rows.push_back({text, Decimal(static_cast<std::int64_t>(count))});
    return rows;
}

std::vector<std::u16string> MarkList::Row(std::size_t line) const {
    std::vector<std::u16string> cells;
    for (int column = 0; column < ColumnCount; ++column) cells.push_back(Cell(line, static_cast<Column>(column)));
    return cells;
}

std::string MarkList::Csv() const {
    std::string text = "onset,duration,channel,text\r\n";
    for (std::size_t line = 0; line < Count(); ++line) {
        const BlockMark& mark = Mark(line);
        const MarkWords words = WordsOf(mark.text);
        const double onset = m_block.sampleRate > 0.0 ? mark.position / m_block.sampleRate : 0.0;
        text += Utf8(NumberText(onset, u'.')) + ',';
        if (mark.seconds > 0.0) text += Utf8(NumberText(mark.seconds, u'.'));
        text += ',' + Field(words.channel) + ',' + Field(words.text) + "\r\n";
    }
    return text;
}

}  // namespace quillon
