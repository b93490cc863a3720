#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tvx {

class DebugLog;
class Prompter;

// What the platform tells about the machine; empty texts and missing numbers are shown
// as they are.
struct EnvironmentFacts {
    std::string operatingSystem;
    std::string version;
    std::string servicePack;
    std::string localTime;
    std::string lastBootTime;
    std::string processorUse;
    std::optional<std::uint64_t> freePhysicalBytes, totalPhysicalBytes;
    std::optional<std::uint64_t> freeVirtualBytes, totalVirtualBytes;
    std::string processor;
    std::string revision;
    std::vector<std::pair<std::string, std::uint64_t>> caches; // purpose, size in kB
    std::string graphicAdapter;
    std::optional<std::uint64_t> adapterRamBytes;
    std::string driverVersion;
    std::string graphicMode;
    std::string manufacturer;
    std::string model;
    std::optional<std::uint64_t> availablePhysicalBytes;
};

// The operating-environment report, one item per line (CR LF), labels in English for the
// debug log or in the player's language for the log box.
std::string ReportEnvironment(const EnvironmentFacts& facts, bool forPlayer);

// The report of the unload handler, to the debug log.
void WriteOperatingInformation(const EnvironmentFacts& facts, DebugLog& log);

// One library the program needs and what goes wrong without it.
struct RequiredLibrary {
    std::string name;
    std::string warning; // Japanese, marked for the catalogue; shown in the player's language
};

// Tries each library, tells the player of every missing one and logs the result.
// canLoad answers whether the system can load a library by its bare name.
template <typename CanLoad>
bool CheckSystemFiles(const std::vector<RequiredLibrary>& libraries, CanLoad canLoad, Prompter& prompter,
                      DebugLog& log);

// "#,###" with the unit behind a blank; "" for a missing number.
std::string groupedAmount(std::optional<std::uint64_t> value, const std::string& unit);

void reportMissingLibrary(const RequiredLibrary& library, Prompter& prompter, DebugLog& log);
void reportSystemFileResult(bool allFound, DebugLog& log);

template <typename CanLoad>
bool CheckSystemFiles(const std::vector<RequiredLibrary>& libraries, CanLoad canLoad, Prompter& prompter,
                      DebugLog& log)
{
    bool allFound = true;
    for (const RequiredLibrary& library : libraries) {
        if (canLoad(library.name))
            continue;
        allFound = false;
        reportMissingLibrary(library, prompter, log);
    }
    reportSystemFileResult(allFound, log);
    return allFound;
}

} // namespace tvx
