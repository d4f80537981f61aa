#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace quillon {

/// Finds a name in a list by its first letters, as they are typed.
class TypedSearch {
  public:
    /// Milliseconds without a letter after which the next one begins another name.
    static constexpr std::uint32_t kPause = 1000;

    /// The position of the first name, from the selected one on and round, that begins with the letters typed so far,
    /// in upper or lower case; the letter typed again goes on to the next name. Nothing where there is none: then that
    /// letter does not count. `selected` is from 0, -1: none; `time` in milliseconds of any origin, which may overflow.
    [[nodiscard]] std::optional<int> Type(char16_t letter, std::uint32_t time, std::span<const std::u16string> names,
                                          int selected);
    /// The next letter begins another name.
    void Begin() { m_typed.clear(); }

  private:
    std::u16string m_typed;
    std::uint32_t m_last = 0;
};

}  // namespace quillon
