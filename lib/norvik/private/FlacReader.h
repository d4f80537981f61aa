#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

/// Reader of FLAC files (RFC 9639): 1 to 8 channels of 4 to 32 bits.

/// `start` holds the file's first bytes, 4096 of them where there are as many.
[[nodiscard]] bool LooksLikeFlac(std::span<const std::uint8_t> start);

/// Throws FormatError for a file that cannot be read, ReadError when the device fails.
[[nodiscard]] RecordingContent ReadFlac(const std::shared_ptr<ByteSource>& source);

}  // namespace quillon
