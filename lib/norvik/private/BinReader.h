#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

/// Reader of the ".bin" recordings that the exporter writes too: a 128-byte file header ("ABIN"), an 80-byte record per
/// channel ("ADCh"), an 8-byte data header ("data") and frames of 16-bit samples.

/// `start` holds the file's first bytes, 4096 of them where there are as many.
[[nodiscard]] bool LooksLikeBin(std::span<const std::uint8_t> start);

/// Throws FormatError for a file that cannot be read, ReadError when the device fails.
[[nodiscard]] RecordingContent ReadBin(const std::shared_ptr<ByteSource>& source);

}  // namespace quillon
