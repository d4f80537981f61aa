#pragma once

#include <memory>

#include "norvik/private/ByteSource.h"
#include "norvik/private/EdfHeader.h"
#include "norvik/private/FileBlock.h"

/// Recordings in EDF, EDF+, BDF and BDF+ (B. Kemp et al. 1992; B. Kemp, J. Olivan 2003; the 24-bit variant of both).
namespace quillon {

/// Reads the header and as many annotations as the budget allows; readMore of the content reads the rest. Samples are
/// read when they are asked for.
/// Throws FormatError that says what is wrong and at which byte, ReadError when the device fails.
[[nodiscard]] RecordingContent ReadEdf(const std::shared_ptr<ByteSource>& source, const ReadBudget& budget = {});

}  // namespace quillon
