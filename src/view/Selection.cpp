#include "view/Selection.h"

namespace quillon {

std::int32_t SampleUnder(const TimeAxis& axis, std::int32_t column) {
    const std::int64_t sample = axis.Grid().FirstSample(std::int64_t{axis.FirstColumn()} + column) + 1;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(sample, 1, std::max(axis.SampleCount(), 1)));
}

double PlaceUnder(const TimeAxis& axis, std::int32_t column) {
    const double place =
        static_cast<double>(std::int64_t{axis.FirstColumn()} + column) * axis.Grid().SamplesPerColumn();
    return std::clamp(place, 0.0, std::max(static_cast<double>(axis.SampleCount()), 0.0));
}

std::optional<ColumnBand> BandOf(const TimeAxis& axis, const SampleSpan& samples) {
    const std::int32_t left = axis.ColumnOf(samples.first);
    const std::int32_t right = axis.LastColumnOf(samples.End() - 1);
    if (right < 0 || left >= axis.Width()) return std::nullopt;
    return ColumnBand{std::max(left, 0), std::min(right, axis.Width() - 1)};
}

}  // namespace quillon
