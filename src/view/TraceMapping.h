#pragma once

#include <cstdint>

namespace quillon {

/// Pixel geometry that all traces of one pass share.
struct TraceGeometry {
    std::int32_t leftMargin = 0;    ///< device column of sample 0
    std::int64_t zeroRow = 0;       ///< device row of the zero level
    std::int32_t height = 0;        ///< device rows that are seen, from 0
    double unitsPerDivision = 1.0;  ///< vertical zoom
    std::int32_t samplesPerPixel = 1;
    bool rawCodes = false;    ///< codes are drawn as they are, 1000 codes standing for one unit
    bool foldOrigin = false;  ///< keep the device origin within 16 bits, for systems whose mapping has no more
};

/// How the logical points of one trace (x: see TracePoint, y: the code) become pixels through an anisotropic mapping:
/// device = viewportOrigin + (logical - windowOrigin) x viewportExtent / windowExtent.
/// Rows in sight are right to a row (plus that of the rounded base line) wherever the zero level lies; the window's
/// origin is subtracted from the codes before the system maps them, which counts in single precision.
struct TraceMapping {
    std::int32_t windowExtentX = 1;
    std::int32_t windowExtentY = 1;  ///< negative of the logical extent, so that larger values go up
    std::int32_t viewportExtentX = 1;
    std::int32_t viewportExtentY = 1;
    std::int32_t windowOriginY = 0;
    std::int32_t viewportOriginX = 0;
    std::int32_t viewportOriginY = 0;
    /// The trace would be flat: it is drawn as one straight line at the base line, without reading samples.
    bool flat = false;
};

/// `invScale` is 1 / scale of the channel (0 where it has none: drawn flat), `baseLine` its offset in units.
[[nodiscard]] TraceMapping MapTrace(const TraceGeometry& geometry, float invScale, float baseLine);

}  // namespace quillon
