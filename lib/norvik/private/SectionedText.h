#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "norvik/private/ByteSource.h"

/// Text files of "[Section]" and "key=value" lines, with the comment lines of ";" that BrainVision files have.
namespace quillon {

[[nodiscard]] std::string_view WithoutByteOrderMark(std::string_view text);

struct TextEntry {
    std::u16string_view section;  ///< lower case
    std::u16string key;           ///< lower case
    std::string_view value;       ///< bytes of the file
    std::size_t line = 0;         ///< from 1
};

/// Visits every "key=value" line in order, up to a section of free text, "[Comment]". Blank lines and lines that are
/// neither are passed over. Lines end with LF or CRLF.
void ForEachEntry(std::string_view text, const std::function<void(const TextEntry&)>& visit);

/// The first `most` bytes of a file.
[[nodiscard]] std::string ReadTextStart(ByteSource& source, std::uint64_t most);

/// Fields between commas; a comma inside a field is written "\1".
class CommaFields {
  public:
    explicit CommaFields(std::string_view line) : m_rest(line) {}
    /// The next field without blanks around it; empty where there is none left.
    [[nodiscard]] std::u16string Next();

  private:
    std::string_view m_rest;
};

}  // namespace quillon
