#pragma once

#include <cstdint>
#include <span>

#include "norvik/private/FileBlock.h"
#include "norvik/private/ReadRecording.h"

namespace quillon {

/// Reader of tables of numbers in text files: a row for each sample, columns between tabs, semicolons, bars, commas or
/// blanks. Text begins with nothing of its own, so that only the extension tells it.

/// False: see there.
[[nodiscard]] bool LooksLikeTable(std::span<const std::uint8_t> start);

/// Reads as many rows as the budget allows; readMore of the content reads the rest. What cannot be read of that is left
/// out, and told. Throws FormatError for a file without a table, ReadError when the device fails at its beginning.
[[nodiscard]] RecordingContent ReadTable(const RecordingFile& file);

}  // namespace quillon
