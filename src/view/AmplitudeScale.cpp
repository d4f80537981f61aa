#include "view/AmplitudeScale.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quillon {

namespace {

std::int64_t Rows(double value) {
    constexpr auto farthest = static_cast<double>(AmplitudeScale::kFarthest);
    return static_cast<std::int64_t>(std::nearbyint(std::clamp(value, -farthest, farthest)));
}

}  // namespace

double AmplitudeScale::TableEntry(int index) {
    constexpr std::array<std::int32_t, kScaleCount> thousandths{
        1000000, 500000, 200000, 100000, 50000, 20000, 10000, 5000, 2000, 1000, 500, 200, 100, 50, 20, 10, 5, 2, 1};
    return thousandths[static_cast<std::size_t>(index)] / 1000.0;
}

void AmplitudeScale::SetGraph(std::int32_t height, std::int32_t centreLine) {
    m_height = height;
    m_centreLine = centreLine;
}

void AmplitudeScale::ZoomY(int step) {
    SelectScale(m_index + step);
}

void AmplitudeScale::SelectScale(int index) {
    const double value = UnitsPerDivision() * static_cast<double>(m_shift) / kDivision;
    m_index = std::clamp(index, 0, kScaleCount - 1);
    m_shift = Rows(value / UnitsPerDivision() * kDivision);
}

void AmplitudeScale::MoveBaseLine(std::int64_t rows) {
    m_shift = std::clamp(m_shift + std::clamp(rows, -kFarthest, kFarthest), -kFarthest, kFarthest);
}

void AmplitudeScale::FindData(const std::optional<ValueRange>& range) {
    if (!range || !(range->maximum > range->minimum)) {
        m_shift = 0;
        return;
    }
    const double span = static_cast<double>(range->maximum) - static_cast<double>(range->minimum);
    const int divisions = (m_height - 2) / kDivision;
    int index = kScaleCount - 1;
    while (index > 0 && TableEntry(index) * divisions < span) --index;
    m_index = index;
    const double middle = (static_cast<double>(range->maximum) + static_cast<double>(range->minimum)) / 2.0;
    m_shift = Rows(middle * kDivision / UnitsPerDivision());
    m_shift = Rows(m_height / 2.0 - m_centreLine + static_cast<double>(m_shift));
}

bool AmplitudeScale::Shows(const ValueRange& range) const {
    const double leastRows = m_height / 8.0;
    constexpr double leastShare = 0.8;
    const double rowsPerUnit = kDivision / UnitsPerDivision();
    const double top = static_cast<double>(ZeroRow()) - static_cast<double>(range.maximum) * rowsPerUnit;
    const double bottom = static_cast<double>(ZeroRow()) - static_cast<double>(range.minimum) * rowsPerUnit;
    const double inside = std::min(bottom, static_cast<double>(m_height)) - std::max(top, 0.0);
    return bottom - top >= leastRows && inside >= leastShare * (bottom - top);
}

}  // namespace quillon
