// tallivex-cli: the meter's core without windows.
#include "RecognizeCommand.h"
#include "ReplayCommand.h"

#include <iostream>
#include <string>
#include <vector>

namespace {

void printUsage(std::ostream& out)
{
    out << "usage: tallivex-cli <command> [options]\n"
           "commands:\n"
           "  recognize [--window-mode] [--trace] IMAGE...   read level, experience and money off\n"
           "                                                 24-bit BMP screen images\n";
}

} // namespace

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    const std::vector<std::string> args(argv + (argc > 1 ? 2 : 1), argv + argc);
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "recognize")
        return tvx::cli::runRecognize(args, std::cout, std::cerr);
    if (command == "replay")
        return tvx::cli::runReplay(args, std::cout, std::cerr);
    if (command == "--help" || command == "-h" || command == "help") {
        printUsage(std::cout);
        return 0;
    }
    std::cerr << (command.empty() ? "tallivex-cli: no command given\n" : "tallivex-cli: unknown command " + command + "\n");
    printUsage(std::cerr);
    return 1;
}
