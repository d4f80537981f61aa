#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Bilingual.h"
#include "norvik/private/WideSamples.h"

/// The header files of BrainVision recordings (.vhdr, .ahdr): text that names a file of samples and one of markers.
namespace quillon {

struct BrainVisionChannel {
    std::u16string title;
    std::u16string unit;
    double resolution = 1.0;  ///< units per stored number
};

/// How samples that are written as text are laid out.
struct BrainVisionColumns {
    char decimalPoint = '.';
    std::uint64_t skippedLines = 0;    ///< before the samples
    std::uint64_t skippedColumns = 0;  ///< before the samples of each line
};

struct BrainVisionHeader {
    std::u16string version;
    std::string dataFile;    ///< as it is written
    std::string markerFile;  ///< empty: there are no markers
    bool isText = false;
    /// The samples of one channel lie together, instead of those of one time.
    bool vectorized = false;
    /// The amplifier's own variant: every frame holds one number more than there are channels.
    bool extraChannel = false;
    std::u16string numberFormat;  ///< as it is written; of binary samples
    SampleKind kind = SampleKind::Int16;
    bool isUnsigned = false;  ///< the 16 bits stand for 0 to 65535
    bool bigEndian = false;
    BrainVisionColumns columns;
    double rate = 0.0;
    std::optional<std::uint64_t> dataPoints;  ///< per channel, as far as the header tells them
    std::uint64_t segmentSamples = 0;         ///< of each segment; 0: not segmented
    std::vector<BrainVisionChannel> channels;
    std::vector<Bilingual> notes;  ///< oddities that do not keep the recording from being read
};

/// Tells by the first line; `start` are the first bytes of the file.
[[nodiscard]] bool LooksLikeBrainVision(std::span<const std::uint8_t> start);

/// Reads and checks the text of a header. Throws FormatError where the recording cannot be read.
[[nodiscard]] BrainVisionHeader ParseBrainVisionHeader(std::string_view text);

}  // namespace quillon
