#pragma once

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "base/Text.h"
#include "cli/Cli.h"

namespace quillon::testing {

struct Answer {
    int code = 0;
    std::string out;
    std::string error;
};

/// Runs the command line whose words are separated by blanks: "%" stands for the next of the paths, "''" for nothing.
inline Answer RunLine(const std::string& line, const std::vector<std::filesystem::path>& paths = {}) {
    std::vector<std::u16string> words;
    std::istringstream stream(line);
    auto path = paths.begin();
    for (std::string word; stream >> word;) {
        words.push_back(Utf16(word == "''" ? "" : word));
        const std::size_t place = words.back().find(u'%');
        if (place != std::u16string::npos) words.back().replace(place, 1, (path++)->u16string());
    }
    std::ostringstream out;
    std::ostringstream error;
    cli::CliIo io{out, error};
    const int code = cli::RunCli(words, io);
    return {code, out.str(), error.str()};
}

}  // namespace quillon::testing
