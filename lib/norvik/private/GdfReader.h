#pragma once

#include <memory>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"
#include "norvik/private/GdfHeader.h"

namespace quillon {

/// Reads a GDF file, version 1 or 2: signals of any rates and sample types; its events are marks, and samples after a
/// break are blocks of their own. Throws FormatError that says what is wrong and where, ReadError when the device
/// fails.
[[nodiscard]] RecordingContent ReadGdf(const std::shared_ptr<ByteSource>& source);

}  // namespace quillon
