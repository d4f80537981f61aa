#pragma once

#include <cstdint>
#include <string>

namespace quillon {

/// User settings of the text export. A flag is set when it is not zero.
struct TextExportSettings {
    std::int16_t fileType = 0;  ///< 0 a file per channel, else a single file
    std::int16_t channels = 0;  ///< 0 or less all channels, else the shown ones
    std::int16_t rowSize = 0;   ///< flag
    std::int16_t rowRate = 0;   ///< flag
    std::int16_t rowStep = 0;   ///< flag
    std::int16_t rowHead = 0;   ///< flag
    std::int16_t xColumn = 0;   ///< flag
    std::int16_t xFormat = 0;   ///< 0 time, else sample number
    std::u16string folder{};    ///< of the last export
    std::u16string fastFile{};  ///< file name of the fast export
    std::int16_t asShown = 0;   ///< flag: samples as they are shown, else as they are stored
    friend bool operator==(const TextExportSettings&, const TextExportSettings&) = default;
};

}  // namespace quillon
