#pragma once

#include <span>
#include <string_view>

#include "base/Language.h"
#include "cli/Options.h"
#include "cli/OutputTarget.h"

namespace quillon::cli {

/// What a command works with. The words are the command's name, the file and the rest.
struct CommandContext {
    const ParsedArguments& parsed;
    Language language;
    OutputTarget& target;
    std::string_view lineEnd;  ///< of text on the standard output
    std::ostream& error;       ///< for messages about an incomplete result
};

struct Command {
    std::u16string_view name;
    std::u16string_view usage;  ///< words after the name
    std::size_t minimumWords;   ///< after the name
    std::size_t maximumWords;
    std::string_view help;     ///< indented lines
    std::string_view example;  ///< indented lines
    void (*run)(const CommandContext& context);
    std::span<const OptionRule> options = {};  ///< those that this command alone takes
    std::size_t outputWord = 0;                ///< which word names the file to write; 0: none, --out does
};

/// All commands, in the order of the help.
[[nodiscard]] std::span<const Command> Commands();

}  // namespace quillon::cli
