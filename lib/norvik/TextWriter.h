#pragma once

#include <memory>
#include <string>

#include "base/Language.h"
#include "norvik/OutputFile.h"
#include "norvik/TextSink.h"

namespace quillon {

/// A text file of UTF-8, to which no byte order mark is added; it replaces one that exists when it is closed. Null,
/// with the file's name and the reason in `error`, when it cannot be created. Reasons are in `language`.
[[nodiscard]] std::unique_ptr<TextSink> CreateTextFile(const std::u16string& fileName, Language language,
                                                       std::u16string& error);

/// The same by means of an output file.
[[nodiscard]] std::unique_ptr<TextSink> BeginTextFile(std::unique_ptr<OutputFile> file, const std::u16string& fileName,
                                                      Language language, std::u16string& error);

}  // namespace quillon
