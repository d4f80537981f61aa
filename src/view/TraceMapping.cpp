#include "view/TraceMapping.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/Rounding.h"
#include "view/AmplitudeScale.h"

namespace quillon {

namespace {

/// Both extents stay within 16 bits, which is what the mapping mode guarantees on every system.
constexpr std::int32_t kExtent = 32000;
constexpr std::int32_t kOriginLimit = 32768;
/// Offsets farther than this are out of sight at any zoom and would overflow when rows are added up.
constexpr double kFarthest = 1 << 28;

std::int32_t Sign(double value) {
    return value < 0.0 ? -1 : 1;
}

struct Extents {
    std::int32_t logical;
    std::int32_t device;
    float factor;
};

/// `factor` is in codes per pixel and not 0.
Extents ChooseExtents(float factor) {
    const double exact = static_cast<double>(factor);
    if (std::fabs(exact) <= 1.0) {
        const std::int32_t logical = RoundHalfEven(kExtent * exact);
        if (logical != 0) return {logical, kExtent, factor};
        return {Sign(exact), kExtent, static_cast<float>(Sign(exact)) / static_cast<float>(kExtent)};
    }
    const std::int32_t device = RoundHalfEven(kExtent / exact);
    if (device != 0) return {kExtent, device, factor};
    return {kExtent, Sign(exact), 32768.0F};
}

/// Moves the device origin into 16 bits by whole extents, which the logical origin takes back.
void Fold(const Extents& extents, std::int32_t zeroRow, std::int32_t offset, TraceMapping& mapping) {
    if (std::abs(zeroRow + offset) >= kOriginLimit && offset != 0 && (zeroRow < 0) != (offset < 0)) {
        zeroRow += offset;
        offset = 0;
    }
    const std::int32_t row = zeroRow + offset;  // both within 2^30
    if (std::abs(row) >= kOriginLimit) {
        const std::int32_t step = std::abs(extents.device);
        const std::int32_t steps = (std::abs(row) - kOriginLimit) / step + 1;
        zeroRow -= Sign(row) * steps * step;
        // As far as the number goes: beyond it the trace lies outside any graph.
        constexpr std::int64_t limit = std::numeric_limits<std::int32_t>::max();
        const std::int64_t origin = std::int64_t{Sign(row) * Sign(extents.device)} * steps * extents.logical;
        mapping.windowOriginY = static_cast<std::int32_t>(std::clamp(origin, -limit, limit));
    }
    mapping.viewportOriginY = zeroRow + offset;
}

}  // namespace

TraceMapping MapTrace(const TraceGeometry& geometry, float invScale, float baseLine) {
    constexpr float division = AmplitudeScale::kDivision;
    const float zoom = geometry.unitsPerDivision;
    float factor = geometry.rawCodes ? zoom * AmplitudeScale::kCodesPerUnit / division : zoom * invScale / division;
    double offset = geometry.rawCodes ? 0.0 : std::nearbyint(-static_cast<double>(division * baseLine / zoom));
    if (!std::isfinite(offset)) offset = 0.0;
    offset = std::clamp(offset, -kFarthest, kFarthest);

    TraceMapping mapping;
    mapping.windowExtentX = geometry.samplesPerPixel == 1 ? 1 : 2;
    mapping.viewportOriginX = geometry.leftMargin;
    mapping.flat = !std::isfinite(factor) || factor == 0.0F;
    if (mapping.flat) factor = 1.0F;
    const Extents extents = ChooseExtents(factor);
    mapping.flat = mapping.flat || std::fabs(extents.factor) >= static_cast<float>(kExtent);
    mapping.windowExtentY = -extents.logical;
    mapping.viewportExtentY = extents.device;
    if (geometry.foldOrigin) {
        Fold(extents, geometry.zeroRow, static_cast<std::int32_t>(offset), mapping);
    } else {
        mapping.viewportOriginY = geometry.zeroRow + static_cast<std::int32_t>(offset);
    }
    return mapping;
}

}  // namespace quillon
