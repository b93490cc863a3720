#include "view/LiveWindowModel.h"

#include "base/Errors.h"
#include "base/Language.h"
#include "base/Utf8Path.h"
#include "measurement/SessionHistory.h"
#include "meter/Meter.h"

#include <fstream>
#include <system_error>

namespace tvx {
namespace {

bool sameFile(const std::filesystem::path& a, const std::filesystem::path& b)
{
    std::error_code error;
    if (std::filesystem::equivalent(a, b, error))
        return true;
    // Neither exists yet, or one: compare where they would be.
    const std::filesystem::path left = std::filesystem::weakly_canonical(a, error);
    if (error)
        return false;
    const std::filesystem::path right = std::filesystem::weakly_canonical(b, error);
    return !error && left == right;
}

} // namespace

LiveView meterLiveView(Meter& meter)
{
    const MeasurementSession& session = meter.session();
    const Settings& settings = meter.settings();
    return liveView(session.live().figures(),
                    LiveContext{session.running(), session.Suspended, settings.StallAlarm, settings.NextLevelWindow});
}

std::string compactOpacityCaption(std::int32_t percent)
{
    return trFormat("不透明度 %1％", {std::to_string(percent)});
}

HistoryWindowData openHistoryWindow(const std::filesystem::path& historyFile)
{
    HistoryWindowData data;
    try {
        data.rows = loadHistory(historyFile);
    } catch (const RuntimeError&) {
        data.error = crlf(trFormat("セッション履歴のファイルを読み込めません。\n%1\nこのファイルには手を付けていません。",
                                   {pathUtf8(historyFile)}));
    }
    data.tables = {historySessions(data.rows), historyDays(data.rows), historyWeeks(data.rows)};
    return data;
}

std::optional<std::string> exportHistory(const std::vector<HistoryRow>& rows, const std::filesystem::path& target,
                                         const std::filesystem::path& historyFile)
{
    if (sameFile(target, historyFile))
        return crlf(tr("セッション履歴のファイルそのものには書き出せません。\n"
                       "別の名前か別の場所を選んでください。"));
    const std::string csv = historyCsv(rows);
    // Written beside it and renamed over it: a failed write leaves the old file as it was.
    std::filesystem::path temporary = target;
    temporary += ".new";
    std::error_code error;
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(csv.data(), static_cast<std::streamsize>(csv.size()));
        out.close();
        if (!out)
            error = std::make_error_code(std::errc::io_error);
    }
    if (!error)
        std::filesystem::rename(temporary, target, error);
    if (!error)
        return std::nullopt;
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    return crlf(trFormat("CSVファイルを書き込めません。\n%1", {pathUtf8(target)}));
}

} // namespace tvx
