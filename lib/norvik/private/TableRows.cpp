#include "norvik/private/TableRows.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "norvik/private/TableNumber.h"

namespace quillon {

static_assert(std::endian::native == std::endian::little, "singles are kept as they lie in memory");

namespace {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
/// So many faulty lines are borne with in any case.
constexpr std::uint64_t kFewLines = 100;

}  // namespace

TableRows::TableRows(const TableHead& head)
    : m_format(head.layout.format),
      m_roles(head.roles),
      m_headerLines(head.layout.firstRow),
      m_isClock(head.clock.origin == TableClock::Origin::Clock),
      m_timing(head.clock.step, head.clock.digit, head.clock.relative) {
    const auto channels = static_cast<std::size_t>(std::count(m_roles.begin(), m_roles.end(), TableRole::Channel));
    m_row.resize(channels);
    m_columns.resize(channels);
}

bool TableRows::IsRemark(const char* at, const char* end, char separator) {
    while (at != end && (*at == ' ' || *at == '\t')) ++at;
    return at == end || *at == '#' || *at == '%' || (*at == ';' && separator != ';');
}

bool TableRows::Feed(std::string_view lines, bool unended) {
    m_kept.clear();
    bool more = true;
    const char* const last = lines.data() + lines.size();
    for (const char* at = lines.data(); at != last && more;) {
        const auto* const lineEnd =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(last - at)));
        const char* const end = lineEnd != at && lineEnd[-1] == '\r' ? lineEnd - 1 : lineEnd;
        if (++m_line > m_headerLines) {
            const char first = at == end ? ' ' : *at;
            const bool digit = table_number::IsDigit(first) || first == '-';
            if (ParseLine(at, end)) {
                if (digit || !IsRemark(at, end, m_format.separator)) more = KeepRow();
            } else if (unended && lineEnd + 1 == last) {
                m_faults.cut = true;
            } else if (!IsRemark(at, end, m_format.separator)) {
                more = LeaveOut();
            }
        }
        at = lineEnd + 1;
    }
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(m_kept.data());
    m_cells->Append({bytes, m_kept.size() * sizeof(float)});
    m_rows += m_kept.size() / m_row.size();
    return more;
}

bool TableRows::ParseLine(const char* at, const char* end) {
    const bool blanks = m_format.separator == ' ';
    std::size_t column = 0;
    Cell* cell = m_row.data();
    Cell ignored{};
    m_time = kUnknown;
    m_words = 0;
    for (;;) {
        while (IsTableBlank(*at, m_format)) ++at;
        if (at == end && (blanks ? column > 0 : column == m_roles.size())) break;
        if (column == m_roles.size()) return false;
        const TableRole role = m_roles[column++];
        Cell& to = role == TableRole::Channel ? *cell++ : ignored;
        TableNumber number;
        const char* next = ParseTableNumber(at, m_format.decimal, number);
        const char* after = next;
        while (after != nullptr && IsTableBlank(*after, m_format)) ++after;
        if (next != nullptr && (after == end || *after == m_format.separator || (blanks && after != next))) {
            to = {number.value, number.decimals, number.exact};
            if (role == TableRole::Time) m_time = number.value;
        } else {
            std::string_view field;
            after = TakeTableField(at, end, m_format, field);
            TakeWord(field, role, to);
        }
        if (after == end) break;
        at = blanks ? after : after + 1;
    }
    return column == m_roles.size();
}

void TableRows::TakeWord(std::string_view field, TableRole role, Cell& cell) {
    cell = {kUnknown, 0, true};
    TableNumber number;
    if (role == TableRole::LeftOut) return;
    if (role == TableRole::Time || role == TableRole::Date) {
        const double time = TableTimeOf(field, m_format.decimal);
        m_time = std::isnan(m_time) ? time : m_time + time;
    } else if (ParseNumberField(field, m_format.decimal, number)) {
        cell = {number.value, number.decimals, number.exact};
    } else if (KindOfField(field, m_format.decimal) != FieldKind::Missing) {
        ++m_words;
    }
}

double TableRows::TimeOfRow() {
    constexpr double day = 86400.0;
    if (!m_isClock || !std::isfinite(m_time)) return m_time;
    double time = m_time + m_day;
    // Past midnight.
    if (m_rows + m_kept.size() > 0 && time < m_lastTime - day / 2.0) {
        m_day += day;
        time += day;
    }
    m_lastTime = time;
    return time;
}

bool TableRows::KeepRow() {
    const bool first = m_rows == 0 && m_kept.empty();
    if (!m_timing.Add(TimeOfRow())) {
        m_faults.stopLine = m_line;
        m_faults.tooManyGaps = true;
        return false;
    }
    if (m_words > 0 && m_faults.words == 0) m_faults.firstWord = m_line;
    m_faults.words += m_words;
    for (std::size_t at = 0; at < m_row.size(); ++at) {
        const Cell& cell = m_row[at];
        TableColumn& column = m_columns[at];
        if (!std::isfinite(cell.value)) {
            m_kept.push_back(static_cast<float>(-column.base));
            continue;
        }
        if (first) column.base = cell.value;
        column.minimum = std::min(column.minimum, cell.value);
        column.maximum = std::max(column.maximum, cell.value);
        column.decimals = std::max(column.decimals, cell.decimals);
        column.exact = column.exact && cell.exact;
        constexpr double largest = std::numeric_limits<float>::max();
        m_kept.push_back(static_cast<float>(std::clamp(cell.value - column.base, -largest, largest)));
    }
    return true;
}

bool TableRows::LeaveOut() {
    if (m_faults.lines++ == 0) m_faults.firstLine = m_line;
    const std::uint64_t rows = m_rows + m_kept.size() / m_row.size();
    if (m_faults.lines <= kFewLines || m_faults.lines * 100 <= rows) return true;
    m_faults.stopLine = m_line;
    return false;
}

}  // namespace quillon
