#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "base/NativePath.h"
#include "cli/Cli.h"

int main(int argc, char** argv) {
    // A closed pipe shall be a failed write with exit code 1, not end the program by a signal.
    std::signal(SIGPIPE, SIG_IGN);
    std::ios::sync_with_stdio(false);
    const std::vector<std::string> words(argv + 1, argv + argc);
    std::vector<std::u16string> arguments;
    for (const std::string& word : words) arguments.push_back(quillon::FromNativeBytes(word));
    quillon::cli::CliIo io{std::cout, std::cerr};
    return quillon::cli::RunCli(arguments, io);
}
