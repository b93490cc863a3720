#pragma once

#include "CsvFields.h"
#include "ReadFile.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "measurement/ExpTable.h"
#include "measurement/SessionHistory.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

// Shared by the end-to-end runs on X11 and under Wine: settings, and records held against what the target drew.
namespace tvx::test {

// Records in CSV under save/log, gestures and the level watch on, a short start-up delay.
inline void writeSessionSettings(const std::filesystem::path& home, const std::filesystem::path& save)
{
    Settings s = defaultSettings(pathUtf8(home));
    s.SaveFolder = pathUtf8(save);
    s.SaveCsv = true;
    s.SaveMonthly = false;
    s.StartDelay = 1;
    s.Gesture = true;
    s.GestureTime = 1500;
    s.DoHLCheckExec = true;
    s.DoHLInterval = 300;
    s.UiLanguage = "ja"; // the log box is read in Japanese, whatever the machine speaks
    std::filesystem::create_directories(save);
    std::ofstream(home / "TV2MConfig.ini", std::ios::binary) << platform::makeTextCodec()->toCp932(configFileText(s));
}

// Level and total experience of every state in the practice target's state file.
inline std::set<std::pair<std::int64_t, std::int64_t>> drawnTotals(const std::filesystem::path& stateFile)
{
    std::set<std::pair<std::int64_t, std::int64_t>> totals;
    std::istringstream in(readAll(stateFile)); // seconds, level, experience, money a line
    for (std::int64_t seconds = 0, level = 0, exp = 0, money = 0; in >> seconds >> level >> exp >> money;)
        totals.insert({level, ExpTable(static_cast<std::int32_t>(level)).wholePart() + exp});
    return totals;
}

// The record lines of the first file in the save folder's log folder, header left out.
inline std::vector<std::string> recordLines(const std::filesystem::path& saveFolder)
{
    std::set<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(saveFolder / "log", error))
        if (entry.path().filename() != utf8Path(kHistoryFileName))
            files.insert(entry.path());
    auto lines = files.empty() ? std::vector<std::string>{} : splitLines(readAll(*files.begin()));
    return lines.empty() ? lines : std::vector<std::string>(lines.begin() + 1, lines.end());
}

// What is wrong with CSV records, one text per fault: each record's level and total must be a drawn state,
// its gain positive and counted from the record before it, which the target drew too.
inline std::vector<std::string> recordFaults(const std::vector<std::string>& records,
                                             const std::set<std::pair<std::int64_t, std::int64_t>>& drawn)
{
    std::vector<std::string> faults;
    std::int64_t previous = -1;
    for (const auto& line : records) {
        const auto f = csvFields(line);
        if (f.size() < 8) {
            faults.push_back("too few fields: " + line);
            continue;
        }
        const std::int64_t level = std::stoll(f[1]), total = std::stoll(f[2]), gain = std::stoll(f[4]);
        if (!drawn.contains({level, total}))
            faults.push_back("not drawn: " + line);
        const auto drawnTotal = [&](const auto& d) { return d.second == total - gain; };
        if (previous >= 0 ? total - gain != previous : std::none_of(drawn.begin(), drawn.end(), drawnTotal))
            faults.push_back("counts from neither the record before nor a drawn total: " + line);
        if (gain <= 0)
            faults.push_back("no gain: " + line);
        previous = total;
    }
    return faults;
}

} // namespace tvx::test
