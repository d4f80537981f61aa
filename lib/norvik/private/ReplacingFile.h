#pragma once

#include <memory>

#include "norvik/OutputFile.h"
#include "norvik/private/FileSystem.h"

namespace quillon {

/// The file of MakeOutputFile on another system, which must outlive it.
[[nodiscard]] std::unique_ptr<OutputFile> MakeOutputFileOn(FileSystem& files);

}  // namespace quillon
