#pragma once

#include <cstdint>

namespace quillon {

/// What the user chose about scales, texts, grid and cursor. Numbers are kept as they were stored; who uses one applies
/// its own limits.
struct DisplaySettings {
    std::int16_t timeFormat = 0;      ///< 0 time of day, 1 from the start, 2 sample indexes
    std::int32_t timeIndex = 0;       ///< FormatOptions::timeUnit
    std::int16_t scaleFormat = 0;     ///< 0 values, 1 codes
    bool unitScaling = false;         ///< metric prefixes by magnitude, folding in a unit's own (see ChoosePrefix)
    std::int16_t digitsType = 0;      ///< what digitsCount counts: 0 significant digits, else decimal places
    std::int16_t digitsCount = 0;     ///< 0 or less: automatic
    std::int16_t gridColor = 0;       ///< index of a trace colour, by its magnitude
    std::int16_t gridStyle = 0;       ///< 0 none, 1 lines, 2 dotted lines
    std::int16_t waveformCursor = 0;  ///< by its magnitude: 0 cross, 1 target, 2 hollow target, 3 square
    friend bool operator==(const DisplaySettings&, const DisplaySettings&) = default;
};

}  // namespace quillon
