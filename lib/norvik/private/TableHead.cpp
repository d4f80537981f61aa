#include "norvik/private/TableHead.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "base/Text.h"
#include "norvik/private/TableTime.h"
#include "norvik/private/TableTitles.h"

namespace quillon {

namespace {

constexpr std::size_t kTimedRows = 1000;

struct TimeUnit {
    std::u16string_view name;
    double perSecond;
};

constexpr std::array<TimeUnit, 18> kTimeUnits{{{u"s", 1.0},
                                               {u"sec", 1.0},
                                               {u"seconds", 1.0},
                                               {u"second", 1.0},
                                               {u"с", 1.0},
                                               {u"сек", 1.0},
                                               {u"ms", 1e3},
                                               {u"msec", 1e3},
                                               {u"мс", 1e3},
                                               {u"us", 1e6},
                                               {u"µs", 1e6},
                                               {u"μs", 1e6},
                                               {u"mks", 1e6},
                                               {u"мкс", 1e6},
                                               {u"ns", 1e9},
                                               {u"min", 1 / 60.0},
                                               {u"мин", 1 / 60.0},
                                               {u"h", 1.0 / 3600.0}}};

const TimeUnit* FindTimeUnit(std::u16string_view name) {
    const std::u16string lower = LowerCase(name);
    const auto* const unit =
        std::find_if(kTimeUnits.begin(), kTimeUnits.end(), [&](const TimeUnit& known) { return known.name == lower; });
    return unit == kTimeUnits.end() ? nullptr : unit;
}

bool NamesTime(const std::u16string& title) {
    const std::u16string lower = LowerCase(title);
    if (lower == u"t" || FindTimeUnit(lower) != nullptr) return true;
    for (const std::u16string_view word : {u"time", u"zeit", u"врем", u"second", u"elapsed", u"clock", u"date"}) {
        if (lower.find(word) != std::u16string::npos) return true;
    }
    return false;
}

bool NamesIndex(const std::u16string& title) {
    constexpr std::array<std::u16string_view, 10> names{u"n",  u"index", u"sample", u"samples", u"#",
                                                        u"no", u"nr",    u"№",      u"i",       u"номер"};
    return std::find(names.begin(), names.end(), LowerCase(title)) != names.end();
}

/// One column of the first rows.
struct Sampled {
    std::vector<double> times;
    std::vector<std::size_t> lines;
    std::size_t moments = 0;
    bool days = true;     ///< all have a day
    bool seconds = true;  ///< all have a time of day
    int decimals = 0;
    bool exponents = false;
    int digits = std::numeric_limits<int>::max();  ///< the fewest significant ones of those with an exponent

    void Add(std::string_view field, char decimal, std::size_t line);
    [[nodiscard]] bool AreMoments() const { return 2 * moments > times.size(); }
};

void Sampled::Add(std::string_view field, char decimal, std::size_t line) {
    times.push_back(TableTimeOf(field, decimal));
    lines.push_back(line);
    if (const std::optional<TableMoment> moment = ParseTableMoment(field)) {
        ++moments;
        days = days && moment->day.has_value();
        seconds = seconds && moment->seconds.has_value();
        decimals = std::max(decimals, moment->decimals);
        return;
    }
    const std::size_t exponent = field.find_first_of("eE");
    const std::string_view mantissa = field.substr(0, exponent);
    const std::size_t point = mantissa.find(decimal);
    if (exponent != std::string_view::npos) {
        exponents = true;
        const auto count = std::count_if(mantissa.begin(), mantissa.end(), table_number::IsDigit);
        digits = std::min(digits, static_cast<int>(count));
    } else if (point != std::string_view::npos) {
        decimals = std::max(decimals, static_cast<int>(mantissa.size() - point - 1));
    }
}

/// The usual step; 0 where there is none.
double UsualStep(const std::vector<double>& times) {
    std::vector<double> steps;
    for (std::size_t at = 1; at < times.size(); ++at) {
        if (std::isfinite(times[at] - times[at - 1])) steps.push_back(times[at] - times[at - 1]);
    }
    if (steps.empty()) return 0.0;
    const auto middle = steps.begin() + static_cast<std::ptrdiff_t>((steps.size() - 1) / 2);
    std::nth_element(steps.begin(), middle, steps.end());
    if (*middle > 0.0) return *middle;
    // Of a clock that stands still for some rows.
    double sum = 0.0;
    for (const double step : steps) sum += step;
    return std::max(sum / static_cast<double>(steps.size()), 0.0);
}

/// Without what binary fractions add to differences of decimal ones.
std::u16string RoundNumber(double number) {
    constexpr double places = 1e9;
    return ShortestDecimal(std::fabs(number) < places ? std::nearbyint(number * places) / places : number);
}

class TimeFinder {
  public:
    TimeFinder(const TableLines& lines, TableHead& head) : m_lines(lines), m_head(head) {}

