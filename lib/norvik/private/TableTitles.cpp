#include "norvik/private/TableTitles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "base/Text.h"
#include "norvik/SystemBytes.h"
#include "norvik/private/TableTime.h"

namespace quillon {

namespace {

std::string_view WithoutMark(std::string_view line) {
    std::string_view text = Trim(line);
    while (!text.empty() && (text.front() == '#' || text.front() == '%')) text.remove_prefix(1);
    return Trim(text);
}

bool HasMark(std::string_view line) {
    return WithoutMark(line).size() != Trim(line).size();
}

/// A line "key: value" or "key = value"; the value is empty where it is none.
struct KeyLine {
    std::string key;  ///< in lower case
    std::string_view value;
};

KeyLine ParseKey(std::string_view line) {
    const std::string_view text = WithoutMark(line);
    const std::size_t at = text.find_first_of(":=");
    if (at == std::string_view::npos) return {};
    std::size_t value = at;
    while (value < text.size() && (text[value] == ':' || text[value] == '=')) ++value;
    return {Utf8(LowerCase(Utf16(text.substr(0, at)))), Trim(text.substr(value))};
}

bool Contains(std::string_view text, std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return text.find(word) != std::string_view::npos; });
}

/// The first number behind a word that stands for a rate; 0 without one.
double RateIn(std::string_view line) {
    const std::string lower = Utf8(LowerCase(Utf16(line))) + '\n';
    for (const std::string_view word : {"rate", "freq", "(hz", "hz:", "hz=", "частота"}) {
        const std::size_t found = lower.find(word);
        if (found == std::string::npos) continue;
        const std::size_t digit = lower.find_first_of("0123456789", found);
        TableNumber number;
        if (digit == std::string::npos) continue;
        if (ParseTableNumber(lower.c_str() + digit, '.', number) == nullptr || !std::isfinite(number.value)) continue;
        if (number.value > 0.0) return number.value;
    }
    return 0.0;
}

std::u16string Text(std::string_view field) {
    constexpr std::size_t longest = 200;
    std::u16string text = FromUtf8OrSystemBytes(field.substr(0, longest));
    for (std::size_t at = text.find(u"\"\""); at != std::u16string::npos; at = text.find(u"\"\"", at + 1))
        text.erase(at, 1);
    std::replace_if(
        text.begin(), text.end(), [](char16_t letter) { return letter < u' '; }, u' ');
    return text;
}

bool IsBracketed(std::u16string_view text) {
    return text.size() > 2 &&
           ((text.front() == u'(' && text.back() == u')') || (text.front() == u'[' && text.back() == u']'));
}

void SplitUnit(std::u16string& title, std::u16string& unit) {
    if (title.empty() || (title.back() != u')' && title.back() != u']')) return;
    const std::size_t open = title.rfind(title.back() == u')' ? u'(' : u'[');
    if (open == std::u16string::npos || open == 0) return;
    unit = Trim(std::u16string_view(title).substr(open + 1, title.size() - open - 2));
    title = Trim(std::u16string_view(title).substr(0, open));
}

/// A line with a text for each column; empty where it is none.
std::vector<std::u16string> Texts(std::string_view line, const TableLayout& layout) {
    TableNumber number;
    if (ParseLoneNumber(line, number)) return {};
    const std::vector<std::string_view> fields = SplitTableLine(WithoutMark(line), layout.format);
    const std::size_t extra = !fields.empty() && fields.back().empty() ? 1 : 0;
    if (fields.size() != layout.Fields() && fields.size() != layout.Fields() + extra) return {};
    const bool numbers = std::all_of(fields.begin(), fields.end(), [&](std::string_view field) {
        return KindOfField(field, layout.format.decimal) != FieldKind::Text;
    });
    if (numbers) return {};
    std::vector<std::u16string> texts;
    for (const std::string_view field : fields) texts.push_back(Text(field));
    texts.resize(layout.Fields());
    return texts;
}

bool AreUnits(const std::vector<std::u16string>& texts) {
    constexpr std::size_t longestUnit = 8;
    if (texts.empty()) return false;
    if (texts.size() == 1) return IsBracketed(texts[0]);
    return std::all_of(texts.begin(), texts.end(),
                       [](const std::u16string& text) { return text.size() <= longestUnit; });
}

/// The titles right above the rows, and a line of units below them.
void ReadTitleLines(const TableLines& lines, TableHead& head) {
    std::vector<std::u16string> below;
    for (std::size_t line = head.layout.firstRow; line-- > 0;) {
        if (Trim(lines[line]).empty()) continue;
        const bool key = HasMark(lines[line]) && !ParseKey(lines[line]).value.empty();
        const std::vector<std::u16string> texts = key ? std::vector<std::u16string>() : Texts(lines[line], head.layout);
        if (texts.empty() && !below.empty()) break;
        if (texts.empty()) continue;
        if (below.empty()) {
            below = texts;
            if (AreUnits(below)) continue;
        } else {
            head.units = std::move(below);
            for (std::u16string& unit : head.units) {
                if (IsBracketed(unit)) unit = unit.substr(1, unit.size() - 2);
            }
            head.titles = texts;
            return;
        }
        break;
    }
    if (!below.empty()) head.titles = std::move(below);
}

void ReadKey(std::string_view line, TableHead& head) {
    const KeyLine key = ParseKey(line);
    if (key.value.empty()) return;
    if (head.rate == 0.0) head.rate = RateIn(line);
    if (Contains(key.key, {"date", "start", "дата"}) && !head.start) {
        const std::optional<TableMoment> moment = ParseTableMoment(key.value);
        if (moment && moment->day) head.start = *moment->day + moment->seconds.value_or(0.0) / 86400.0;
    }
    const auto texts = SplitTableLine(key.value, head.layout.format);
    const std::size_t columns = head.layout.Fields();
    if (key.key.starts_with("label") && texts.size() == columns) {
        for (std::size_t at = 0; at < columns; ++at) head.titles[at] = Text(texts[at]);
    }
    if (key.key.starts_with("unit") && (texts.size() == columns || texts.size() == 1)) {
        for (std::size_t at = 0; at < columns; ++at) head.units[at] = Text(texts[texts.size() == 1 ? 0 : at]);
    }
}

}  // namespace

void ReadTableTitles(const TableLines& lines, TableHead& head) {
    const std::size_t columns = head.layout.Fields();
    head.titles.resize(columns);
    head.units.resize(columns);
    ReadTitleLines(lines, head);
    for (std::size_t line = 0; line < head.layout.firstRow; ++line) {
        ReadKey(lines[line], head);
        TableNumber number;
        if (ParseLoneNumber(lines[line], number)) head.numbers.push_back(number.value);
    }
    for (std::size_t at = 0; at < columns; ++at) {
        if (head.units[at].empty()) SplitUnit(head.titles[at], head.units[at]);
    }
}

}  // namespace quillon
