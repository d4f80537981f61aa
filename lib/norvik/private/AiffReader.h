#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

/// Reader of AIFF and AIFC files: whole numbers of 1 to 32 bits and floats, in either byte order; markers are marks.

/// `start` holds the file's first bytes, 4096 of them where there are as many.
[[nodiscard]] bool LooksLikeAiff(std::span<const std::uint8_t> start);

/// Throws FormatError for a file that cannot be read, ReadError when the device fails.
[[nodiscard]] RecordingContent ReadAiff(const std::shared_ptr<ByteSource>& source);

}  // namespace quillon
