#include "norvik/private/TableField.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/Text.h"
#include "norvik/private/TableTime.h"

namespace quillon {

namespace {

bool IsMissing(std::string_view field) {
    constexpr std::array<std::string_view, 11> words{"",   "nan", "na",   "n/a",  "null",    "-",
                                                     "--", "inf", "-inf", "+inf", "infinity"};
    if (field.size() > words.back().size()) return false;
    std::string lower(field);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return std::find(words.begin(), words.end(), lower) != words.end();
}

}  // namespace

const char* TakeTableField(const char* at, const char* end, const TableFormat& format, std::string_view& field) {
    while (at != end && IsTableBlank(*at, format)) ++at;
    const auto separates = [&](char letter) {
        return letter == format.separator || (format.separator == ' ' && letter == '\t');
    };
    if (at != end && *at == '"') {
        const char* const first = ++at;
        // A doubled quote ends one part and begins the next.
        for (bool inside = true; at != end && (inside || !separates(*at)); ++at) inside ^= *at == '"';
        const std::string_view quoted = Trim(std::string_view(first, static_cast<std::size_t>(at - first)));
        field = Trim(quoted.substr(0, quoted.size() - (quoted.ends_with('"') ? 1 : 0)));
        return at;
    }
    const char* const last = std::find_if(at, end, separates);
    field = Trim(std::string_view(at, static_cast<std::size_t>(last - at)));
    return last;
}

std::vector<std::string_view> SplitTableLine(std::string_view line, const TableFormat& format) {
    std::vector<std::string_view> fields;
    const char* const end = line.data() + line.size();
    for (const char* at = line.data();; ++at) {
        while (at != end && IsTableBlank(*at, format)) ++at;
        if (at == end && format.separator == ' ' && !fields.empty()) return fields;
        std::string_view field;
        at = TakeTableField(at, end, format, field);
        fields.push_back(field);
        if (at == end) return fields;
    }
}

bool ParseNumberField(std::string_view field, char decimal, TableNumber& number) {
    if (field.empty() || field.size() >= kLongestTableNumber) return false;
    std::array<char, kLongestTableNumber + 1> ended;
    *std::copy(field.begin(), field.end(), ended.begin()) = '\n';
    return ParseTableNumber(ended.data(), decimal, number) == ended.data() + field.size();
}

bool ParseLoneNumber(std::string_view line, TableNumber& number) {
    const std::string_view field = Trim(line);
    return ParseNumberField(field, '.', number) || ParseNumberField(field, ',', number);
}

FieldKind KindOfField(std::string_view field, char decimal) {
    TableNumber number;
    if (ParseNumberField(field, decimal, number)) return FieldKind::Number;
    if (IsMissing(field)) return FieldKind::Missing;
    return ParseTableMoment(field) ? FieldKind::Moment : FieldKind::Text;
}

bool IsTableRemark(std::string_view line, const TableFormat& format) {
    const std::string_view text = Trim(line);
    if (text.empty()) return true;
    return text.front() == '#' || text.front() == '%' || (text.front() == ';' && format.separator != ';');
}

}  // namespace quillon
