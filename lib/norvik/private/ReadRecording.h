#pragma once

#include <memory>
#include <string_view>

#include "norvik/private/ByteSource.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

/// Chooses the reader by what the bytes begin with; the extension of `fileName` only decides who tells what is wrong
/// with a file that begins like none. Throws FormatError for a file that cannot be read, ReadError when the device
/// fails.
[[nodiscard]] RecordingContent ReadRecording(const std::shared_ptr<ByteSource>& source, std::u16string_view fileName);

}  // namespace quillon
