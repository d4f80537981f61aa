#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "norvik/private/BrainVisionHeader.h"
#include "norvik/private/FrameBlock.h"

/// Marker files of BrainVision recordings (.vmrk, .amrk), and what they tell about the recording.
namespace quillon {

struct BrainVisionMarker {
    std::u16string type;
    std::u16string description;
    std::uint64_t position = 0;        ///< sample index in the file, from 0
    std::uint64_t size = 0;            ///< samples
    std::uint64_t channel = 0;         ///< from 1; 0: of all channels
    std::optional<std::int64_t> date;  ///< microseconds since 30 December 1899 00:00
};

struct BrainVisionMarkers {
    std::vector<BrainVisionMarker> all;  ///< in order of position and, at one position, of the file
    std::size_t leftOut = 0;             ///< without a position in the file
    bool limitReached = false;           ///< there were more than memory is given for
};

/// Reads the text of a marker file; markers at or beyond `samples` are left out.
[[nodiscard]] BrainVisionMarkers ParseBrainVisionMarkers(std::string_view text, std::uint64_t samples);

/// Sets the start, marks and stretches of a recording whose channels, rate and frames are known. The first marker of a
/// new segment tells the start of the recording. One that begins later than the samples before it last starts a
/// stretch, as every segment of the header does; one that does not is a mark.
void ApplyMarkers(const BrainVisionMarkers& markers, const BrainVisionHeader& header, FrameRecording& recording);

}  // namespace quillon
