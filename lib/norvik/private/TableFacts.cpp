#include "norvik/private/TableFacts.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/DateTime.h"
#include "base/Text.h"
#include "norvik/private/FrameCount.h"

namespace quillon {

namespace {

constexpr double kDay = 86400.0;

bool AreNear(double one, double other, double part) {
    return std::fabs(one - other) <= part * std::fabs(other);
}

std::u16string Count(std::uint64_t count) {
    return Decimal(static_cast<std::int64_t>(count));
}

/// Finds the rate by the times, the texts and the single numbers above the table.
class RateFinder {
  public:
    RateFinder(const TableHead& head, const TableRows& rows, std::vector<Bilingual>& remarks)
        : m_head(head), m_rows(rows), m_remarks(remarks), m_unitsPerSecond(head.clock.unitsPerSecond) {}

    [[nodiscard]] double Find();
    [[nodiscard]] double UnitsPerSecond() const { return m_unitsPerSecond; }

  private:
    [[nodiscard]] static double Usable(double rate) { return rate > 0.0 && std::isfinite(rate) ? rate : 0.0; }
    /// Of single numbers: samples, rate and step in this order, any of them left out. `timed`: the rate by the times in
    /// the unit taken so far, 0 without them.
    [[nodiscard]] double FromNumbers(double timed);
    /// Whether the times, in one of the units that they may have, tell that rate; keeps the unit.
    bool FindUnit(double rate, double timed);

