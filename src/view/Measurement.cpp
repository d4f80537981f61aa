#include "view/Measurement.h"

#include <algorithm>
#include <cmath>

namespace quillon {

namespace {

std::int32_t RowIn(const Lane& lane, double value) {
    return static_cast<std::int32_t>(
        std::nearbyint(std::clamp(lane.RowOf(value), static_cast<double>(lane.top), lane.End() - 1.0)));
}

}  // namespace

std::optional<Measurement> MeasurementOf(const WaveformView& view, const ReadoutSource& source, std::int32_t sample,
                                         std::optional<double> place) {
    if (view.Pinned() == 0) return std::nullopt;
    Measurement measurement;
    measurement.pinned = view.Axis().ColumnOf(view.Pinned() - 1);
    if (sample == 0) return measurement;
    measurement.other = view.Axis().ColumnOf(sample - 1);
    measurement.time = MeasuredTime(source, view.Pinned(), sample);
    if (!view.UsesLanes()) return measurement;
    // Lanes of raw codes count in thousands, as the table of their scales does.
    const double unit = source.rawCodes ? static_cast<double>(AmplitudeScale::kCodesPerUnit) : 1.0;
    const std::vector<MeasuredSignal> signals = MeasuredSignals(source, view.Pinned(), sample, place);
    for (const Lane& lane : view.GetLanes()) {
        if (!lane.single || lane.channels.empty()) continue;
        const auto found = std::find_if(signals.begin(), signals.end(), [&](const MeasuredSignal& signal) {
            return signal.signal == lane.channels.front();
        });
        if (found == signals.end()) continue;
        measurement.lanes.push_back(
            {lane.top, lane.End(), RowIn(lane, found->pinned / unit), RowIn(lane, found->value / unit), found->change});
    }
    return measurement;
}

}  // namespace quillon
