#pragma once

#include <memory>

#include "data/OutputFile.h"
#include "norvik/FileSystem.h"

namespace quillon {

/// An output file that gathers what it is given into pieces of 256 KiB. It is written beside its place under a name of
/// its own ("quillon-1.part") and renamed in Close, so that the place holds a whole file at any time. Devices are
/// written where they are.
[[nodiscard]] std::unique_ptr<OutputFile> MakeOutputFile();

/// The same on another system, which must outlive it.
[[nodiscard]] std::unique_ptr<OutputFile> MakeOutputFileOn(FileSystem& files);

}  // namespace quillon
