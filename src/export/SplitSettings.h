#pragma once

#include <cstdint>

namespace quillon {

/// User settings of splitting. Sizes and steps of 0 or less: not chosen yet.
struct SplitSettings {
    std::int16_t type = 0;         ///< 0 by time, 1 by samples
    std::int32_t samplesStep = 0;  ///< samples
    std::int32_t samplesSize = 0;  ///< samples
    float timeStep = 0.0F;         ///< s
    float timeSize = 0.0F;         ///< s
    std::int16_t fileIndex = 0;    ///< 0 names by number of piece, 1 by sample indexes
    std::int16_t baseName = 0;     ///< flag: names start with the base name
};

}  // namespace quillon
