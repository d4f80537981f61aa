#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Lines, fields and numbers of WFDB headers.
namespace quillon {

struct HeaderLine {
    std::string_view text;   ///< without blanks at its ends
    std::size_t number = 0;  ///< from 1
};

/// The lines of a header that are neither empty nor comments.
class HeaderLines {
  public:
    explicit HeaderLines(std::string_view text);
    [[nodiscard]] std::optional<HeaderLine> Next();
    /// The comment lines behind those that were taken, up to the next that is none, joined by blanks.
    [[nodiscard]] std::string Comment();

  private:
    /// Empty at the end of the text too.
    std::string_view Take();

    std::string_view m_rest;
    std::size_t m_number = 0;
};

/// Fields between blanks and tabs.
class FieldText {
  public:
    explicit FieldText(std::string_view line) : m_rest(line) {}
    /// Empty where there is none left.
    [[nodiscard]] std::string_view Next();
    [[nodiscard]] std::string_view Peek() const { return FieldText(*this).Next(); }
    /// All that is left, without blanks at its ends.
    [[nodiscard]] std::string_view Rest() const;

  private:
    std::string_view m_rest;
};

/// The whole text as a number, or nothing.
[[nodiscard]] std::optional<std::uint64_t> WholeNumber(std::string_view text);
[[nodiscard]] std::optional<std::int64_t> SignedNumber(std::string_view text);
/// Finite.
[[nodiscard]] std::optional<double> RealNumber(std::string_view text);

/// Seconds of "hours:minutes:seconds", "minutes:seconds" or "seconds".
[[nodiscard]] std::optional<double> ParseWfdbClock(std::string_view text);
/// Automation date of "day/month/year".
[[nodiscard]] std::optional<double> ParseWfdbDate(std::string_view text);

}  // namespace quillon
