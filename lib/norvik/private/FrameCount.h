#pragma once

#include <cstdint>

#include "base/Bilingual.h"
#include "norvik/private/FrameBlock.h"

namespace quillon {

/// How many frames a file really holds, and what to tell about it.
struct FrameCount {
    std::uint64_t count = 0;
    Bilingual remark;  ///< empty when the file holds what its header declares
};

/// Frames of the `declared` bytes that the header states, as far as the `available` bytes behind it reach.
[[nodiscard]] FrameCount CountFrames(std::uint64_t declared, std::uint64_t available, std::size_t frameBytes);

/// Everything that follows the header, as a recording that was not closed has it.
[[nodiscard]] FrameCount CountUnclosedFrames(std::uint64_t available, std::size_t frameBytes);

/// True when a 32-bit size cannot be the true one: the data are longer by a multiple of 4 GiB.
[[nodiscard]] bool SizeWrapped(std::uint32_t declared, std::uint64_t available);

/// "BIN, 8 channels at 1000 Hz, 120000 samples"
[[nodiscard]] Bilingual DescribeFrames(const Bilingual& format, const FrameRecording& recording);

/// Adds a remark, which may be empty, to the information about a file.
void AppendRemark(Bilingual& info, const Bilingual& remark);

/// Where a recording does not tell when it was made.
[[nodiscard]] Bilingual FileTimeRemark();

}  // namespace quillon
