#pragma once

#include <exception>
#include <initializer_list>
#include <string>
#include <string_view>

#include "base/Language.h"

namespace quillon {

/// A sentence for the user in both languages of the interface.
struct Bilingual {
    std::u16string english;
    std::u16string russian;
    [[nodiscard]] const std::u16string& In(Language language) const {
        return language == Language::Russian ? russian : english;
    }
};

/// Both texts with "%1", "%2", ... replaced by the arguments, which are the same in both languages.
[[nodiscard]] Bilingual Say(std::u16string_view english, std::u16string_view russian,
                            std::initializer_list<std::u16string> arguments = {});

/// A file that is refused, cannot be read on or cannot hold what is to be written: the message gives the fault and its
/// location.
class FormatError : public std::exception {
  public:
    explicit FormatError(Bilingual reason, Language language = Language::English);
    [[nodiscard]] const Bilingual& Reason() const { return m_reason; }
    /// In the language given, UTF-8.
    [[nodiscard]] const char* what() const noexcept override { return m_what.c_str(); }

  private:
    Bilingual m_reason;
    std::string m_what;
};

}  // namespace quillon
