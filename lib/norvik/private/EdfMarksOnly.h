#pragma once

#include <memory>

#include "norvik/private/ByteSource.h"
#include "norvik/private/EdfHeader.h"
#include "norvik/private/FileBlock.h"

namespace quillon {

/// A file of the EDF family that holds annotations and no samples, as scorings of sleep do: one block from its first
/// annotation to the end of its last one, with one flat channel named as the annotation signal is, 1000 samples a
/// second (fewer where it lasts longer than some ten days). All annotations are its marks, as far as they lie in the
/// first 64 MiB of records. Throws FormatError where there is no annotation, ReadError when the device fails.
[[nodiscard]] RecordingContent ReadEdfMarks(const std::shared_ptr<ByteSource>& source, EdfHeader header,
                                            const ReadBudget& budget);

}  // namespace quillon
