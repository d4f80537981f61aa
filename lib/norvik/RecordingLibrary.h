#pragma once

#include <memory>
#include <string_view>

#include "base/Language.h"
#include "data/NorvikCore.h"
#include "norvik/FileBlock.h"

namespace quillon {

/// The library object that opens recordings; its names of file types and reasons of failures are in `language`.
[[nodiscard]] std::shared_ptr<RecordingLibrary> MakeRecordingLibrary(Language language);

/// Chooses the reader by what the bytes begin with; the extension of `fileName` only decides who tells what is wrong
/// with a file that begins like none. Throws FormatError for a file that cannot be read, ReadError when the device
/// fails.
[[nodiscard]] RecordingContent ReadRecording(const std::shared_ptr<ByteSource>& source, std::u16string_view fileName);

}  // namespace quillon
