#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillon {

/// Look-ups of files in folders. Both may throw an exception derived from std::exception.
class DirectoryLookup {
  public:
    virtual ~DirectoryLookup() = default;
    /// Whether the path names a file.
    [[nodiscard]] virtual bool Exists(const std::u16string& path) = 0;
    /// Name, without its folder, of the first file that matches a path with wildcards in its last part; empty for none.
    [[nodiscard]] virtual std::u16string FirstMatch(const std::u16string& pattern) = 0;
};

/// Path of the help file in the program's folder, empty when there is none. A look-up that fails counts as finding
/// nothing.
///
/// helpLanguage: 0 by the interface's language, 1 Russian, 2 English. It decides, and is kept, only where both
/// languages are installed; else the one file there is wins and the choice is reset to 0. languageCode: "EN" or "RU",
/// the interface's own.
[[nodiscard]] std::u16string ChooseHelpFile(DirectoryLookup& lookup, const std::u16string& programFolder,
                                            std::int16_t& helpLanguage, std::u16string_view languageCode);

}  // namespace quillon
