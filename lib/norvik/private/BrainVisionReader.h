#pragma once

#include "norvik/private/ReadRecording.h"

namespace quillon {

/// Reads a BrainVision recording, given its header (.vhdr, .ahdr): samples and markers lie in files beside it, which
/// are found by the header's own name too where they were renamed with it. Throws FormatError where it cannot be read,
/// ReadError when the device fails.
///
/// 16-bit samples are codes; what those of wider numbers stand for depends on the samples. A new segment with a gap
/// before it, and every segment of a segmented recording, is a stretch of blocks of its own.
[[nodiscard]] RecordingContent ReadBrainVision(const RecordingFile& file);

}  // namespace quillon
