#include "measurement/RandomTools.h"
#include "base/Language.h"

#include "ports/Prompter.h"
#include "shell/DebugLog.h"
#include "shell/LogBox.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace tvx {

namespace {

// The number from the input dialog, or nothing on cancel.
std::optional<std::int32_t> askWhole(Prompter& prompter, const std::string& title, const std::string& prompt,
                                     const std::string& upper, double proposed)
{
    const double value = prompter.askNumber("2", upper, proposed, "1", prompt, title);
    if (value == Prompter::kCancelled)
        return std::nullopt;
    return static_cast<std::int32_t>(std::lround(value));
}

} // namespace

std::int32_t RandomInt(Rnd& rnd, std::int32_t range, std::int32_t base)
{
    return static_cast<std::int32_t>(std::floor(rnd.next() * range + base));
}

std::string RandomSequence(Rnd& rnd, std::int32_t count, std::int32_t base, int perLine, int indent)
{
    std::string text = "  " +
                       trFormat("%1 ～ %2 の範囲の乱数列は以下のとおりです", {std::to_string(base), std::to_string(count)}) +
                       "\r\n";
    const std::string indentText(static_cast<std::size_t>(std::max(indent, 0)), ' ');
    std::vector<bool> drawn(static_cast<std::size_t>(std::max(count, 0)), false);
    text += indentText;
    for (std::int32_t position = 1; position <= count; ++position) {
        std::int32_t number = 0;
        do { // drawing again until a new number comes up, deliberately
            number = RandomInt(rnd, count, base);
        } while (drawn[static_cast<std::size_t>(number - base)]);
        drawn[static_cast<std::size_t>(number - base)] = true;
        const std::string digits = std::to_string(number);
        text += std::string(digits.size() < 5 ? 5 - digits.size() : 0, ' ') + digits;
        if (position % perLine == 0 && position < count)
            text += "\r\n" + indentText;
    }
    return text + "\r\n";
}

void menuRandomOne_Click(Prompter& prompter, LogBox& logBox, DebugLog& log, Rnd& rnd)
{
    log.WriteDebugLog("Click : RandomOne ");
    const auto limit = askWhole(prompter, tr("らんだまーオンリーONE"), tr("乱数の上限値を入力してください"), "32000", 10);
    if (!limit)
        return;
    const std::int32_t r = RandomInt(rnd, *limit, 1);
    logBox.write("\r\n  " +
                 trFormat("1 ～ %1 の範囲で、今回の乱数は %2 です", {std::to_string(*limit), std::to_string(r)}) +
                 "\r\n");
}

void menuRandomSome_Click(Prompter& prompter, LogBox& logBox, DebugLog& log, Rnd& rnd)
{
    log.WriteDebugLog("Click : RandomSome ");
    const auto count = askWhole(prompter, tr("らんだまーステキなサムシング"), tr("乱数の個数を入力してください"), "128", 6);
    if (!count)
        return;
    logBox.write("\r\n" + RandomSequence(rnd, *count, 1, 10, 4));
}

} // namespace tvx
