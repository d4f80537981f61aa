#include "view/TimeTicks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "base/DateTime.h"
#include "base/Text.h"
#include "view/ScaleLabels.h"

namespace quillon {

namespace {

constexpr std::int64_t kDay = 86400;

/// A distance between marks: count / parts units.
struct Step {
    std::int64_t count = 1;
    std::int64_t parts = 1;  ///< a power of ten
    [[nodiscard]] double Units() const { return static_cast<double>(count) / static_cast<double>(parts); }
    [[nodiscard]] bool IsMultipleOf(const Step& other) const {
        return count * other.parts % (other.count * parts) == 0;
    }
    /// Of steps that are multiples.
    [[nodiscard]] std::int64_t DividedBy(const Step& other) const {
        return count * other.parts / (other.count * parts);
    }
};

void AddDecades(std::int64_t first, std::int64_t last, std::vector<Step>& steps) {
    for (std::int64_t power = first; power <= last; power *= 10) {
        for (const std::int64_t count : {1, 2, 5}) steps.push_back({count * power, 1});
    }
}

std::vector<Step> Decimals(bool fractions) {
    std::vector<Step> steps;
    for (std::int64_t parts = 1000000000; fractions && parts > 1; parts /= 10) {
        for (const std::int64_t count : {1, 2, 5}) steps.push_back({count, parts});
    }
    AddDecades(1, 1000000000, steps);
    return steps;
}

std::vector<Step> Seconds() {
    std::vector<Step> steps = Decimals(true);
    std::erase_if(steps, [](const Step& step) { return step.parts == 1 && step.count >= 10; });
    for (const std::int64_t count :
         {10, 15, 20, 30, 60, 120, 300, 600, 900, 1200, 1800, 3600, 7200, 10800, 21600, 43200})
        steps.push_back({count, 1});
    std::vector<Step> days;
    AddDecades(1, 100000, days);
    for (const Step& step : days) steps.push_back({step.count * kDay, 1});
    return steps;
}

/// What the marks count, and how they are told.
class Scale {
  public:
    Scale(const ViewBlock& block, const FormatOptions& format) : m_block(block), m_format(format) {
        constexpr int minutes = 2;
        if (format.sampleIndexes || !(block.sampleRate > 0.0)) {
            m_kind = Kind::Indexes;
            m_start = 1.0;
            return;
        }
        m_samplesPerUnit = block.sampleRate;
        if (format.timeOfDay) {
            m_kind = Kind::TimeOfDay;
            m_start = AxisSeconds(block, 0.0, format);
        } else if (format.timeUnit == minutes) {
            m_kind = Kind::Minutes;
            m_samplesPerUnit *= 60.0;
        } else {
            constexpr double aMinute = 60.0;
            const bool isLong = block.sampleCount / block.sampleRate >= aMinute;
            m_kind = format.timeUnit == 1 || (format.timeUnit <= 0 && isLong) ? Kind::Clock : Kind::Number;
        }
    }
    [[nodiscard]] std::vector<Step> Steps() const {
        if (m_kind == Kind::Indexes) return Decimals(false);
        return m_kind == Kind::Minutes ? Decimals(true) : Seconds();
    }
    [[nodiscard]] double SamplesPerUnit() const { return m_samplesPerUnit; }
    /// Place in samples, from 0, of a number of units.
    [[nodiscard]] double PlaceOf(double units) const { return (units - m_start) * m_samplesPerUnit; }
    [[nodiscard]] double UnitsAt(double place) const { return m_start + place / m_samplesPerUnit; }
    /// The mark of `times` steps.
    [[nodiscard]] std::u16string Text(std::int64_t times, const Step& step) const {
        const std::int64_t count = times * step.count;
        const double units = static_cast<double>(count) / static_cast<double>(step.parts);
        switch (m_kind) {
            case Kind::Indexes:
            case Kind::Minutes: return NumberText(units, m_format.decimalSeparator);
            case Kind::Number: return FormatTimeNumber(units, step.Units(), m_format);
            case Kind::Clock: return ClockLabel(count, step.parts, true);
            default: break;
        }
        const std::int64_t day = kDay * step.parts;
        if (count % day == 0) return DateLabel(count / day);
        constexpr double aMinute = 60.0;
        return ClockLabel(count % day, step.parts, step.Units() < aMinute);
    }

  private:
    enum class Kind { Indexes, TimeOfDay, Clock, Minutes, Number };

