#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

/// Reader of AU files (.au, .snd): big-endian whole numbers of 8 to 32 bits and floats.

/// `start` holds the file's first bytes, 4096 of them where there are as many.
[[nodiscard]] bool LooksLikeAu(std::span<const std::uint8_t> start);

/// Throws FormatError for a file that cannot be read, ReadError when the device fails.
[[nodiscard]] RecordingContent ReadAu(const std::shared_ptr<ByteSource>& source);

}  // namespace quillon
