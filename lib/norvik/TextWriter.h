#pragma once

#include <memory>
#include <string>

#include "data/OutputFile.h"
#include "data/TextSink.h"

namespace quillon {

/// A text file of UTF-8 without a mark of its own, replacing one that exists. Null, with the reason in `error`, when it
/// cannot be created.
[[nodiscard]] std::unique_ptr<TextSink> CreateTextFile(const std::u16string& fileName, std::u16string& error);

}  // namespace quillon
