#pragma once

#include <memory>

#include "base/Language.h"
#include "norvik/NorvikCore.h"

namespace quillon {

/// The library object that opens recordings; its names of file types and reasons of failures are in `language`.
[[nodiscard]] std::shared_ptr<RecordingLibrary> MakeRecordingLibrary(Language language);

}  // namespace quillon
