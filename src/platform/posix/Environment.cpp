#include "Environment.h"

#include "base/Language.h"

#include <dlfcn.h>
#include <sys/sysinfo.h>
#include <sys/utsname.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace tvx::platform {

namespace {

constexpr const char* kMayFail = N_("正常に動作しない可能性があります。");

std::string firstLine(const std::filesystem::path& path)
{
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    return line;
}

// "KEY=value" files such as os-release, quotes removed.
std::map<std::string, std::string> keyValues(const std::filesystem::path& path)
{
    std::map<std::string, std::string> values;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        const auto eq = line.find('=');
        if (eq == std::string::npos)
            continue;
        std::string value = line.substr(eq + 1);
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
            value = value.substr(1, value.size() - 2);
        values[line.substr(0, eq)] = value;
    }
    return values;
}

// "key : value" lines of /proc files; the first occurrence wins.
std::map<std::string, std::string> procFields(const char* path)
{
    std::map<std::string, std::string> fields;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        const auto colon = line.find(':');
        if (colon == std::string::npos)
            continue;
        std::string key = line.substr(0, colon);
        key.erase(key.find_last_not_of(" \t") + 1);
        std::string value = line.substr(colon + 1);
        value.erase(0, value.find_first_not_of(" \t"));
        fields.emplace(key, value);
    }
    return fields;
}

std::optional<std::uint64_t> kilobytes(const std::map<std::string, std::string>& fields, const char* key)
{
    const auto it = fields.find(key);
    if (it == fields.end())
        return std::nullopt;
    return std::stoull(it->second) * 1024;
}

std::string timeText(std::time_t t)
{
    char text[32];
    std::tm local{};
    localtime_r(&t, &local);
    std::strftime(text, sizeof text, "%Y/%m/%d %H:%M:%S", &local);
    return text;
}

void addCaches(EnvironmentFacts& facts)
{
    const std::filesystem::path root = "/sys/devices/system/cpu/cpu0/cache";
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(root, error)) {
        if (!entry.path().filename().string().starts_with("index"))
            continue;
        const std::string size = firstLine(entry.path() / "size"); // "32K"
        if (size.empty())
            continue;
        std::uint64_t kb = std::stoull(size);
        if (size.back() == 'M')
            kb *= 1024;
        facts.caches.emplace_back("L" + firstLine(entry.path() / "level") + " " + firstLine(entry.path() / "type"), kb);
    }
}

// The makers of most graphics adapters by PCI vendor number; others keep the number.
std::string pciVendor(const std::string& id)
{
    static const std::map<std::string, std::string> names{
        {"0x8086", "Intel"}, {"0x10de", "NVIDIA"}, {"0x1002", "AMD"}, {"0x1af4", "Virtio"}, {"0x15ad", "VMware"},
        {"0x1234", "QEMU"}, {"0x80ee", "VirtualBox"}};
    const auto it = names.find(id);
    return it == names.end() ? id : it->second;
}

void addGraphics(EnvironmentFacts& facts)
{
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/drm", error)) {
        const auto device = entry.path() / "device";
        const std::string driver = std::filesystem::read_symlink(device / "driver", error).filename().string();
        if (error || driver.empty())
            continue;
        facts.graphicAdapter = pciVendor(firstLine(device / "vendor")) + " " + firstLine(device / "device") + " (" + driver + ")";
        facts.driverVersion = firstLine("/sys/module/" + driver + "/version");
        break;
    }
    if (const char* display = std::getenv("DISPLAY"))
        facts.graphicMode = std::string("X11 ") + display;
}

} // namespace

EnvironmentFacts gatherEnvironment()
{
    EnvironmentFacts facts;
    const auto release = keyValues("/etc/os-release");
    facts.operatingSystem = release.contains("PRETTY_NAME") ? release.at("PRETTY_NAME") : "Linux";
    utsname names{};
    if (uname(&names) == 0) {
        facts.version = std::string(names.sysname) + " " + names.release;
        facts.processorUse = names.machine;
    }
    // Linux has no service packs; the distribution's version is in its name already.
    const std::time_t now = std::time(nullptr);
    facts.localTime = timeText(now);
    struct sysinfo info {};
    if (sysinfo(&info) == 0)
        facts.lastBootTime = timeText(now - info.uptime);
    const auto memory = procFields("/proc/meminfo");
    facts.freePhysicalBytes = kilobytes(memory, "MemFree");
    facts.totalPhysicalBytes = kilobytes(memory, "MemTotal");
    facts.availablePhysicalBytes = kilobytes(memory, "MemAvailable");
    facts.freeVirtualBytes = kilobytes(memory, "SwapFree");
    facts.totalVirtualBytes = kilobytes(memory, "SwapTotal");
    const auto cpu = procFields("/proc/cpuinfo");
    facts.processor = cpu.contains("model name") ? cpu.at("model name") : "";
    facts.revision = cpu.contains("stepping") ? "Stepping " + cpu.at("stepping") : "";
    addCaches(facts);
    addGraphics(facts);
    // DMI where the firmware offers it (not in most containers); the board when the
    // system fields are empty, as on self-built machines.
    const std::filesystem::path dmi = "/sys/class/dmi/id";
    facts.manufacturer = firstLine(dmi / "sys_vendor");
    if (facts.manufacturer.empty())
        facts.manufacturer = firstLine(dmi / "board_vendor");
    facts.model = firstLine(dmi / "product_name");
    if (facts.model.empty())
        facts.model = firstLine(dmi / "board_name");
    return facts;
}

std::vector<RequiredLibrary> requiredLibraries()
{
    return {
        {"libstdc++.so.6", kMayFail},
        {"libQt6Core.so.6", kMayFail},
        {"libQt6Gui.so.6", kMayFail},
        {"libQt6Widgets.so.6", N_("オプションウィンドウを開けない可能性があります。")},
        {"libxcb.so.1", kMayFail},
        {"libfontconfig.so.1", N_("ダイアログメッセージの表示が日本語バケする可能性があります。")},
    };
}

bool canLoadLibrary(const std::string& name)
{
    void* handle = dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle == nullptr)
        handle = dlopen(name.c_str(), RTLD_LAZY);
    if (handle == nullptr)
        return false;
    dlclose(handle);
    return true;
}

std::string systemLocale()
{
    // The order the C library itself takes them in for messages.
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(name); value != nullptr && *value != '\0')
            return value;
    return {};
}

} // namespace tvx::platform
