#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "view/QL_ChUtils.h"
#include "view/TraceCanvas.h"

namespace quillon {

/// Pixel geometry that all traces of one pass share.
struct TraceGeometry {
    std::int64_t zeroRow = 0;       ///< device row of the zero level
    std::int32_t top = 0;           ///< first of the device rows that have to be exact
    std::int32_t height = 0;        ///< their number
    double unitsPerDivision = 1.0;  ///< vertical zoom
    bool negativeUp = false;        ///< values grow downwards
    std::int32_t samplesPerPixel = 1;
    bool rawCodes = false;  ///< codes are drawn as they are, 1000 codes standing for one unit
    /// Keep the device origin within 16 bits, as systems below version 4 need it. Visible rows stay the same.
    bool foldOrigin = false;
};

/// How the logical points of one trace (x: see TracePoint, y: the code) become pixels, named as the system names the
/// parts of an anisotropic mapping: device = viewportOrigin + (logical - windowOrigin) x viewportExtent / windowExtent,
/// rounded to the nearest whole number, halves up. The origins of x are 0.
/// The rows of the geometry are exact to one row (plus the rounding of the base line) for any position of the zero
/// level.
struct TraceMapping {
    std::int32_t windowExtentX = 1;  ///< 1 or 2
    std::int32_t windowExtentY = 1;  ///< negative of the logical extent, so that larger values go up
    std::int32_t viewportExtentY = 1;
    std::int32_t windowOriginY = 0;
    std::int32_t viewportOriginY = 0;
    /// The trace would be flat: it is drawn as one straight line at the base line, without reading samples.
    bool flat = false;
};

/// `invScale` is 1 / scale of the channel (0 where it has none: drawn flat), `baseLine` its offset in units.
[[nodiscard]] TraceMapping MapTrace(const TraceGeometry& geometry, float invScale, float baseLine);

/// The points in pixels.
void ToPixels(const TraceMapping& mapping, std::span<const TracePoint> points, std::vector<DevicePoint>& pixels);
/// Adds points on the lines between points that are more than a column apart, one per column, as TraceCanvas needs
/// them for columns from .. to-1. Those between two points depend on nothing else.
void JoinColumns(std::vector<DevicePoint>& pixels, std::int32_t from, std::int32_t to);
/// The straight line drawn for a flat trace of `count` samples.
void FlatTrace(const TraceMapping& mapping, std::int32_t count, std::int32_t samplesPerPixel,
               std::vector<DevicePoint>& pixels);

}  // namespace quillon
