#include "PracticeOptions.h"

#include "measurement/ExpTable.h"

#include <charconv>
#include <limits>

namespace tvx::practice {

const char* const kPracticeUsage =
    "usage: tallivex-practice [OPTION]...\n"
    "A window that draws a game-like status bar (level, experience, money) for the meter to read.\n"
    "\n"
    "  --title TEXT             window title (default MapleStory)\n"
    "  --window-mode            a framed window instead of a frameless one at 0,0\n"
    "  --level N                starting level, 1..200 (default 50)\n"
    "  --exp N                  starting experience within the level (default 250000)\n"
    "  --money N                starting money (default 12345678)\n"
    "  --exp-per-second N       experience added per tick (default 2000)\n"
    "  --money-per-second N     money added per tick (default 100)\n"
    "  --tick-ms N              milliseconds per tick (default 1000)\n"
    "  --state-file PATH        append \"epochSeconds level exp money\" after every change\n"
    "  --help                   this text\n"
    "\n"
    "Keys: D dies (level - 1, experience 0), C changes character, U levels up, Space pauses.\n";

namespace {

template <typename Int>
bool readNumber(const std::string& text, Int low, Int high, Int& value)
{
    Int parsed{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error != std::errc{} || end != text.data() + text.size() || parsed < low || parsed > high)
        return false;
    value = parsed;
    return true;
}

} // namespace

bool parsePracticeOptions(const std::vector<std::string>& args, PracticeOptions& options, std::string& error)
{
    constexpr auto kMax64 = std::numeric_limits<std::int64_t>::max();
    constexpr auto kMax32 = std::numeric_limits<std::int32_t>::max();
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--help" || arg == "-h") {
            options.help = true;
            continue;
        }
        if (arg == "--window-mode") {
            options.windowMode = true;
            continue;
        }
        const bool takesValue = arg == "--title" || arg == "--level" || arg == "--exp" || arg == "--money" ||
                                arg == "--exp-per-second" || arg == "--money-per-second" || arg == "--tick-ms" ||
                                arg == "--state-file";
        if (!takesValue) {
            error = "unknown option " + arg;
            return false;
        }
        if (i + 1 >= args.size()) {
            error = arg + " needs a value";
            return false;
        }
        const std::string& value = args[++i];
        bool valid = true;
        if (arg == "--title")
            options.title = value;
        else if (arg == "--state-file")
            options.stateFile = value;
        else if (arg == "--level")
            valid = readNumber(value, 1, kMaxLevel, options.start.level);
        else if (arg == "--exp")
            valid = readNumber<std::int64_t>(value, 0, kMax64, options.start.exp);
        else if (arg == "--money")
            valid = readNumber<std::int64_t>(value, 0, PracticeCharacter::kMaxMoney, options.start.money);
        else if (arg == "--exp-per-second")
            valid = readNumber<std::int64_t>(value, 0, kMax64, options.expPerTick);
        else if (arg == "--money-per-second")
            valid = readNumber<std::int64_t>(value, 0, kMax64, options.moneyPerTick);
        else if (arg == "--tick-ms")
            valid = readNumber(value, 1, kMax32, options.tickMs);
        if (!valid) {
            error = "bad value for " + arg + ": " + value;
            return false;
        }
    }
    return true;
}

} // namespace tvx::practice
