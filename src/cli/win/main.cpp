#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "base/win/Win32.h"
#include "cli/Cli.h"

int wmain(int argc, wchar_t** argv) {
    // Text mode would put a carriage return before every byte 10 of the samples.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
    std::vector<std::u16string> arguments;
    for (int i = 1; i < argc; ++i) {
        const std::wstring word(argv[i]);
        arguments.emplace_back(word.begin(), word.end());
    }
    quillon::cli::CliIo io{std::cout, std::cerr, "\r\n"};
    return quillon::cli::RunCli(arguments, io);
}
