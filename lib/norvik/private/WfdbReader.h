#pragma once

#include "norvik/private/ReadRecording.h"

namespace quillon {

/// Reads a WFDB record, given its header (.hea): samples, annotations and the records that it may consist of lie in
/// files beside it. Throws FormatError where it cannot be read, ReadError when the device fails.
///
/// Samples of up to 16 bits are codes; what those of format 8 and of 24 and 32 bits stand for depends on the samples.
/// Signals of one number of samples per frame form blocks together; each segment is a stretch of blocks of its own.
/// Annotations of one file are marks of all blocks.
[[nodiscard]] RecordingContent ReadWfdb(const RecordingFile& file);

}  // namespace quillon
