#include "view/TraceMapping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "base/Rounding.h"
#include "view/AmplitudeScale.h"

namespace quillon {

namespace {

/// Both extents stay within 16 bits, which is what the mapping mode guarantees on every system.
constexpr std::int32_t kExtent = 32000;
constexpr std::int32_t kOriginLimit = 32768;
/// Origins farther away than this are off screen at any zoom, and adding codes to them would overflow.
constexpr std::int64_t kFarthestRow = 1 << 28;

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

/// Moves the device origin into 16 bits by whole extents and compensates in the logical origin.
void Fold(const Extents& extents, std::int64_t origin, TraceMapping& mapping) {
    if (std::abs(origin) >= kOriginLimit) {
        const std::int64_t sign = origin < 0 ? -1 : 1;
        const std::int64_t step = std::abs(extents.device);
        const std::int64_t steps = (std::abs(origin) - kOriginLimit) / step + 1;
        origin -= sign * steps * step;
        // Clamped to the type's range: past it the trace is outside any graph.
        constexpr std::int64_t limit = 1 << 30;
        const std::int64_t direction = sign * Sign(extents.device);
        const std::int64_t logical = direction * steps * extents.logical;
        mapping.windowOriginY = static_cast<std::int32_t>(std::clamp(logical, -limit, limit));
    }
    mapping.viewportOriginY = static_cast<std::int32_t>(origin);
}

/// Whether rounding the extents to integers puts the code in the middle of the graph (`middleCode`, counted from the
/// base line) at the wrong row.
bool RowErrorVisible(const Extents& extents, double rowsPerCode, double middleCode) {
    const double taken = static_cast<double>(extents.device) / extents.logical;
    return std::fabs(middleCode * (taken - rowsPerCode)) >= 0.5;
}

/// dividend / divisor to the nearest whole number, halves up; the divisor is above 0, the dividend below 2^51.
std::int64_t RoundedQuotient(std::int64_t dividend, std::int64_t divisor) {
    // A division of doubles is several times faster than one of 64-bit numbers and, as both parts are whole and below
    // 2^53, never rounds up to a whole number that it does not reach.
    const double quotient = static_cast<double>(2 * dividend + divisor) / static_cast<double>(2 * divisor);
    const auto whole = static_cast<std::int64_t>(quotient);
    return static_cast<double>(whole) > quotient ? whole - 1 : whole;
}

}  // namespace

void ToPixels(const TraceMapping& mapping, std::span<const TracePoint> points, std::vector<DevicePoint>& pixels) {
    pixels.resize(points.size());
    const std::int64_t sign = mapping.windowExtentY < 0 ? -1 : 1;
    const std::int64_t extent = sign * mapping.viewportExtentY;
    const std::int64_t divisor = sign * mapping.windowExtentY;
    // Clamped rows are off screen at any zoom, and lines between two such points fit into 32 bits.
    constexpr std::int64_t farthest = 1 << 30;
    for (std::size_t at = 0; at < points.size(); ++at) {
        const TracePoint& point = points[at];
        const std::int64_t code = std::int64_t{point.y} - mapping.windowOriginY;
        const std::int32_t column = mapping.windowExtentX == 1 ? point.x : (point.x + 1) >> 1;
        const std::int64_t row = mapping.viewportOriginY + RoundedQuotient(code * extent, divisor);
        pixels[at] = {column, static_cast<std::int32_t>(std::clamp(row, -farthest, farthest))};
    }
}

void JoinColumns(std::vector<DevicePoint>& pixels, std::int32_t from, std::int32_t to) {
    const auto isFar = [](const DevicePoint& a, const DevicePoint& b) { return b.x - a.x > 1; };
    if (std::adjacent_find(pixels.begin(), pixels.end(), isFar) == pixels.end()) return;
    std::vector<DevicePoint> joined;
    for (const DevicePoint& end : pixels) {
        const DevicePoint start = joined.empty() ? end : joined.back();
        const std::int64_t columns = std::int64_t{end.x} - start.x;
        const std::int64_t rise = std::int64_t{end.y} - start.y;
        const std::int64_t first = std::max<std::int64_t>(1, std::int64_t{from} - 1 - start.x);
        const std::int64_t stop = std::min(columns, std::int64_t{to} + 1 - start.x);
        for (std::int64_t column = first; column < stop; ++column) {
            // To the nearest row.
            const std::int64_t scaled = 2 * rise * column + columns;
            const std::int64_t up = scaled / (2 * columns) - (scaled % (2 * columns) < 0 ? 1 : 0);
            joined.push_back({static_cast<std::int32_t>(start.x + column), static_cast<std::int32_t>(start.y + up)});
        }
        joined.push_back(end);
    }
    pixels = std::move(joined);
}

void FlatTrace(const TraceMapping& mapping, std::int32_t count, std::int32_t samplesPerPixel,
               std::vector<DevicePoint>& pixels) {
    const auto end =
        samplesPerPixel == 1 ? count : static_cast<std::int32_t>(std::int64_t{2} * count / samplesPerPixel);
    ToPixels(mapping, std::array{TracePoint{0, 0}, TracePoint{end, 0}}, pixels);
}

TraceMapping MapTrace(const TraceGeometry& geometry, float invScale, float baseLine) {
    constexpr double division = AmplitudeScale::kDivision;
    // Upside down the rows are those of the negative values.
    const double zoom = geometry.negativeUp ? -geometry.unitsPerDivision : geometry.unitsPerDivision;
    const double codesPerUnit =
        geometry.rawCodes ? static_cast<double>(AmplitudeScale::kCodesPerUnit) : static_cast<double>(invScale);
    const double exact = zoom * codesPerUnit / division;
    auto factor = static_cast<float>(exact);
    double offset = geometry.rawCodes ? 0.0 : std::nearbyint(-division * static_cast<double>(baseLine) / zoom);
    if (!std::isfinite(offset)) offset = 0.0;
    // Single-precision values at the finest scale can exceed the integer range.
    constexpr double whole = 4503599627370496.0;
    const std::int64_t origin = geometry.zeroRow + static_cast<std::int64_t>(std::clamp(offset, -whole, whole));

    TraceMapping mapping;
    mapping.windowExtentX = geometry.samplesPerPixel == 1 ? 1 : 2;
    mapping.flat = !std::isfinite(factor) || factor == 0.0F;
    if (mapping.flat) factor = 1.0F;
    const Extents extents = ChooseExtents(factor);
    mapping.flat = mapping.flat || std::fabs(extents.factor) >= static_cast<float>(kExtent);
    mapping.windowExtentY = -extents.logical;
    mapping.viewportExtentY = extents.device;
    const auto near = [](double row) {
        constexpr auto farthest = static_cast<double>(kFarthestRow);
        return static_cast<std::int32_t>(std::nearbyint(std::clamp(row, -farthest, farthest)));
    };
    const double middle = (static_cast<double>(origin) - geometry.top - geometry.height / 2.0) * exact;
    const double middleCode = std::nearbyint(std::clamp(middle, -32768.0, 32767.0));
    if (!mapping.flat && (RowErrorVisible(extents, 1.0 / exact, middleCode) || std::abs(origin) > kFarthestRow)) {
        // The mapping starts from the code that is visible, so that rounding errors stay off screen.
        mapping.windowOriginY = static_cast<std::int32_t>(middleCode);
        mapping.viewportOriginY = near(static_cast<double>(origin) - middleCode / exact);
    } else if (geometry.foldOrigin && !mapping.flat) {
        Fold(extents, origin, mapping);
    } else {
        mapping.viewportOriginY = near(static_cast<double>(origin));
    }
    // Whatever still exceeds 16 bits is off screen.
    if (geometry.foldOrigin)
        mapping.viewportOriginY = std::clamp(mapping.viewportOriginY, 1 - kOriginLimit, kOriginLimit - 1);
    return mapping;
}

}  // namespace quillon
