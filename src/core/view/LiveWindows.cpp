#include "view/LiveWindows.h"

#include "base/Errors.h"
#include "base/Utf8Path.h"
#include "measurement/SessionHistory.h"
#include "meter/Meter.h"
#include "view/HistoryView.h"

#include <fstream>
#include <system_error>

namespace tvx {
namespace {

constexpr std::string_view kLineBreak = "\r\n";

bool sameFile(const std::filesystem::path& a, const std::filesystem::path& b)
{
    std::error_code errorA;
    std::error_code errorB;
    if (std::filesystem::equivalent(a, b, errorA))
        return true;
    // The target may not exist yet; its spelled-out path still says where it would go.
    const auto canonicalA = std::filesystem::weakly_canonical(a, errorA);
    const auto canonicalB = std::filesystem::weakly_canonical(b, errorB);
    return !errorA && !errorB && canonicalA == canonicalB;
}

} // namespace

LiveView meterLiveView(Meter& meter)
{
    MeasurementSession& session = meter.session();
    const Settings& settings = meter.settings();
    return liveView(session.live().figures(),
                    {session.running(), session.Suspended, settings.StallAlarm, settings.NextLevelWindow});
}

std::string compactOpacityCaption(std::int32_t percent)
{
    return "不透明度 " + std::to_string(percent) + "％";
}

HistoryLoad loadHistoryForWindow(const std::filesystem::path& historyFile)
{
    try {
        return {loadHistory(historyFile), std::nullopt};
    } catch (const std::exception&) {
        return {{},
                "セッション履歴のファイルを読み込めません。" + std::string(kLineBreak) + pathUtf8(historyFile) +
                    std::string(kLineBreak) + "このファイルには手を付けずに、履歴を空で表示します。"};
    }
}

std::optional<std::string> exportHistory(const std::filesystem::path& target, const std::filesystem::path& historyFile,
                                         const std::vector<HistoryRow>& rows)
{
    const std::string where = std::string(kLineBreak) + pathUtf8(target) + std::string(kLineBreak);
    if (sameFile(target, historyFile))
        return "セッション履歴のファイルそのものには書き出せません。" + where + "別の名前か場所を選んでください。";
    const std::string csv = historyCsv(rows);
    // Written beside it and renamed over it: a failed export leaves an older file whole.
    std::filesystem::path temporary = target;
    temporary += ".new";
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    out.write(csv.data(), static_cast<std::streamsize>(csv.size()));
    out.close();
    std::error_code error;
    if (out)
        std::filesystem::rename(temporary, target, error);
    if (out && !error)
        return std::nullopt;
    std::filesystem::remove(temporary, error);
    return "CSVファイルに書き込めません。" + where + "保存場所を確かめてください。";
}

} // namespace tvx
