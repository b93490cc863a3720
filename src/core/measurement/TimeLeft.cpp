#include "measurement/TimeLeft.h"
#include "base/Language.h"

#include "measurement/ExpTable.h"
#include "measurement/RecordFormat.h"
#include "ports/Prompter.h"
#include "shell/DebugLog.h"
#include "base/Errors.h"
#include "shell/LogBox.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tvx {

std::string timeLeftLine(std::int32_t currentLevel, Currency totalExp, std::int32_t target, double rateK)
{
    if (rateK <= 0)
        rateK = 0.1;
    const float ratePerHour = static_cast<float>(rateK * 1000.0); // single precision, as the old tool kept it
    Currency from = ExpTable(currentLevel);
    if (totalExp > from)
        from = totalExp;
    const Currency needed = ExpTable(target) - from;
    const double hours = needed.toDouble() / static_cast<double>(ratePerHour);
    char hoursText[64];
    std::snprintf(hoursText, sizeof hoursText, "%.2f", hours);
    const std::string kexp = formatNumber(Currency::fromDouble(std::round(needed.toDouble() / 1000.0)), 0, false);
    const std::string level = std::to_string(target);
    return "\r\n  " +
           (hours > 0 ? trFormat("Lv%1まで、あと %2 Kexp、%3時間です", {level, kexp, hoursText})
                      : trFormat("Lv%1まで、かつて %2 Kexp、%3時間です", {level, kexp, hoursText})) +
           "\r\n";
}

void menuTimeLeft_Click(std::int32_t currentLevel, Currency totalExp, Currency latestRate, Prompter& prompter,
                        LogBox& logBox, DebugLog& log)
{
    try {
        log.WriteDebugLog("Click : Leftover Time ");
        if (currentLevel == 200) {
            logBox.write("\r\n" + std::string(tr("Lv200到達 お疲れ様です。あなたがみんなの目標です。")) + "\r\n");
            return;
        }
        if (currentLevel == 199) {
            logBox.write("\r\n" + std::string(tr("Lv200到達まであとひとつ。がんばって！")) + "\r\n");
            return;
        }
        const std::string title = tr("あと何時間？");
        // Before the first reading there is no level to name, and no proposal may lie
        // outside the dialog's own bounds.
        const bool read = currentLevel > 0;
        const std::string now = read ? std::to_string(currentLevel) : std::string(tr("未認識"));
        const double target = prompter.askNumber("1", "200", read ? currentLevel + 1 : 1, "1",
                                                 trFormat("目標Lvを入力してください  (現在:%1)", {now}), title);
        if (target == Prompter::kCancelled)
            return;
        const double rate = prompter.askNumber("0.1", "100000", std::clamp(latestRate.toDouble(), 0.1, 100000.0), "500",
                                               tr("時給Exp(k)を入力してください"), title);
        if (rate == Prompter::kCancelled)
            return;
        logBox.write(timeLeftLine(currentLevel, totalExp, static_cast<std::int32_t>(std::lround(target)), rate));
    } catch (const RuntimeError& error) {
        log.writeErrorTrap("menuTimeLeft_Click", error.number());
    }
}

} // namespace tvx
