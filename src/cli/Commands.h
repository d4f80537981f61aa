#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Language.h"
#include "cli/OutputTarget.h"

namespace quillon::cli {

/// What a command works with. `words` are the command's name, the file and the rest.
struct CommandContext {
    const std::vector<std::u16string>& words;
    Language language;
    OutputTarget& target;
};

struct Command {
    std::u16string_view name;
    std::u16string_view usage;  ///< words after the name
    std::size_t minimumWords;   ///< after the name
    std::size_t maximumWords;
    std::string_view help;     ///< indented lines
    std::string_view example;  ///< indented lines
    void (*run)(const CommandContext& context);
};

/// All commands, in the order of the help.
[[nodiscard]] std::span<const Command> Commands();

}  // namespace quillon::cli
