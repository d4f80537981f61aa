#pragma once

#include <cstdint>

namespace quillon {

/// What the user chose about splitting. Sizes and steps of 0 or less: nothing was chosen yet.
struct SplitSettings {
    std::int16_t splitType = 0;         ///< 0 by time, 1 by samples
    std::int32_t splitSamplesStep = 0;  ///< samples
    std::int32_t splitSamplesSize = 0;  ///< samples
    float splitTimeStep = 0.0F;         ///< s
    float splitTimeSize = 0.0F;         ///< s
    std::int16_t splitFileIndex = 0;    ///< 0 names by number of piece, 1 by sample indexes
    std::int16_t splitBaseName = 0;     ///< flag: names start with the base name
};

}  // namespace quillon
