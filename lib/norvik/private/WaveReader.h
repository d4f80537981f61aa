#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

/// Reader of WAVE files: RIFF, and RF64 and BW64 (EBU Tech 3306) beyond 4 GiB; whole numbers of 8 to 32 bits and
/// floats.

/// `start` holds the file's first bytes, 4096 of them where there are as many.
[[nodiscard]] bool LooksLikeWave(std::span<const std::uint8_t> start);

/// Throws FormatError for a file that cannot be read, ReadError when the device fails.
[[nodiscard]] RecordingContent ReadWave(const std::shared_ptr<ByteSource>& source);

/// The same for W64 files, which hold the chunks of WAVE files in another way.
[[nodiscard]] RecordingContent ReadW64(const std::shared_ptr<ByteSource>& source);

}  // namespace quillon
