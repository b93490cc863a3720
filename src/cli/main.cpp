// tallivex-cli: the meter's core without windows.
#include "ConfigCommand.h"
#include "HistoryCommand.h"
#include "LearnCommand.h"
#include "RecognizeCommand.h"
#include "ReplayCommand.h"

#include "CommandLine.h"
#include "StandardStreams.h"

#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

void printUsage(std::ostream& out)
{
    out << "usage: tallivex-cli <command> [options]\n"
           "commands:\n"
           "  recognize [--window-mode] [--trace] [--home DIR] IMAGE...\n"
           "      read level, experience and money off 24-bit BMP screen images, with the default\n"
           "      regions or, given --home, with that folder's configuration\n"
           "  config show|defaults|save [--home DIR] [--fullscreen|--window] [--yes|--no]\n"
           "      load the configuration as the program does at start-up and print it as JSON;\n"
           "      defaults also restores and writes the defaults, save writes it back\n"
           "  replay FRAMES_DIR --save-folder DIR [--start \"YYYY-MM-DD hh:mm\"] [--csv] [--per-session]\n"
           "         [--money-scan] [--window-mode] [--home DIR] [--live FILE]\n"
           "      run one measurement session over screen images named by their second\n"
           "      (0.bmp, 360.bmp, ...), write the record file and the session history and print\n"
           "      the log box; --live writes one JSON line of rolling figures per reading to FILE\n"
           "  history --save-folder DIR\n"
           "      print the session history kept beside DIR's record files as JSON lines\n"
           "  learn --home DIR [--window-mode] IMAGE LEVEL EXP MONEY [IMAGE LEVEL EXP MONEY ...]\n"
           "      learn each region's glyphs from screen images and the numbers they show (\"-\"\n"
           "      skips a region); saved into DIR's configuration when every image fits\n"
           "options:\n"
           "  --home DIR          the folder of TV2MConfig.ini and debug.txt (default: the\n"
           "                      program's folder when writable, else the per-user data folder)\n"
           "  --yes, --no         answer to the migration and target-change questions (default --yes)\n"
           "  --fullscreen, --window\n"
           "                      answer to the screen-mode question asked when defaults are made\n"
           "                      (default --fullscreen; --window-mode is the same as --window)\n";
}

} // namespace

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    const tvx::platform::Utf8StandardStreams streams;
    const std::vector<std::string> all = tvx::platform::commandLineUtf8(argc, argv);
    const std::string command = all.size() > 1 ? all[1] : "";
    const std::vector<std::string> args(all.size() > 2 ? all.begin() + 2 : all.end(), all.end());
    // The commands trap and report what they expect; anything else still ends in a
    // message and exit code 2 rather than an abort.
    try {
        if (command == "recognize")
            return tvx::cli::runRecognize(args, std::cout, std::cerr);
        if (command == "replay")
            return tvx::cli::runReplay(args, std::cout, std::cerr);
        if (command == "config")
            return tvx::cli::runConfig(args, std::cout, std::cerr);
        if (command == "history")
            return tvx::cli::runHistory(args, std::cout, std::cerr);
        if (command == "learn")
            return tvx::cli::runLearn(args, std::cout, std::cerr);
    } catch (const std::exception& error) {
        std::cout.flush();
        std::cerr << "tallivex-cli " << command << ": " << error.what() << '\n';
        return 2;
    }
    if (command == "--help" || command == "-h" || command == "help") {
        printUsage(std::cout);
        return 0;
    }
    std::cerr << (command.empty() ? "tallivex-cli: no command given\n" : "tallivex-cli: unknown command " + command + "\n");
    printUsage(std::cerr);
    return 1;
}
