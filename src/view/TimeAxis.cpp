#include "view/TimeAxis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "base/Rounding.h"

namespace quillon {

std::int32_t TimeAxis::TableEntry(int index) {
    constexpr std::array<std::int32_t, 3> steps{1, 2, 5};
    std::int32_t entry = steps[static_cast<std::size_t>(index % 3)];
    for (int power = index / 3; power > 0; --power) entry *= 10;
    return entry;
}

void TimeAxis::SetBlock(std::int32_t sampleCount, double sampleRate, bool free, std::int32_t fastest) {
    m_free = free;
    m_left.reset();
    m_samples = std::max(sampleCount, 0);
    m_fastest = std::max(fastest, m_samples);
    m_rate = sampleRate > 0.0 ? sampleRate : 1.0;
    // A zoom coarser than the menu's was chosen to fit a longer block.
    m_zoom = std::min(m_zoom, kMenuZoomCount - 1);
    m_first = 0;
    if (!m_free) return SetZoom(m_zoom);
    if (m_chosen == 0.0) m_chosen = kFirstPage;
    SetPage(PageWithinLimits(m_chosen * m_rate));
}

void TimeAxis::SwitchBlock(std::int32_t sampleCount, double sampleRate, std::int32_t fastest) {
    if (!m_free || m_samples == 0 || sampleCount < 1) return SetBlock(sampleCount, sampleRate, m_free, fastest);
    const ColumnGrid page = ColumnGrid(m_page.samples, m_page.parts).Scaled(sampleCount, m_samples);
    const std::int32_t first = m_first;
    m_samples = sampleCount;
    m_fastest = std::max(fastest, m_samples);
    m_rate = sampleRate > 0.0 ? sampleRate : 1.0;
    // Terms that no ratio of sample rates makes are rounded, so that those of the columns do not overflow.
    constexpr std::int64_t most = std::int64_t{1} << 44;
    SetPage(page.Divisor() < most ? PageSamples{page.Dividend(), page.Divisor()} : PageOf(page.SamplesPerColumn()));
    MoveTo(first);
}

void TimeAxis::SetFastest(std::int32_t fastest) {
    m_fastest = std::max(fastest, m_samples);
    // The page may be shorter than it can be now.
    if (const PageSamples least = PageWithinLimits(0.0); m_free && m_page.Count() < least.Count())
        SetPageAbout(least, 0, 0);
}

void TimeAxis::SetWidth(std::int32_t pixels) {
    const std::int64_t before = std::exchange(m_width, std::max(pixels, 1));
    if (!m_free || before == m_width) return;
    if (m_takenOver) return TakeOver();
    // A page that begins at a whole number of pages still does.
    const std::int64_t first = (m_first * std::int64_t{m_width} * 2 + before) / (2 * before);
    SetPage(m_page);
    MoveTo(first);
}

void TimeAxis::SetFree(bool free) {
    if (free == m_free) return;
    if (free) {
        m_free = true;
        if (!TakeBack()) TakeOver();
        return;
    }
    const Place before = GetPlace();
    m_free = false;
    const double sample = MiddleSample();
    SetZoom(NearestZoom());
    CentreOn(sample);
    m_left.reset();
    if (!m_takenOver) m_left = {before, GetPlace()};
}

bool TimeAxis::TakeBack() {
    if (!m_left || m_left->table.zoom != m_zoom || m_left->table.chosen != m_chosen) return false;
    const bool scrolled = m_left->table.first != m_first;
    const double sample = MiddleSample();
    const Place left = m_left->free;
    Restore(left);
    if (scrolled) CentreOn(sample);
    return true;
}

double TimeAxis::MiddleSample() const {
    return (static_cast<double>(m_first) + m_width / 2.0) * m_grid.SamplesPerColumn();
}

void TimeAxis::CentreOn(double sample) {
    MoveTo(std::llround(sample / m_grid.SamplesPerColumn() - m_width / 2.0));
}

void TimeAxis::TakeOver() {
    SetPage({std::int64_t{SamplesPerPixel()} * m_width, 1});
    m_takenOver = true;
    if (m_samples > 0) m_chosen = PageSeconds();
}

int TimeAxis::NearestZoom() const {
    const double exact = std::log(m_grid.SamplesPerColumn());
    int index = 0;
    const auto distance = [&](int zoom) { return std::fabs(std::log(TableEntry(zoom)) - exact); };
    while (index < kZoomCount - 1 && distance(index + 1) < distance(index)) ++index;
    return index;
}

int TimeAxis::ZoomIndex() const {
    if (!m_free) return m_zoom;
    const int nearest = NearestZoom();
    return m_grid == ColumnGrid(TableEntry(nearest)) ? nearest : -1;
}

SampleSpan TimeAxis::Visible() const {
    return m_grid.Samples(m_first, m_width, m_samples);
}

double TimeAxis::PageSeconds() const {
    return m_grid.SamplesPerColumn() * m_width / m_rate;
}

bool TimeAxis::CanZoom(bool in) const {
    if (!m_free) return in ? m_zoom > 0 : m_zoom < kMenuZoomCount - 1;
    const double page = m_page.Count();
    return in ? PageWithinLimits(0.0).Count() < page : page < m_samples;
}

double TimeAxis::LeastPage() const {
    constexpr std::int64_t mostColumns = std::numeric_limits<std::int32_t>::max();
    const std::int64_t columns = std::int64_t{std::max(m_fastest, 1)} * m_width;
    const std::int64_t atLeast = (columns + mostColumns - 1) / mostColumns;
    return static_cast<double>(atLeast) * ShareOfFastest();
}

double TimeAxis::ShareOfFastest() const {
    return static_cast<double>(std::max(m_samples, 1)) / static_cast<double>(std::max(m_fastest, 1));
}

PageSamples TimeAxis::PageWithinLimits(double samples) const {
    const std::int32_t whole = std::max(m_samples, 1);
    const double least = std::max(static_cast<double>(m_width) / kMostColumnsPerSample * ShareOfFastest(), LeastPage());
    if (samples >= whole || least >= whole) return {whole, 1};
    return PageOf(std::max(samples, least));
}

void TimeAxis::SetGrid(const ColumnGrid& grid) {
    m_grid = grid;
    m_length = static_cast<std::int32_t>(grid.ColumnCount(m_samples));
}

void TimeAxis::SetZoom(int index) {
    m_zoom = index;
    SetGrid(TableEntry(index));
}

void TimeAxis::SetPage(const PageSamples& page) {
    m_takenOver = false;
    m_page = page;
    // A graph may have grown so wide that its strip would be too long.
    if (page.Count() < LeastPage()) m_page = PageOf(LeastPage());
    SetGrid({m_page.samples, m_page.parts * m_width});
}

bool TimeAxis::SelectZoom(int index) {
    if (m_free) return SelectZoomAbout(index, m_width / 2);
    if (index == m_zoom || index < 0 || index >= kZoomCount) return false;
    const auto ratio = static_cast<float>(SamplesPerPixel()) / static_cast<float>(TableEntry(index));
    const double middle = m_first + m_width / 2.0;
    const bool sampleInMiddle = middle < m_length;
    const double first = std::nearbyint(ratio * middle - m_width / 2.0);
    SetZoom(index);
    // If the middle of the graph showed no sample, there is none to keep in place; clamp the view to the end of the
    // strip.
    const std::int32_t highest = sampleInMiddle ? m_length : std::max(m_length - m_width, 0);
    m_first = static_cast<std::int32_t>(std::clamp(first, 0.0, static_cast<double>(highest)));
    return true;
}

bool TimeAxis::SelectZoomAbout(int index, std::int32_t column) {
    if (index == ZoomIndex() || index < 0 || index >= kZoomCount) return false;
    if (m_free) {
        const PageSamples page{std::int64_t{TableEntry(index)} * m_width, 1};
        m_chosen = page.Count() / m_rate;
        return SetPageAbout(page, column, 0);
    }
    const std::int64_t sample = (std::int64_t{m_first} + column) * SamplesPerPixel();
    const bool sampleThere = sample < m_samples;
    SetZoom(index);
    const std::int64_t first = sample / SamplesPerPixel() - column;
    const std::int32_t highest = sampleThere ? m_length : std::max(m_length - m_width, 0);
    m_first = static_cast<std::int32_t>(std::clamp<std::int64_t>(first, 0, highest));
    return true;
}

bool TimeAxis::SetPageAbout(const PageSamples& page, std::int32_t column, std::int32_t kept) {
    if (page == m_page) return false;
    if (kept > 0) column = ColumnOf(kept - 1);
    const std::int64_t under = std::int64_t{m_first} + column;
    // The middle of a column, so that it is found again from every part of it that becomes a column.
    const double place = (static_cast<double>(under) + 0.5) * m_grid.SamplesPerColumn();
    const std::int64_t sample = kept > 0                    ? kept - 1
                                : m_grid.ShowsEverySample() ? m_grid.FirstSample(under)
                                                            : static_cast<std::int64_t>(std::floor(place));
    SetPage(page);
    auto target = static_cast<std::int64_t>(std::floor(place / m_grid.SamplesPerColumn()));
    if (m_grid.ShowsEverySample()) target = std::clamp(target, m_grid.FirstColumn(sample), m_grid.LastColumn(sample));
    if (kept > 0) target = m_grid.FirstColumn(sample);
    const std::int32_t highest = sample < m_samples ? m_length : std::max(m_length - m_width, 0);
    m_first = static_cast<std::int32_t>(std::clamp<std::int64_t>(target - column, 0, highest));
    // Nothing beside a block that is shown whole.
    if (m_length <= m_width) m_first = 0;
    return true;
}

bool TimeAxis::ZoomAbout(int steps, std::int32_t column, std::int32_t kept) {
    if (m_samples == 0) return false;
    double seconds = PageSeconds();
    for (int step = steps; step != 0; step += step > 0 ? -1 : 1) seconds = NextPage(seconds, step < 0);
    // A page beyond the block, from another axis, is not made shorter by zooming out.
    if (steps < 0 && m_page.Count() >= m_samples) return false;
    return SelectPage(seconds, column, kept);
}

bool TimeAxis::SelectPage(double seconds, std::int32_t column, std::int32_t kept) {
    if (!(seconds > 0.0)) return false;
    m_chosen = seconds;
    if (m_samples == 0 || !m_free) return false;
    return SetPageAbout(PageWithinLimits(seconds * m_rate), column, kept);
}

void TimeAxis::ShowSamples(const SampleSpan& samples) {
    if (m_free) return FillWith(samples);
    int index = 0;
    const auto columns = [&] {
        const std::int32_t perPixel = TableEntry(index);
        return (samples.End() - 1) / perPixel - samples.first / perPixel + 1;
    };
    while (index < kZoomCount - 1 && columns() > m_width) ++index;
    SetZoom(index);
    const std::int32_t left = samples.first / SamplesPerPixel();
    m_first = std::clamp(left - (m_width - columns()) / 2, 0, m_length);
}

void TimeAxis::FillWith(const SampleSpan& samples) {
    const auto columns = [&] { return m_grid.LastColumn(samples.End() - 1) - m_grid.FirstColumn(samples.first) + 1; };
    SetPage(PageWithinLimits(samples.count));
    // Samples that begin within a column need one more.
    if (columns() > m_width && m_width > 1)
        SetPage(PageWithinLimits(samples.count + std::ceil(samples.count / (m_width - 1.0))));
    MoveTo(m_grid.FirstColumn(samples.first) - std::max<std::int64_t>(m_width - columns(), 0) / 2);
}

TimeAxis::Place TimeAxis::GetPlace() const {
    if (!m_free) return {.zoom = m_zoom, .chosen = m_chosen, .first = m_first};
    return {.free = true, .zoom = m_zoom, .page = m_page, .chosen = m_chosen, .first = m_first, .width = m_width};
}

void TimeAxis::Restore(const Place& place) {
    m_left.reset();
    m_free = place.free;
    m_chosen = place.chosen;
    if (!m_free) return Restore(place.zoom, place.first);
    m_zoom = place.zoom;
    SetPage(place.page);
    const std::int64_t width = std::max(place.width, 1);
    MoveTo((std::int64_t{place.first} * m_width * 2 + width) / (2 * width));
}

void TimeAxis::Restore(int zoom, std::int32_t firstColumn) {
    SetZoom(std::clamp(zoom, 0, kZoomCount - 1));
    m_first = std::clamp(firstColumn, 0, m_length);
}

std::int32_t TimeAxis::ShiftTo(std::int32_t sample) const {
    const std::int64_t first = m_grid.FirstColumn(sample - 1) - m_width / 2;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(first, 0, std::max(m_length - m_width, 0)) - m_first);
}

