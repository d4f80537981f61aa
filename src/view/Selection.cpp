#include "view/Selection.h"

namespace quillon {

std::int32_t SampleUnder(const TimeAxis& axis, std::int32_t column) {
    const std::int64_t sample = axis.Grid().FirstSample(std::int64_t{axis.FirstColumn()} + column) + 1;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(sample, 1, std::max(axis.SampleCount(), 1)));
}

std::int32_t SampleNear(const TimeAxis& axis, std::int32_t column) {
    const std::int32_t sample = SampleUnder(axis, column);
    if (!axis.Grid().ShowsEverySample() || sample >= axis.SampleCount()) return sample;
    return axis.ColumnOf(sample) - column < column - axis.ColumnOf(sample - 1) ? sample + 1 : sample;
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

std::optional<ColumnBand> PointBand(const TimeAxis& axis, std::int32_t sample) {
    const std::int32_t column = axis.ColumnOf(sample - 1);
    if (!axis.Grid().ShowsEverySample()) return BandOf(axis, {sample - 1, 1});
    if (column < 0 || column >= axis.Width()) return std::nullopt;
    return ColumnBand{column, column};
}

}  // namespace quillon
