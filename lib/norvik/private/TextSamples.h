#pragma once

#include <memory>

#include "base/Bilingual.h"
#include "norvik/private/BrainVisionHeader.h"
#include "norvik/private/ByteSource.h"

namespace quillon {

/// Samples that were written as text, as binary ones in memory.
struct TextSamples {
    std::shared_ptr<ByteSource> source;
    SampleKind kind = SampleKind::Float32;  ///< or Int32, where all are whole numbers that it keeps exactly
    Bilingual remark;                       ///< up to where they were read, if not to the end
};

/// Reads lines of numbers between blanks, tabs, semicolons or, where they are no decimal points, commas. A line holds a
/// sample of every channel or, `vectorized`, all samples of a channel; the binary samples lie in the same order, as
/// many of each channel. What follows a damaged line is left out. Throws FormatError for text without one whole line,
/// or of more than 128 MiB.
[[nodiscard]] TextSamples ReadTextSamples(ByteSource& text, const BrainVisionColumns& columns, std::size_t channels,
                                          bool vectorized);

}  // namespace quillon