bool TimeAxis::MoveTo(std::int64_t column) {
    const auto target = static_cast<std::int32_t>(std::clamp<std::int64_t>(column, 0, m_length));
    if (target == m_first) return false;
    m_first = target;
    return true;
}

std::int32_t TimeAxis::ScrollBy(std::int32_t shift) {
    if (!CanScroll()) return 0;
    const std::int32_t old = m_first;
    MoveTo(std::int64_t{m_first} + shift);
    return m_first - old;
}

std::int32_t TimeAxis::PageShift(int command) const {
    const std::int32_t page = m_free ? m_width : m_width - m_width % kDivision;
    // Pages of a free axis stay those that paging began with: none is left for an end of the strip.
    const std::int32_t pagesLeft = m_free ? std::max(m_length - 1 - m_first, 0) / page : 0;
    if (m_free && command == 2) return pagesLeft > 0 ? page : 0;
    if (m_free && command == 3) return pagesLeft * page;
    switch (command) {
        case 0: return -m_first;
        case 1: return -page;
        case 2: return page;
        default: return m_length - m_first;
    }
}

std::int32_t TimeAxis::ScrollValue() const {
    if (LastScrolled() == 0) return 0;
    const float share = std::min(static_cast<float>(m_first) / static_cast<float>(LastScrolled()), 1.0F);
    return RoundHalfEven<std::int16_t>(static_cast<double>(share) * kScrollMax);
}

bool TimeAxis::SetScrollValue(std::int32_t value) {
    return MoveTo(RoundHalfEven(static_cast<double>(LastScrolled()) * std::clamp(value, 0, kScrollMax) / kScrollMax));
}

std::int32_t TimeAxis::LastScrolled() const {
    return m_free ? std::max(m_length - m_width, 0) : m_length;
}

std::int32_t TimeAxis::ScrollPage() const {
    if (m_length <= m_width) return kScrollMax;
    const std::int32_t whole = m_free ? m_length - m_width : m_length;
    const double most = std::int64_t{kScrollMax} * 64;
    return std::max(RoundHalfEven(std::min(static_cast<double>(m_width) / whole * kScrollMax, most)), 1);
}

}  // namespace quillon
