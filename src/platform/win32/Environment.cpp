#include "Environment.h"

#include <windows.h>

namespace tvx::platform {

namespace {

constexpr const char* kMayFail = "正常に動作しない可能性があります。";

} // namespace

EnvironmentFacts gatherEnvironment()
{
    EnvironmentFacts facts;
    facts.operatingSystem = "Windows";
    SYSTEM_INFO system{};
    GetNativeSystemInfo(&system);
    facts.processorUse = std::to_string(system.dwNumberOfProcessors);
    facts.revision = std::to_string(system.wProcessorRevision);
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof memory;
    if (GlobalMemoryStatusEx(&memory)) {
        facts.freePhysicalBytes = memory.ullAvailPhys;
        facts.availablePhysicalBytes = memory.ullAvailPhys;
        facts.totalPhysicalBytes = memory.ullTotalPhys;
        facts.freeVirtualBytes = memory.ullAvailPageFile;
        facts.totalVirtualBytes = memory.ullTotalPageFile;
    }
    return facts;
}

std::vector<RequiredLibrary> requiredLibraries()
{
    return {
        {"GDI32.dll", kMayFail},   {"user32.dll", kMayFail},   {"gdiplus.dll", kMayFail},
        {"ole32.dll", kMayFail},   {"kernel32.dll", kMayFail}, {"winmm.dll", kMayFail},
        {"shlwapi.dll", kMayFail}, {"comdlg32.dll", kMayFail}, {"shell32.dll", kMayFail},
        {"OLEAUT32.dll", kMayFail},
    };
}

bool canLoadLibrary(const std::string& name)
{
    HMODULE module = LoadLibraryA(name.c_str());
    if (module == nullptr)
        return false;
    FreeLibrary(module);
    return true;
}

} // namespace tvx::platform