    const TableHead& m_head;
    const TableRows& m_rows;
    std::vector<Bilingual>& m_remarks;
    double m_unitsPerSecond;
};

bool RateFinder::FindUnit(double rate, double timed) {
    constexpr double rounded = 0.02;
    constexpr std::array units{1.0, 1e3, 1e6, 1.0 / 60.0};
    if (m_head.clock.unitTold) return AreNear(timed, rate, rounded);
    const auto* const unit = std::find_if(units.begin(), units.end(),
                                          [&](double perSecond) { return AreNear(timed * perSecond, rate, rounded); });
    if (unit == units.end()) return false;
    m_unitsPerSecond = *unit;
    return true;
}

double RateFinder::FromNumbers(double timed) {
    std::vector<double> numbers = m_head.numbers;
    // Rate and step are written as the shortest text of a single.
    constexpr double single = 1e-6;
    if (numbers.size() >= 2) {
        const double rate = numbers[numbers.size() - 2];
        if (AreNear(rate * numbers.back(), 1.0, single)) return Usable(rate);
    }
    if (!numbers.empty() && numbers.front() == static_cast<double>(m_rows.Rows())) numbers.erase(numbers.begin());
    if (numbers.empty() || Usable(numbers.back()) == 0.0) return 0.0;
    const double number = numbers.back();
    if (timed > 0.0) return FindUnit(number, timed) ? number : FindUnit(1.0 / number, timed) ? 1.0 / number : 0.0;
    m_remarks.push_back(Say(u"rate taken from the number above the table", u"частота взята из числа над таблицей"));
    return Usable(number >= 1.0 ? number : 1.0 / number);
}

double RateFinder::Find() {
    const bool timed = m_head.clock.step > 0.0;
    double byTime = timed ? Usable(m_rows.Timing().Rate(m_unitsPerSecond)) : 0.0;
    if (timed && byTime == 0.0) byTime = Usable(m_unitsPerSecond / m_head.clock.step);
    double stated = FromNumbers(byTime);
    if (stated == 0.0) stated = Usable(m_head.rate);
    const bool fits = stated > 0.0 && timed && FindUnit(stated, byTime);
    if (timed && !m_head.clock.unitTold && !fits)
        m_remarks.push_back(Say(u"times taken as seconds", u"время принято в секундах"));
    // Times say more than a text.
    if (stated > 0.0 && (fits || !timed)) return stated;
    if (byTime > 0.0) return byTime;
    m_remarks.push_back(
        Say(u"no sampling rate in the file, taken as 1 Hz", u"частота в файле не указана, принята 1 Гц"));
    return 1.0;
}

std::vector<ChannelDescription> Channels(const TableHead& head) {
    std::vector<ChannelDescription> channels;
    for (std::size_t column = 0; column < head.roles.size(); ++column) {
        if (head.roles[column] != TableRole::Channel) continue;
        const std::size_t at = channels.size();
        ChannelDescription channel;
        channel.number = static_cast<std::int16_t>(at % kBlockChannels);
        channel.inputNumber = static_cast<std::int16_t>(at + 1);
        channel.title = head.titles[column];
        channel.unit = head.units[column];
        channels.push_back(std::move(channel));
    }
    return channels;
}

/// Automation date of a time of the time column.
double DateOf(double time, const TableClock& clock, const TableHead& head, double unitsPerSecond, double modified) {
    const double seconds = time / unitsPerSecond;
    switch (clock.origin) {
        case TableClock::Origin::Day: return seconds / kDay;
        case TableClock::Origin::Unix: return DateFromCivil({1970, 1, 1, 0, 0, 0, 0}) + seconds / kDay;
        case TableClock::Origin::Clock: return std::floor(head.start.value_or(modified)) + seconds / kDay;
        case TableClock::Origin::Unknown: break;
    }
    return head.start.value_or(modified) + (clock.step > 0.0 ? seconds / kDay : 0.0);
}

std::vector<Bilingual> Faults(const TableFaults& faults) {
    std::vector<Bilingual> remarks;
    if (faults.words > 0) {
        remarks.push_back(
            Say(faults.words == 1 ? u"%1 cell is no number, in line %2" : u"%1 cells are no numbers, first in line %2",
                u"не чисел в ячейках: %1, впервые в строке %2", {Count(faults.words), Count(faults.firstWord)}));
    }
    if (faults.lines > 0) {
        remarks.push_back(Say(faults.lines == 1 ? u"%1 line of another number of columns left out, line %2"
                                                : u"%1 lines of another number of columns left out, first line %2",
                              u"пропущено строк с другим числом столбцов: %1, первая — %2",
                              {Count(faults.lines), Count(faults.firstLine)}));
    }
    if (faults.cut) remarks.push_back(Say(u"the last line is cut", u"последняя строка обрезана"));
    if (faults.stopLine > 0) {
        remarks.push_back(faults.tooManyGaps
                              ? Say(u"too many gaps, read up to line %1",
                                    u"слишком много разрывов, прочитано до строки %1", {Count(faults.stopLine)})
                              : Say(u"too many faulty lines, read up to line %1",
                                    u"слишком много неверных строк, прочитано до строки %1", {Count(faults.stopLine)}));
    }
    return remarks;
}

}  // namespace

TableFacts FindTableFacts(const TableHead& head, const TableRows& rows, const ByteSource& source) {
    TableFacts facts;
    RateFinder finder(head, rows, facts.remarks);
    facts.rate = finder.Find();
    facts.channels = Channels(head);
    for (const TableStretch& stretch : rows.Timing().Stretches()) {
        // Where cells could not be kept, times of further rows are known.
        if (stretch.firstRow >= rows.Rows()) break;
        const double date = DateOf(stretch.first, head.clock, head, finder.UnitsPerSecond(), source.ModifiedTime());
        facts.stretches.push_back({stretch.firstRow, std::min(stretch.rows, rows.Rows() - stretch.firstRow), date});
    }
    facts.startTime = facts.stretches.front().startTime;
    if (!head.start && head.clock.origin == TableClock::Origin::Clock)
        facts.remarks.push_back(Say(u"date taken from the file's time", u"дата взята из времени файла"));
    if (!head.start && head.clock.origin == TableClock::Origin::Unknown) facts.remarks.push_back(FileTimeRemark());
    const auto leftOut = std::count(head.layout.isText.begin(), head.layout.isText.end(), true);
    if (leftOut > 0)
        facts.remarks.push_back(Say(leftOut == 1 ? u"%1 column of text left out" : u"%1 columns of text left out",
                                    u"пропущено столбцов с текстом: %1", {Count(static_cast<std::uint64_t>(leftOut))}));
    if (facts.stretches.size() > 1)
        facts.remarks.push_back(Say(u"%1 stretches", u"участков: %1", {Count(facts.stretches.size())}));
    if (rows.Timing().HasGoneBack()) facts.remarks.push_back(Say(u"times go back", u"время идёт назад"));
    for (Bilingual& remark : Faults(rows.Faults())) facts.remarks.push_back(std::move(remark));
    return facts;
}

}  // namespace quillon
