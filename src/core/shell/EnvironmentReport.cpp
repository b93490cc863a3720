#include "shell/EnvironmentReport.h"

#include "base/Language.h"
#include "measurement/RecordFormat.h"
#include "ports/Prompter.h"
#include "shell/DebugLog.h"

namespace tvx {

namespace {

constexpr std::string_view kMain = "　　";     // two ideographic spaces
constexpr std::string_view kSub = "　　　";     // three
constexpr std::string_view kSubSub = "　　　　"; // four

struct Label {
    const char* english;
    const char* japanese;
};

// An item the system says nothing about is left out rather than shown empty.
std::string item(std::string_view indent, const Label& label, bool forPlayer, const std::string& value)
{
    if (value.find_first_not_of(' ') == std::string::npos)
        return "";
    return std::string(indent) + (forPlayer ? tr(label.japanese) : label.english) + " : " + value + "\r\n";
}

// Without a total (a machine without swap has none) there is nothing to tell.
std::string freeOfTotal(std::optional<std::uint64_t> free, std::optional<std::uint64_t> total)
{
    if (!free || !total || *total == 0)
        return "";
    return groupedAmount(free, "") + "/ " + groupedAmount(total, "Byte");
}

} // namespace

std::string groupedAmount(std::optional<std::uint64_t> value, const std::string& unit)
{
    if (!value)
        return "";
    const std::string number = *value == 0 ? "" : formatNumber(Currency::fromInt(static_cast<std::int64_t>(*value)), 0, false);
    return number + " " + unit;
}

std::string ReportEnvironment(const EnvironmentFacts& f, bool forPlayer)
{
    std::string text = forPlayer ? std::string(tr("実行環境情報")) + "\r\n" : "";
    text += item(kMain, {"OperatingSystem", N_("オペレーティングシステム")}, forPlayer, f.operatingSystem);
    text += item(kSub, {"Version", N_("バージョン")}, forPlayer, f.version);
    text += item(kSub, {"ServicePack", N_("サービスパック")}, forPlayer, f.servicePack);
    text += item(kSub, {"NowLocalTime", N_("経過時間")}, forPlayer, f.localTime);
    text += item(kSub, {"LastBootTime", N_("起動時間")}, forPlayer, f.lastBootTime);
    text += item(kSub, {"ProcessorUse", N_("使用プロセッサ")}, forPlayer, f.processorUse);
    text += item(kSub, {"FreePhysicalMemory", N_("物理メモリ 空き/最大")}, forPlayer,
                 freeOfTotal(f.freePhysicalBytes, f.totalPhysicalBytes));
    text += item(kSub, {"FreeVirtualMemory", N_("仮想メモリ 空き/最大")}, forPlayer,
                 freeOfTotal(f.freeVirtualBytes, f.totalVirtualBytes));
    text += item(kMain, {"Processor", N_("プロセッサ")}, forPlayer, f.processor);
    text += item(kSub, {"Revision", N_("リビジョン")}, forPlayer, f.revision);
    if (f.caches.empty())
        text += item(kSub, {"CacheMemory", N_("キャッシュメモリ")}, forPlayer, "NONE");
    for (const auto& [purpose, kilobytes] : f.caches)
        text += item(kSub, {"CacheMemory", N_("キャッシュメモリ")}, forPlayer,
                     purpose + " = " + groupedAmount(kilobytes, "kByte"));
    text += item(kMain, {"GraphicAdapter", N_("グラフィックアダプタ")}, forPlayer, f.graphicAdapter);
    text += item(kSubSub, {"AdapterRAM", N_("グラフィックメモリ")}, forPlayer, groupedAmount(f.adapterRamBytes, "Byte"));
    text += item(kSubSub, {"DriverVersion", N_("ドライババージョン")}, forPlayer, f.driverVersion);
    text += item(kSubSub, {"GraphicMode", N_("画面設定")}, forPlayer, f.graphicMode);
    text += item(kMain, {"Manufacturer", N_("製造メーカー")}, forPlayer, f.manufacturer);
    text += item(kSub, {"Model", N_("モデル名")}, forPlayer, f.model);
    return text;
}

void WriteOperatingInformation(const EnvironmentFacts& facts, DebugLog& log)
{
    log.WriteDebugLog("OperatingInformation");
    // The log ends each line itself.
    std::string report = ReportEnvironment(facts, false);
    if (report.ends_with("\r\n"))
        report.resize(report.size() - 2);
    log.WriteDebugLog(report);
    std::string available = std::string(kMain) + "Available Physical Memory";
    if (facts.availablePhysicalBytes) {
        const auto kilobytes = static_cast<std::int64_t>(*facts.availablePhysicalBytes / 1024);
        available += FormatField(Currency::fromInt(kilobytes), 11, 1, 0, false) + "kByte  ";
        if (facts.totalPhysicalBytes && *facts.totalPhysicalBytes > 0)
            available += std::to_string(*facts.availablePhysicalBytes * 100 / *facts.totalPhysicalBytes) + "%";
    }
    log.WriteDebugLog(available);
}

void reportMissingLibrary(const RequiredLibrary& library, Prompter& prompter, DebugLog& log)
{
    log.WriteDebugLog("System File of " + library.name + " is Not Find ");
    prompter.message(crlf(trFormat("%1 ファイルが見つかりませんでした。\n%2\n"
                                   "お手数ですが、必要なランタイムをインストールしてから再度起動してください。",
                                   {library.name, tr(library.warning)})),
                     tr("ライブラリファイルチェック"));
}

void reportSystemFileResult(bool allFound, DebugLog& log)
{
    log.WriteDebugLog(allFound ? "Result of System File Check : No Problem "
                               : "Result of System File Check : A missing item ");
}

} // namespace tvx