    /// "0:05", "12:57:03.25": count / parts seconds. Exact, as neither is rounded.
    [[nodiscard]] std::u16string ClockLabel(std::int64_t count, std::int64_t parts, bool seconds) const {
        const auto twoDigits = [](std::int64_t number) {
            return (number < 10 ? u":0" : u":") + Decimal(static_cast<std::int32_t>(number));
        };
        const std::int64_t whole = count / parts;
        std::u16string text = Decimal(static_cast<std::int32_t>(whole / 3600)) + twoDigits(whole / 60 % 60);
        if (!seconds) return text;
        text += twoDigits(whole % 60);
        std::u16string decimals;
        for (std::int64_t rest = count % parts * 10; rest > 0; rest = rest % parts * 10)
            decimals += static_cast<char16_t>(u'0' + rest / parts);
        return decimals.empty() ? text : text + m_format.decimalSeparator + decimals;
    }
    /// Of the day that many days behind that of the block's start.
    [[nodiscard]] std::u16string DateLabel(std::int64_t days) const {
        constexpr std::size_t length = 10;
        const std::string date = Iso8601(std::floor(m_block.startTime) + static_cast<double>(days));
        return {date.begin(), date.begin() + static_cast<std::ptrdiff_t>(std::min(length, date.size()))};
    }

    const ViewBlock& m_block;
    const FormatOptions& m_format;
    Kind m_kind = Kind::Indexes;
    double m_samplesPerUnit = 1.0;
    double m_start = 0.0;  ///< units at the block's first sample
};

/// The steps of major and minor marks.
struct Chosen {
    Step major;
    Step minor;
};

std::optional<Chosen> Choose(const Scale& scale, const TimeAxis& axis, int dpi) {
    const double density = dpi / 96.0;
    const double perUnit = scale.SamplesPerUnit() / axis.Grid().SamplesPerColumn();
    const double end = scale.UnitsAt(axis.SampleCount());
    const std::vector<Step> steps = scale.Steps();
    const auto pixels = [&](const Step& step) { return step.Units() * perUnit; };
    const auto least = [&](const Step& step) {
        constexpr double distance = 60.0;
        constexpr double letter = 6.0;
        // The text of the last mark that is no whole number of larger ones is as long as any.
        const auto last = static_cast<std::int64_t>(end / step.Units());
        const auto letters =
            std::max(scale.Text(last, step).size(), scale.Text(std::max<std::int64_t>(last - 1, 0), step).size());
        return density * std::max(distance, letter * static_cast<double>(letters) + 10.0);
    };
    auto major = std::find_if(steps.begin(), steps.end(), [&](const Step& step) {
        return pixels(step) >= 20.0 * density && pixels(step) >= least(step);
    });
    if (major == steps.end()) return std::nullopt;
    // From 2 to 5 the distance grows more than from 60 to 140.
    constexpr double most = 140.0;
    constexpr double almost = 0.93;
    if (major != steps.begin() && pixels(*major) > most * density &&
        pixels(*(major - 1)) >= almost * least(*(major - 1)))
        --major;
    constexpr double leastMinor = 7.0;
    const auto minor = std::find_if(steps.begin(), major, [&](const Step& step) {
        return pixels(step) >= leastMinor * density && major->IsMultipleOf(step);
    });
    return Chosen{*major, *minor};
}

}  // namespace

std::vector<TimeTick> TimeTicks(const TimeAxis& axis, const ViewBlock& block, const FormatOptions& format, int dpi) {
    std::vector<TimeTick> ticks;
    if (block.sampleCount <= 0) return ticks;
    const Scale scale(block, format);
    const std::optional<Chosen> chosen = Choose(scale, axis, dpi);
    if (!chosen) return ticks;
    const ColumnGrid& grid = axis.Grid();
    const std::int64_t ratio = chosen->major.DividedBy(chosen->minor);
    const double left = std::max(static_cast<double>(axis.FirstColumn()) - 1.0, 0.0) * grid.SamplesPerColumn();
    auto times = static_cast<std::int64_t>(std::floor(scale.UnitsAt(left) / chosen->minor.Units()));
    for (;; ++times) {
        const double units =
            static_cast<double>(times * chosen->minor.count) / static_cast<double>(chosen->minor.parts);
        const double place = scale.PlaceOf(units);
        constexpr double tolerance = -1e-6;
        if (place < tolerance) continue;
        const std::int64_t column = grid.ColumnOfPlace(std::max(place, 0.0)) - axis.FirstColumn();
        if (column >= axis.Width()) break;
        if (column < 0) continue;
        const bool major = times % ratio == 0;
        ticks.push_back({static_cast<std::int32_t>(column),
                         major ? scale.Text(times / ratio, chosen->major) : std::u16string(), major});
    }
    return ticks;
}

}  // namespace quillon
