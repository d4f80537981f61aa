#include "norvik/private/TableLayout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <tuple>

#include "base/Bilingual.h"
#include "base/Text.h"
#include "norvik/private/TableNumber.h"

namespace quillon {

namespace {

constexpr std::size_t kSampleLines = 100;
constexpr std::size_t kMostColumns = 4096;
constexpr std::size_t kMostHeaderLines = 1000;

struct Trial {
    TableLayout layout;
    std::size_t rows = 0;  ///< of the sample
    std::size_t textColumns = 0;
    bool titled = false;
    bool usesDecimal = false;
};

/// Kinds of the fields of the lines that have as many as most.
struct Counts {
    std::size_t lines = 0;
    std::vector<std::size_t> numbers;
    std::vector<std::size_t> moments;
    std::vector<std::size_t> texts;
    std::vector<bool> filled;
};

Counts CountKinds(const std::vector<std::vector<std::string_view>>& lines, std::size_t fields, char decimal) {
    Counts counts{0, std::vector<std::size_t>(fields), std::vector<std::size_t>(fields),
                  std::vector<std::size_t>(fields), std::vector<bool>(fields)};
    for (const auto& line : lines) {
        if (line.size() != fields) continue;
        ++counts.lines;
        for (std::size_t at = 0; at < fields; ++at) {
            const FieldKind kind = KindOfField(line[at], decimal);
            counts.numbers[at] += kind == FieldKind::Number ? 1 : 0;
            counts.moments[at] += kind == FieldKind::Moment ? 1 : 0;
            counts.texts[at] += kind == FieldKind::Text ? 1 : 0;
            if (!line[at].empty()) counts.filled[at] = true;
        }
    }
    return counts;
}

std::size_t UsualFields(const std::vector<std::vector<std::string_view>>& lines) {
    std::map<std::size_t, std::size_t> counts;
    for (const auto& line : lines) ++counts[line.size()];
    std::size_t usual = 0;
    for (const auto& [fields, count] : counts) {
        if (usual == 0 || count >= counts[usual]) usual = fields;
    }
    return usual;
}

/// Whether two columns between commas are the two parts of one number: whole numbers never begin with a 0.
bool AreDecimals(const std::vector<std::vector<std::string_view>>& lines) {
    return std::any_of(lines.begin(), lines.end(), [](const auto& line) {
        return line.size() == 2 && line[1].size() > 1 && line[1].front() == '0' && table_number::IsDigit(line[1][1]);
    });
}

std::optional<Trial> Try(const TableLines& sample, const TableFormat& format) {
    std::vector<std::vector<std::string_view>> lines;
    for (const std::string_view line : sample) {
        if (!IsTableRemark(line, format)) lines.push_back(SplitTableLine(line, format));
    }
    std::size_t fields = UsualFields(lines);
    if (fields == 0 || fields > kMostColumns) return std::nullopt;
    const Counts counts = CountKinds(lines, fields, format.decimal);
    // A separator at the end of every row.
    if (fields > 1 && !counts.filled[fields - 1]) --fields;
    Trial trial;
    trial.layout.format = format;
    bool anyNumbers = false;
    for (std::size_t at = 0; at < fields; ++at) {
        // Times only where they tell when the row was.
        const std::size_t texts = counts.texts[at] + (at < 2 ? 0 : counts.moments[at]);
        const bool isText = 2 * texts > counts.lines || counts.numbers[at] + counts.moments[at] == 0;
        trial.layout.isText.push_back(isText);
        trial.textColumns += isText ? 1 : 0;
        anyNumbers = anyNumbers || (!isText && counts.numbers[at] > counts.moments[at]);
    }
    if (!anyNumbers || (trial.textColumns > 0 && format.separator == ' ')) return std::nullopt;
    if (format.separator == ',' && format.decimal == '.' && fields == 2 && AreDecimals(lines)) return std::nullopt;
    for (const std::string_view line : sample) {
        if (!IsTableRow(line, trial.layout)) continue;
        ++trial.rows;
        for (const std::string_view field : SplitTableLine(line, format)) {
            trial.usesDecimal = trial.usesDecimal || (KindOfField(field, format.decimal) == FieldKind::Number &&
                                                      field.find(format.decimal) != std::string_view::npos);
        }
    }
    if (format.decimal == ',' && !trial.usesDecimal) return std::nullopt;
    return trial;
}

/// Whether three lines from `first` on are the number of rows, their rate and its inverse, written above a single
/// column without a title.
bool AreNumbersAbove(const TableLines& lines, std::size_t first) {
    constexpr double single = 1e-6;
    if (first + 4 > lines.size()) return false;
    std::array<TableNumber, 3> numbers;
    for (std::size_t at = 0; at < numbers.size(); ++at) {
        if (!ParseLoneNumber(lines[first + at], numbers[at])) return false;
    }
    const double rows = numbers[0].value;
    const bool inverse = std::fabs(numbers[1].value * numbers[2].value - 1.0) <= single;
    return inverse && rows == std::trunc(rows) && rows >= static_cast<double>(lines.size() - first - numbers.size());
}

/// Finds the first row.
void FindFirst(const TableLines& lines, Trial& trial) {
    TableLayout& layout = trial.layout;
    const auto isRow = [&](std::size_t at) { return IsTableRow(lines[at], layout); };
    std::size_t first = 0;
    while (first < lines.size() && !isRow(first)) ++first;
    // Single numbers may stand above a single column, with its title or without.
    if (layout.Fields() == 1) {
        constexpr std::size_t mostNumbers = 4;
        if (AreNumbersAbove(lines, first)) first += 3;
        for (std::size_t at = first; at < std::min(first + mostNumbers, lines.size()); ++at) {
            if (!isRow(at) && at + 1 < lines.size() && isRow(at + 1) && !IsTableRemark(lines[at], layout.format))
                first = at + 1;
        }
    }
    layout.firstRow = first;
    trial.titled = first > 0 && first < lines.size() &&
                   SplitTableLine(lines[first - 1], layout.format).size() == layout.Fields() &&
                   !Trim(lines[first - 1]).empty();
}

auto Rank(const Trial& trial) {
    const TableFormat& format = trial.layout.format;
    const bool several = trial.layout.Fields() > 1;
    const bool strong = several && (format.separator == '\t' || format.separator == ';' || format.separator == '|');
    return std::tuple(trial.rows, kMostColumns - trial.textColumns, trial.titled, several, strong, trial.usesDecimal);
}

std::u16string FromOne(std::size_t number) {
    return Decimal(static_cast<std::int64_t>(number) + 1);
}

/// Names the first field below the header, if there is one, that is no number.
[[noreturn]] void Refuse(const TableLines& lines, const TableLayout& layout, std::size_t from) {
    constexpr std::size_t longest = 40;
    for (std::size_t line = from; line < lines.size(); ++line) {
        if (IsTableRemark(lines[line], layout.format)) continue;
        const auto fields = SplitTableLine(lines[line], layout.format);
        for (std::size_t at = 0; at < fields.size(); ++at) {
            if (at < layout.Fields() && layout.isText[at]) continue;
            if (KindOfField(fields[at], layout.format.decimal) != FieldKind::Text) continue;
            throw FormatError(Say(u"no table of numbers: line %1 has '%2' in column %3",
                                  u"нет таблицы чисел: в строке %1, столбец %3 — «%2»",
                                  {FromOne(line), FromUtf8OrLatin1(fields[at].substr(0, longest)), FromOne(at)}));
        }
        if (layout.Fields() > 0 && fields.size() != layout.Fields()) {
            throw FormatError(Say(u"no table of numbers: line %1 has %2 columns, most have %3",
                                  u"нет таблицы чисел: в строке %1 столбцов: %2, в большинстве — %3",
                                  {FromOne(line), FromOne(fields.size() - 1), FromOne(layout.Fields() - 1)}));
        }
    }
    if (from > 0) Refuse(lines, layout, 0);
    throw FormatError(
        Say(u"no table of numbers: there are no two rows", u"нет таблицы чисел: в файле нет двух строк с числами"));
}

}  // namespace

bool IsTableRow(std::string_view line, const TableLayout& layout) {
    if (IsTableRemark(line, layout.format)) return false;
    std::vector<std::string_view> fields = SplitTableLine(line, layout.format);
    if (fields.size() == layout.Fields() + 1 && fields.back().empty()) fields.pop_back();
    if (fields.size() != layout.Fields()) return false;
    for (std::size_t at = 0; at < fields.size(); ++at) {
        if (!layout.isText[at] && KindOfField(fields[at], layout.format.decimal) == FieldKind::Text) return false;
    }
    return true;
}

TableLayout FindTableLayout(const TableLines& lines) {
    TableLines sample;
    for (auto line = lines.rbegin(); line != lines.rend() && sample.size() < kSampleLines; ++line) {
        if (!Trim(*line).empty()) sample.push_back(*line);
    }
    const bool quoted = std::any_of(sample.begin(), sample.end(),
                                    [](std::string_view line) { return line.find('"') != std::string_view::npos; });
    std::optional<Trial> best;
    for (const char separator : {'\t', ';', '|', ',', ' '}) {
        for (const char decimal : {'.', ','}) {
            if (separator == ',' && decimal == ',' && !quoted) continue;
            std::optional<Trial> trial = Try(sample, {separator, decimal});
            if (!trial) continue;
            FindFirst(lines, *trial);
            if (!best || Rank(*trial) > Rank(*best)) best = std::move(trial);
        }
    }
    if (!best || best->rows < 2)
        Refuse(lines, best ? best->layout : TableLayout{}, std::min<std::size_t>(lines.size(), 1));
    const TableLayout& layout = best->layout;
    if (layout.firstRow > kMostHeaderLines)
        throw FormatError(Say(u"no table of numbers in the first %1 lines", u"в первых строках (%1) нет таблицы чисел",
                              {FromOne(kMostHeaderLines - 1)}));
    std::size_t rows = 0;
    std::size_t others = 0;
    for (std::size_t line = layout.firstRow; line < lines.size(); ++line) {
        if (!IsTableRemark(lines[line], layout.format)) ++(IsTableRow(lines[line], layout) ? rows : others);
    }
    if (others > 1 + rows / 100) Refuse(lines, layout, layout.firstRow);
    return layout;
}

}  // namespace quillon