    void Find();

  private:
    [[nodiscard]] Sampled Sample(std::size_t column) const;
    void TakeMoments(std::size_t column, const Sampled& sampled);
    void TakeNumbers(const Sampled& sampled, bool named);
    void SetPrecision(const Sampled& sampled);
    /// The first place where a step is off the usual one by more than `steps` of it and `digits`; nothing where most
    /// are not.
    [[nodiscard]] std::optional<std::size_t> FindUneven(const std::vector<double>& times, double steps,
                                                        double digits) const;
    /// Whether a column that nothing names is one of times: even but for the rounding, and not at odds with the rate.
    [[nodiscard]] bool LooksLikeTimes(const Sampled& sampled) const;
    void RefuseUneven(const Sampled& sampled) const;

    const TableLines& m_lines;
    TableHead& m_head;
};

Sampled TimeFinder::Sample(std::size_t column) const {
    Sampled sampled;
    const TableLayout& layout = m_head.layout;
    for (std::size_t line = layout.firstRow; line < m_lines.size() && sampled.times.size() < kTimedRows; ++line) {
        if (!IsTableRow(m_lines[line], layout)) continue;
        sampled.Add(SplitTableLine(m_lines[line], layout.format)[column], layout.format.decimal, line);
    }
    return sampled;
}

void TimeFinder::SetPrecision(const Sampled& sampled) {
    TableClock& clock = m_head.clock;
    clock.digit = std::pow(10.0, -sampled.decimals);
    clock.relative = 1e-15;
    if (!sampled.exponents) return;
    clock.digit = 0.0;
    clock.relative = std::pow(10.0, 1 - std::clamp(sampled.digits, 1, 16));
}

std::optional<std::size_t> TimeFinder::FindUneven(const std::vector<double>& times, double steps, double digits) const {
    const TableClock& clock = m_head.clock;
    std::size_t uneven = 0;
    std::optional<std::size_t> first;
    for (std::size_t at = 1; at < times.size(); ++at) {
        const double digit = std::max(clock.digit, std::fabs(times[at]) * clock.relative);
        const double off = times[at] - times[at - 1] - clock.step;
        if (!(std::fabs(off) > clock.step * steps + digits * digit)) continue;
        ++uneven;
        if (!first) first = at;
    }
    return 4 * uneven > times.size() && times.size() > 2 ? first : std::nullopt;
}

void TimeFinder::RefuseUneven(const Sampled& sampled) const {
    if (const auto at = FindUneven(sampled.times, 0.5, 2.5)) {
        throw FormatError(
            Say(u"the rows are not evenly spaced (line %1: step %2, else %3)",
                u"строки идут неравномерно (строка %1: шаг %2, в остальных %3)",
                {Decimal(static_cast<std::int64_t>(sampled.lines[*at]) + 1),
                 RoundNumber(sampled.times[*at] - sampled.times[*at - 1]), RoundNumber(m_head.clock.step)}));
    }
}

void TimeFinder::TakeMoments(std::size_t column, const Sampled& sampled) {
    TableClock& clock = m_head.clock;
    m_head.roles[column] = TableRole::Time;
    clock.unitTold = true;
    clock.origin = sampled.days ? TableClock::Origin::Day : TableClock::Origin::Clock;
    clock.step = UsualStep(sampled.times);
    SetPrecision(sampled);
    RefuseUneven(sampled);
}

bool TimeFinder::LooksLikeTimes(const Sampled& sampled) const {
    const std::vector<double>& times = sampled.times;
    const bool rises = std::adjacent_find(times.begin(), times.end(),
                                          [](double one, double next) { return !(one < next); }) == times.end();
    const double step = m_head.clock.step;
    const bool ramp = step == 1.0 && sampled.decimals == 0 && !sampled.exponents;
    if (times.size() < 3 || !rises || ramp || FindUneven(times, 0.001, 1.5)) return false;
    constexpr double rounded = 0.02;
    return m_head.rate == 0.0 || std::any_of(kTimeUnits.begin(), kTimeUnits.end(), [&](const TimeUnit& unit) {
               return std::fabs(step * m_head.rate / unit.perSecond - 1.0) < rounded;
           });
}

void TimeFinder::TakeNumbers(const Sampled& sampled, bool named) {
    TableClock& clock = m_head.clock;
    const std::vector<double>& times = sampled.times;
    clock.step = UsualStep(times);
    SetPrecision(sampled);
    if (!named && !LooksLikeTimes(sampled)) {
        clock = {};
        return;
    }
    RefuseUneven(sampled);
    m_head.roles[0] = TableRole::Time;
    // Seconds since 1970 lie between 1e8 (1973) and 1e11; finer units are larger by a thousand each.
    double unit = 1.0;
    for (double above = times.front() / 1e8; above >= 1000.0 && unit < 1e9; above /= 1000.0) unit *= 1e3;
    if (const TimeUnit* const known = FindTimeUnit(m_head.units[0])) {
        clock.unitsPerSecond = known->perSecond;
        clock.unitTold = true;
    } else if (const TimeUnit* const title = FindTimeUnit(m_head.titles[0])) {
        clock.unitsPerSecond = title->perSecond;
        clock.unitTold = true;
    } else if (times.front() >= 1e8) {
        clock.unitsPerSecond = unit;
        clock.unitTold = true;
    }
    const double seconds = times.front() / clock.unitsPerSecond;
    if (seconds >= 1e8 && seconds < 1e11) clock.origin = TableClock::Origin::Unix;
}

void TimeFinder::Find() {
    const TableLayout& layout = m_head.layout;
    if (layout.Fields() < 2 || layout.isText[0]) return;
    const Sampled first = Sample(0);
    const bool index = NamesIndex(m_head.titles[0]) && UsualStep(first.times) == 1.0 && first.decimals == 0;
    if (index) m_head.roles[0] = TableRole::LeftOut;
    if (first.AreMoments() && first.seconds) return TakeMoments(0, first);
    const bool dates = first.AreMoments();
    if (dates) m_head.roles[0] = TableRole::Date;
    if (dates || index) {
        Sampled second = layout.isText[1] ? Sampled{} : Sample(1);
        if (!second.times.empty() && second.AreMoments() && second.seconds) {
            for (std::size_t at = 0; dates && at < second.times.size(); ++at) second.times[at] += first.times[at];
            second.days = second.days || dates;
            TakeMoments(1, second);
        } else if (dates) {
            TakeMoments(0, first);
        }
        return;
    }
    const std::u16string& title = m_head.titles[0];
    const bool unit = FindTimeUnit(m_head.units[0]) != nullptr;
    const bool untitled = title.empty() && m_head.units[0].empty();
    if (untitled || unit || NamesTime(title)) TakeNumbers(first, unit || NamesTime(title));
    if (layout.isText[1]) return;
    const Sampled second = Sample(1);
    if (!second.AreMoments()) return;
    m_head.roles[1] = TableRole::LeftOut;
    if (m_head.clock.step == 0.0 && second.seconds) TakeMoments(1, second);
}

}  // namespace

double TableTimeOf(std::string_view field, char decimal) {
    TableNumber number;
    if (ParseNumberField(field, decimal, number)) return number.value;
    const std::optional<TableMoment> moment = ParseTableMoment(field);
    if (!moment) return std::numeric_limits<double>::quiet_NaN();
    return moment->day.value_or(0.0) * 86400.0 + moment->seconds.value_or(0.0);
}

TableHead ReadTableHead(const TableLines& lines, const TableLayout& layout) {
    TableHead head;
    head.layout = layout;
    head.roles.resize(layout.Fields(), TableRole::Channel);
    ReadTableTitles(lines, head);
    for (std::size_t at = 0; at < layout.Fields(); ++at) {
        if (layout.isText[at]) head.roles[at] = TableRole::LeftOut;
    }
    TimeFinder(lines, head).Find();
    const bool any = std::find(head.roles.begin(), head.roles.end(), TableRole::Channel) != head.roles.end();
    if (!any) throw FormatError(Say(u"the table has no column of values", u"в таблице нет столбца значений"));
    return head;
}

}  // namespace quillon
