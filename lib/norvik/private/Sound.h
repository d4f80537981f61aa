#pragma once

#include <cstdint>
#include <string_view>

#include "base/Bilingual.h"
#include "norvik/private/FrameBlock.h"

/// What the formats of plain sound have in common: frames whose full scale is 1, in the unit "FS".
namespace quillon {

/// Frames without padding at byte 0, of a count not known yet.
[[nodiscard]] FrameRecording DescribeSound(SampleKind kind, std::size_t channels, double rate);

/// "WAVE, PCM 16 bit", "AU, float 32 bit"
[[nodiscard]] Bilingual SoundName(std::u16string_view format, SampleKind kind, std::uint64_t bits);

}  // namespace quillon
