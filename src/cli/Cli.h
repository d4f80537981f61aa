#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::cli {

/// Exit codes of the program.
enum ExitCode { kDone = 0, kRefused = 1, kUsage = 2 };

/// Where the program writes: bytes of the result, and messages in UTF-8. A failed write is seen in `out`'s state.
struct CliIo {
    std::ostream& out;
    std::ostream& error;
    /// Of text on `out`: the system's usual one.
    std::string_view lineEnd = "\n";
};

/// The whole program but for the system's way of passing arguments and streams. `arguments` are the words after the
/// program's name. Never throws; returns an ExitCode.
int RunCli(const std::vector<std::u16string>& arguments, CliIo& io);

}  // namespace quillon::cli
