#include "spectrum/SpectrumPlot.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/Text.h"
#include "format/NumberText.h"

namespace quillon {

namespace {

/// Decibels below the highest level that a plot reaches down to at most.
constexpr double kMostRange = 140.0;
/// Parts of the range that are left free above and below the traces.
constexpr double kRoomAbove = 0.06;
constexpr double kRoomBelow = 0.03;
constexpr std::u16string_view kPerRootHertz = u"/\u221AHz";

double AmplitudeOf(double decibels) {
    return std::pow(10.0, decibels / 20.0);
}

/// To so many significant digits.
double RoundToDigits(double value, int digits) {
    const int places = digits - 1 - DecimalExponent(value);
    if (places >= 1) return RoundToPlaces(value, places);
    const double power = std::pow(10.0, -places);
    return std::nearbyint(value / power) * power;
}

}  // namespace

std::u16string MultipleText(int multiple) {
    return u'\u00D7' + Decimal(multiple);
}

SpectrumPlot::SpectrumPlot(const PlotRequest& request)
    : m_request(request), m_frequencies(0.0, 1.0, false, 0.0, 1.0), m_levels(0.0, 1.0, false, 0.0, 1.0) {
    if (!request.traces.empty()) m_group = GroupOf(request.traces.front().unit);
    MeasureLevels();
    PlaceAxes();
}

double SpectrumPlot::FactorOf(const PlotTrace& trace) const {
    const UnitGroup group = GroupOf(trace.unit);
    return group.name == m_group.name ? group.factor / m_group.factor : 1.0;
}

double SpectrumPlot::LevelOf(const PlotTrace& trace, double power) const {
    const double factor = FactorOf(trace);
    return m_request.scales.levels == LevelScale::Decibels ? DecibelsOf(power * factor * factor)
                                                           : std::sqrt(power) * factor;
}

void SpectrumPlot::MeasureLevels() {
    double least = std::numeric_limits<double>::infinity();
    double most = 0.0;
    for (const PlotTrace& trace : m_request.traces) {
        const PowerDensity& density = trace.density;
        m_mixed = m_mixed || GroupOf(trace.unit).name != m_group.name;
        if (density.power.size() < 4) continue;
        m_nyquist = std::max(m_nyquist, density.Frequency(density.power.size() - 1));
        m_binWidth = density.binWidth;
        const double factor = FactorOf(trace);
        // The mean is taken off, and the last bin is half as high: neither is to stretch the scale downwards.
        for (std::size_t bin = 1; bin + 1 < density.power.size(); ++bin) {
            const double power = density.power[bin] * factor * factor;
            if (power > 0.0) least = std::min(least, power);
            most = std::max(most, power);
        }
    }
    const double high = most > 0.0 ? DecibelsOf(most) : 0.0;
    double low = most > 0.0 ? std::max(DecibelsOf(least), high - kMostRange) : high - kMostRange;
    constexpr double leastRange = 10.0;
    low = std::min(low, high - leastRange);
    m_mostLevel = high + kRoomAbove * (high - low);
    m_leastLevel = low - kRoomBelow * (high - low);
    if (m_request.scales.levels == LevelScale::Decibels) return;
    if (m_request.scales.levels == LevelScale::Linear) {
        m_mostLevel = AmplitudeOf(high) * (1.0 + kRoomAbove);
        m_leastLevel = 0.0;
    } else {
        m_mostLevel = AmplitudeOf(m_mostLevel);
        m_leastLevel = AmplitudeOf(m_leastLevel);
    }
}

void SpectrumPlot::PlaceAxes() {
    const std::int32_t line = m_request.sizeOf(u"0").height;
    m_area.top = line + Scaled(8);
    m_area.bottom = std::max(m_request.height - line - Scaled(12), m_area.top + 1);
    m_levels = PlotAxis(m_leastLevel, m_mostLevel, m_request.scales.levels == LevelScale::Logarithmic, m_area.bottom,
                        m_area.top);
    const GroupUnit unit = LevelUnit();
    const std::vector<AxisTick> levels = m_levels.Ticks(2.2 * line, unit.factor, m_request.decimalSeparator);
    std::int32_t widest = m_request.sizeOf(u"-000").width;
    for (const AxisTick& tick : levels) widest = std::max(widest, m_request.sizeOf(tick.text).width);
    m_area.left = widest + Scaled(12);
    m_area.right = m_request.width - Scaled(14) - m_request.sizeOf(u"kHz").width;
    m_area.right = std::max(m_area.right, m_area.left + 1);
    const FrequencyBand band = ChooseBand();
    m_frequencies = PlotAxis(band.low, band.high, m_request.scales.logFrequency, m_area.left, m_area.right);
    AddFrequencies();
    AddLevels(levels, unit.text);
}

FrequencyBand SpectrumPlot::ChooseBand() {
    const double lowest = !m_request.scales.logFrequency ? 0.0 : m_binWidth > 0.0 ? m_binWidth : 1.0;
    const FrequencyBand all = m_all = {lowest, std::max(m_nyquist, lowest)};
    constexpr double leastBins = 4.0;
    if (!m_request.band || !(all.high - all.low > leastBins * m_binWidth)) return all;
    FrequencyBand band{std::clamp(m_request.band->low, all.low, all.high),
                       std::clamp(m_request.band->high, all.low, all.high)};
    if (band.high - band.low < leastBins * m_binWidth) {
        const double half = leastBins * m_binWidth / 2.0;
        const double middle = std::clamp((band.low + band.high) / 2.0, all.low + half, all.high - half);
        band = {middle - half, middle + half};
    }
    if (band.low > all.low || band.high < all.high) m_band = band;
    return band;
}

FrequencyBand SpectrumPlot::Between(double first, double last) const {
    return {m_frequencies.ValueAt(first), m_frequencies.ValueAt(last)};
}

FrequencyBand SpectrumPlot::Zoomed(double part, std::int32_t column) const {
    return Between(column - (column - m_area.left) * part, column + (m_area.right - column) * part);
}

FrequencyBand SpectrumPlot::Moved(double columns) const {
    const double left = m_frequencies.PlaceOf(m_all.low) - m_area.left;
    const double right = m_frequencies.PlaceOf(m_all.high) - m_area.right;
    const double moved = std::clamp(columns, std::min(left, 0.0), std::max(right, 0.0));
    return Between(m_area.left + moved, m_area.right + moved);
}

std::vector<AxisTick> SpectrumPlot::FrequencyTicks(double unit) const {
    // Figures of a narrow band may be longer than usual.
    double widest = m_request.sizeOf(u"00000").width;
    for (;;) {
        const double taken = widest;
        std::vector<AxisTick> ticks = m_frequencies.Ticks(taken + Scaled(16), unit, m_request.decimalSeparator);
        for (const AxisTick& tick : ticks) widest = std::max<double>(widest, m_request.sizeOf(tick.text).width);
        if (widest == taken) return ticks;
    }
}

void SpectrumPlot::AddFrequencies() {
    constexpr double fromKilohertz = 10000.0;
    const bool kilohertz = m_frequencies.High() >= fromKilohertz;
    const std::int32_t y = m_area.bottom + Scaled(7);
    for (const AxisTick& tick : FrequencyTicks(kilohertz ? 1000.0 : 1.0)) {
        const auto column = static_cast<std::int32_t>(std::nearbyint(tick.place));
        m_columns.push_back({column, !tick.text.empty()});
        if (tick.text.empty()) continue;
        m_texts.push_back({tick.text, column - m_request.sizeOf(tick.text).width / 2, y});
    }
    const std::int32_t above = m_area.bottom + Scaled(4) - m_request.sizeOf(u"Hz").height;
    m_texts.push_back({kilohertz ? u"kHz" : u"Hz", m_area.right + Scaled(8), above});
}

GroupUnit SpectrumPlot::LevelUnit() const {
    if (m_mixed || m_request.traces.empty()) return {};
    if (m_request.scales.levels == LevelScale::Decibels) return {m_request.traces.front().unit, 1.0};
    GroupUnit unit = UnitFor(m_group, m_mostLevel * m_group.factor);
    unit.factor /= m_group.factor;
    return unit;
}

void SpectrumPlot::AddLevels(const std::vector<AxisTick>& ticks, const std::u16string& unit) {
    const std::int32_t line = m_request.sizeOf(u"0").height;
    for (const AxisTick& tick : ticks) {
        const auto row = static_cast<std::int32_t>(std::nearbyint(tick.place));
        m_rows.push_back({row, !tick.text.empty()});
        if (tick.text.empty()) continue;
        m_texts.push_back({tick.text, m_area.left - Scaled(7) - m_request.sizeOf(tick.text).width, row - line / 2});
    }
    std::u16string caption = (unit.empty() ? u"1" : unit) + std::u16string(kPerRootHertz);
    if (m_request.scales.levels == LevelScale::Decibels)
        caption = (unit.empty() ? u"dB (" : u"dB (1 ") + caption + u')';
    m_texts.push_back({caption, Scaled(4), Scaled(2)});
}

std::pair<std::size_t, std::size_t> SpectrumPlot::BinsAt(std::size_t trace, std::int32_t column) const {
    const PowerDensity& density = m_request.traces[trace].density;
    const double last = static_cast<double>(density.power.size()) - 1.0;
    const auto bin = [&](double place) { return m_frequencies.ValueAt(place) / density.binWidth; };
    const double from = std::clamp(std::ceil(bin(column - 0.5)), 0.0, last);
    const double to = std::clamp(std::ceil(bin(column + 0.5)), 0.0, last + 1.0);
    if (to > from) return {static_cast<std::size_t>(from), static_cast<std::size_t>(to)};
    const auto nearest = static_cast<std::size_t>(std::clamp(std::nearbyint(bin(column)), 0.0, last));
    return {nearest, nearest + 1};
}

std::int32_t SpectrumPlot::RowOf(double level) const {
    // Far below is as good as just outside; -infinity is the level of nothing.
    const double row = m_levels.PlaceOf(std::max(level, m_leastLevel - (m_mostLevel - m_leastLevel)));
    return static_cast<std::int32_t>(std::nearbyint(std::clamp(row, -1e6, 1e6)));
}

std::vector<DevicePoint> SpectrumPlot::Line(std::size_t trace) const {
    std::vector<DevicePoint> points;
    const PlotTrace& drawn = m_request.traces[trace];
    const std::vector<double>& power = drawn.density.power;
    if (power.empty()) return points;
    // 0 Hz is left of a logarithmic axis. Of what lies outside the nearest bins are drawn, for the lines to them.
    const double before = std::floor(m_frequencies.Low() / drawn.density.binWidth);
    for (auto bin = static_cast<std::size_t>(std::max(before, m_request.scales.logFrequency ? 1.0 : 0.0));
         bin < power.size();) {
        if (!points.empty() && points.back().x > m_area.right) break;
        // As BinsAt divides them.
        auto column = static_cast<std::int32_t>(std::floor(m_frequencies.PlaceOf(drawn.density.Frequency(bin)) + 0.5));
        if (!points.empty()) column = std::max(column, points.back().x + 1);
        const std::size_t end = std::max(BinsAt(trace, column).second, bin + 1);
        const auto [low, high] = std::minmax_element(power.begin() + static_cast<std::ptrdiff_t>(bin),
                                                     power.begin() + static_cast<std::ptrdiff_t>(end));
        const auto& [first, second] = low < high ? std::pair(low, high) : std::pair(high, low);
        points.push_back({column, RowOf(LevelOf(drawn, *first))});
        if (first != second) points.push_back({column, RowOf(LevelOf(drawn, *second))});
        bin = end;
    }
    return points;
}

std::size_t SpectrumPlot::HighestIn(std::size_t trace, std::int32_t column) const {
    const auto [from, to] = BinsAt(trace, column);
    const auto begin = m_request.traces[trace].density.power.begin();
    return static_cast<std::size_t>(
        std::max_element(begin + static_cast<std::ptrdiff_t>(from), begin + static_cast<std::ptrdiff_t>(to)) - begin);
}

std::optional<std::size_t> SpectrumPlot::TraceNear(std::int32_t x, std::int32_t y) const {
    if (x < m_area.left || x > m_area.right || y < m_area.top || y > m_area.bottom) return std::nullopt;
    std::optional<std::size_t> nearest;
    std::int32_t distance = 0;
    for (std::size_t trace = 0; trace < m_request.traces.size(); ++trace) {
        const PlotTrace& drawn = m_request.traces[trace];
        if (drawn.density.power.empty()) continue;
        const std::int32_t away = std::abs(RowOf(LevelOf(drawn, drawn.density.power[HighestIn(trace, x)])) - y);
        if (nearest && away >= distance) continue;
        nearest = trace;
        distance = away;
    }
    return nearest;
}

std::u16string SpectrumPlot::Readout(std::int32_t x, std::int32_t y) const {
    const std::optional<std::size_t> trace = TraceNear(x, y);
    if (!trace) return {};
    const PlotTrace& read = m_request.traces[*trace];
    const std::size_t bin = HighestIn(*trace, x);
    return read.title + u": " + FrequencyText(read.density.Frequency(bin)) + u", " +
           LevelText(*trace, DecibelsOf(read.density.power[bin]));
}

std::u16string SpectrumPlot::FrequencyText(double hertz) const {
    // A digit beyond what the bins tell apart.
    const double step = m_binWidth > 0.0 ? m_binWidth / 10.0 : 1.0;
    return NumberText(RoundToPlaces(hertz, std::max(-DecimalExponent(step), 0)), m_request.decimalSeparator) + u" Hz";
}

std::u16string SpectrumPlot::LevelText(std::size_t trace, double decibels) const {
    const PlotTrace& told = m_request.traces[trace];
    if (m_request.scales.levels == LevelScale::Decibels) {
        if (!std::isfinite(decibels)) return u"-\u221E dB";
        const double factor = 20.0 * std::log10(FactorOf(told));
        return NumberText(RoundToPlaces(decibels + factor, 1), m_request.decimalSeparator) + u" dB";
    }
    constexpr int digits = 4;
    const UnitGroup group = GroupOf(told.unit);
    const double value = RoundToDigits(AmplitudeOf(decibels) * group.factor, digits);
    const std::u16string text = GroupValueText(group, value, m_request.decimalSeparator);
    return text + (group.name.empty() ? u" 1" : u"") + std::u16string(kPerRootHertz);
}

DevicePoint SpectrumPlot::PlaceOf(std::size_t trace, const SpectralPeak& peak) const {
    const double power = std::pow(10.0, peak.decibels / 10.0);
    return {static_cast<std::int32_t>(std::nearbyint(m_frequencies.PlaceOf(peak.frequency))),
            RowOf(LevelOf(m_request.traces[trace], power))};
}

std::optional<std::size_t> SpectrumPlot::PeakAt(std::size_t trace, std::span<const SpectralPeak> peaks, std::int32_t x,
                                                std::int32_t y) const {
    std::optional<std::size_t> found;
    std::int32_t nearest = Scaled(10);
    for (std::size_t at = 0; at < peaks.size(); ++at) {
        const DevicePoint place = PlaceOf(trace, peaks[at]);
        const std::int32_t away = std::max(std::abs(place.x - x), std::abs(place.y - y));
        if (away > nearest || (found && away == nearest) || !IsInside(place)) continue;
        found = at;
        nearest = away;
    }
    return found;
}

std::vector<HarmonicLine> SpectrumPlot::HarmonicLines(const Harmonics& harmonics) const {
    std::vector<HarmonicLine> lines;
    std::int32_t free = m_area.left;
    for (const Harmonic& harmonic : harmonics.list) {
        const DevicePoint place = PlaceOf(0, harmonic.peak);
        if (!IsInside(place)) continue;
        HarmonicLine line{{MultipleText(harmonic.multiple), place.x, m_area.top + 1}, m_area.top};
        const TextSize size = m_request.sizeOf(line.label.text);
        const std::int32_t end = place.x + size.width + Scaled(6);
        if (place.x < free) line.top = line.label.y + size.height + Scaled(1);
        if (place.x < free || end > m_area.right) {
            line.label.text.clear();
        } else {
            free = end;
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace quillon
