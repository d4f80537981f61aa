#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::cli {

/// One option as the parser knows it.
struct OptionRule {
    std::u16string_view name;  ///< with its dashes
    bool takesValue = false;
    std::u16string_view help;
    std::u16string_view values;  ///< what the help shows for the value
};

/// The rules of several lists in one.
template <std::size_t... Sizes>
constexpr auto JoinedRules(const std::array<OptionRule, Sizes>&... lists) {
    std::array<OptionRule, (Sizes + ...)> joined{};
    auto* to = joined.data();
    ((to = std::copy(lists.begin(), lists.end(), to)), ...);
    return joined;
}

/// A command line that is not understood; the text names the wrong word.
class UsageError : public std::runtime_error {
  public:
    explicit UsageError(const std::u16string& text);
};

/// Command line cut into options and the rest, in order.
struct ParsedArguments {
    std::vector<std::u16string> words;
    std::map<std::u16string, std::u16string, std::less<>> options;  ///< value empty for those that take none

    [[nodiscard]] bool Has(std::u16string_view name) const { return options.find(name) != options.end(); }
    /// The option's value, or `otherwise` where it was not given.
    [[nodiscard]] std::u16string Value(std::u16string_view name, std::u16string_view otherwise = {}) const;
};

/// Takes "--name value" and "--name=value"; "--" ends the options. Throws UsageError for unknown and repeated options,
/// missing values and values where none is taken.
[[nodiscard]] ParsedArguments ParseArguments(std::span<const std::u16string> arguments,
                                             std::span<const OptionRule> rules);

/// What is wrong with a number that an option does not take.
[[nodiscard]] std::u16string OutOfRange(const ParsedArguments& parsed, std::u16string_view name);

/// A finite number with a decimal point. Throws UsageError that calls it `what`.
[[nodiscard]] double RealNumber(const std::u16string& text, std::u16string_view what);
/// The nearest single, which has to be finite too.
[[nodiscard]] float SingleNumber(const std::u16string& text, std::u16string_view what);

/// A whole number of decimal digits. Throws UsageError that calls it `what`.
[[nodiscard]] std::int64_t WholeNumber(const std::u16string& text, std::u16string_view what);
/// The option's whole number from `least` to `most`, or `otherwise` where it was not given. Throws UsageError.
[[nodiscard]] std::int64_t WholeOption(const ParsedArguments& parsed, std::u16string_view name, std::int64_t otherwise,
                                       std::int64_t least, std::int64_t most);

/// What stands between the commas; a part may be empty.
[[nodiscard]] std::vector<std::u16string> SplitAtCommas(const std::u16string& list);

/// Position of an option's value among those that its rule lists, "a|b|c"; 0 where it was not given.
[[nodiscard]] std::size_t Choice(const ParsedArguments& parsed, std::span<const OptionRule> rules,
                                 std::u16string_view name);

}  // namespace quillon::cli
