// The Windows side of the end-to-end run under Wine (the script beside it starts the
// programs and moves the mouse): a fresh home folder for the meter, and the verdict on
// the records it wrote there.
#include "CommandLine.h"
#include "base/Utf8Path.h"
#include "support/EndToEnd.h"

#include <cstdio>

namespace {

constexpr const char* kUsage = "usage: tallivex_e2e_support prepare HOME | check HOME STATE-FILE MIN-RECORDS\n";

int check(const std::string& home, const std::string& stateFile, const std::string& minimum)
{
    const auto records = tvx::test::recordLines(tvx::utf8Path(home) / "save");
    const auto faults = tvx::test::recordFaults(records, tvx::test::drawnTotals(tvx::utf8Path(stateFile)));
    for (const auto& record : records)
        std::printf("record: %s\n", record.c_str());
    for (const auto& fault : faults)
        std::printf("FAULT: %s\n", fault.c_str());
    if (records.size() < std::stoul(minimum)) {
        std::printf("FAULT: %zu records, %s expected\n", records.size(), minimum.c_str());
        return 1;
    }
    return faults.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const auto args = tvx::platform::commandLineUtf8(argc, argv);
    if (args.size() == 3 && args[1] == "prepare") {
        tvx::test::writeSessionSettings(tvx::utf8Path(args[2]), tvx::utf8Path(args[2]) / "save");
        return 0;
    }
    if (args.size() == 5 && args[1] == "check")
        return check(args[2], args[3], args[4]);
    std::fputs(kUsage, stderr);
    return 2;
}
