#include "Environment.h"

#include "base/Language.h"

#include "Win32Handles.h"
#include "Win32Text.h"

#include <windows.h>
#include <oleauto.h>
#include <wbemidl.h>

#include <cstdio>
#include <functional>
#include <string_view>

namespace tvx::platform {

namespace {

using win32::ComPtr;

constexpr const char* kMayFail = N_("正常に動作しない可能性があります。");

class Bstr {
public:
    explicit Bstr(const wchar_t* text) : m_text(SysAllocString(text)) {}
    ~Bstr() { SysFreeString(m_text); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    BSTR get() const { return m_text; }

private:
    BSTR m_text;
};

class Variant {
public:
    Variant() { VariantInit(&m_value); }
    ~Variant() { VariantClear(&m_value); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    VARIANT* put()
    {
        VariantClear(&m_value);
        return &m_value;
    }
    const VARIANT& get() const { return m_value; }
    VARIANT* ptr() { return &m_value; }

private:
    VARIANT m_value;
};

// One object of a WMI query result.
class WmiObject {
public:
    explicit WmiObject(ComPtr<IWbemClassObject> object) : m_object(std::move(object)) {}

    // Empty for a missing or null property. Numbers come as text too (64-bit values
    // always do in WMI).
    std::string text(const wchar_t* property) const
    {
        Variant value;
        if (FAILED(m_object->Get(property, 0, value.put(), nullptr, nullptr)))
            return {};
        const VARIANT& v = value.get();
        if (v.vt == VT_BSTR)
            return v.bstrVal != nullptr ? win32::utf8(v.bstrVal) : std::string();
        if (v.vt == VT_NULL || v.vt == VT_EMPTY)
            return {};
        Variant converted;
        if (FAILED(VariantChangeType(converted.put(), value.ptr(), 0, VT_BSTR)) || converted.get().bstrVal == nullptr)
            return {};
        return win32::utf8(converted.get().bstrVal);
    }

    std::optional<std::uint64_t> number(const wchar_t* property) const
    {
        Variant value;
        if (FAILED(m_object->Get(property, 0, value.put(), nullptr, nullptr)))
            return std::nullopt;
        const VARIANT& v = value.get();
        switch (v.vt) {
        case VT_I4: // CIM uint32 travels as a signed VT_I4: 4 GB of video memory reads negative
            return static_cast<std::uint32_t>(v.lVal);
        case VT_INT:
            return static_cast<std::uint32_t>(v.intVal);
        case VT_UI4:
            return v.ulVal;
        case VT_I2:
            return static_cast<std::uint16_t>(v.iVal);
        case VT_UI2:
            return v.uiVal;
        case VT_UI1:
            return v.bVal;
        case VT_BSTR: { // CIM uint64
            const std::string digits = v.bstrVal != nullptr ? win32::utf8(v.bstrVal) : std::string();
            if (digits.empty() || digits.size() > 19 || digits.find_first_not_of("0123456789") != std::string::npos)
                return std::nullopt;
            return std::stoull(digits);
        }
        default:
            return std::nullopt;
        }
    }

private:
    ComPtr<IWbemClassObject> m_object;
};

// root\cimv2 on this machine; each query calls back once per object.
class Wmi {
public:
    Wmi()
    {
        if (!m_com.usable())
            return;
        // Fails harmlessly when the program already set its security.
        CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT, RPC_C_IMP_LEVEL_IMPERSONATE,
                             nullptr, EOAC_NONE, nullptr);
        ComPtr<IWbemLocator> locator;
        if (FAILED(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                    reinterpret_cast<void**>(locator.put()))))
            return;
        const Bstr root(L"ROOT\\CIMV2");
        if (FAILED(locator->ConnectServer(root.get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                          m_services.put()))) {
            m_services.reset();
            return;
        }
        CoSetProxyBlanket(m_services.get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_CALL,
                          RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
    }

    bool connected() const { return static_cast<bool>(m_services); }

    // False when the class is unknown here (Wine lacks some) or the query failed.
    bool query(const wchar_t* wql, const std::function<void(const WmiObject&)>& each) const
    {
        if (!m_services)
            return false;
        const Bstr language(L"WQL");
        const Bstr text(wql);
        ComPtr<IEnumWbemClassObject> results;
        if (FAILED(m_services->ExecQuery(language.get(), text.get(),
                                         WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
                                         results.put())))
            return false;
        for (;;) {
            ComPtr<IWbemClassObject> object;
            ULONG returned = 0;
            if (results->Next(static_cast<LONG>(WBEM_INFINITE), 1, object.put(), &returned) != WBEM_S_NO_ERROR ||
                returned == 0)
                break;
            each(WmiObject(std::move(object)));
        }
        return true;
    }

private:
    win32::ComApartment m_com; // first member: COM outlives the pointers below
    ComPtr<IWbemServices> m_services;
};

// "20240131235959.000000+540" as "2024/01/31 23:59:59"; other text as it is.
std::string cimDateTime(const std::string& value)
{
    if (value.size() < 14 || value.find_first_not_of("0123456789") < 14)
        return value;
    return value.substr(0, 4) + "/" + value.substr(4, 2) + "/" + value.substr(6, 2) + " " + value.substr(8, 2) +
           ":" + value.substr(10, 2) + ":" + value.substr(12, 2);
}

std::optional<std::uint64_t> kilobytesToBytes(std::optional<std::uint64_t> kilobytes)
{
    if (!kilobytes)
        return std::nullopt;
    return *kilobytes * 1024;
}

// What the system answers without WMI, kept where WMI has nothing better.
void addSystemInformation(EnvironmentFacts& facts)
{
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
    SYSTEMTIME local{};
    GetLocalTime(&local);
    char now[32];
    std::snprintf(now, sizeof now, "%04u/%02u/%02u %02u:%02u:%02u", local.wYear, local.wMonth, local.wDay, local.wHour,
                  local.wMinute, local.wSecond);
    facts.localTime = now;
}

void keep(std::string& target, std::string value)
{
    if (!value.empty())
        target = std::move(value);
}

void keep(std::optional<std::uint64_t>& target, std::optional<std::uint64_t> value)
{
    if (value)
        target = value;
}

void addWmi(EnvironmentFacts& facts)
{
    const Wmi wmi;
    if (!wmi.connected())
        return;
    bool first = true;
    wmi.query(L"Select * from Win32_OperatingSystem", [&](const WmiObject& os) {
        if (!std::exchange(first, false))
            return;
        keep(facts.operatingSystem, os.text(L"Caption"));
        keep(facts.version, os.text(L"Version"));
        std::string servicePack = os.text(L"CSDVersion");
        if (servicePack.empty() && os.number(L"ServicePackMajorVersion"))
            servicePack = os.text(L"ServicePackMajorVersion") + "." + os.text(L"ServicePackMinorVersion");
        keep(facts.servicePack, servicePack);
        keep(facts.localTime, cimDateTime(os.text(L"LocalDateTime")));
        keep(facts.lastBootTime, cimDateTime(os.text(L"LastBootUpTime")));
        keep(facts.processorUse, os.text(L"OSArchitecture"));
        keep(facts.freePhysicalBytes, kilobytesToBytes(os.number(L"FreePhysicalMemory")));
        keep(facts.totalPhysicalBytes, kilobytesToBytes(os.number(L"TotalVisibleMemorySize")));
        keep(facts.freeVirtualBytes, kilobytesToBytes(os.number(L"FreeVirtualMemory")));
        keep(facts.totalVirtualBytes, kilobytesToBytes(os.number(L"TotalVirtualMemorySize")));
    });
    first = true;
    wmi.query(L"Select * from Win32_Processor", [&](const WmiObject& cpu) {
        if (!std::exchange(first, false))
            return;
        keep(facts.processor, cpu.text(L"Name"));
        keep(facts.revision, cpu.text(L"Revision"));
    });
    wmi.query(L"Select * from Win32_CacheMemory", [&](const WmiObject& cache) {
        if (const auto size = cache.number(L"InstalledSize"))
            facts.caches.emplace_back(cache.text(L"Purpose"), *size);
    });
    first = true;
    wmi.query(L"Select * from Win32_VideoController", [&](const WmiObject& video) {
        if (!std::exchange(first, false))
            return;
        keep(facts.graphicAdapter, video.text(L"Name"));
        keep(facts.adapterRamBytes, video.number(L"AdapterRAM"));
        keep(facts.driverVersion, video.text(L"DriverVersion"));
        keep(facts.graphicMode, video.text(L"VideoModeDescription"));
    });
    first = true;
    wmi.query(L"Select * from Win32_ComputerSystem", [&](const WmiObject& computer) {
        if (!std::exchange(first, false))
            return;
        keep(facts.manufacturer, computer.text(L"Manufacturer"));
        keep(facts.model, computer.text(L"Model"));
    });
}

} // namespace

EnvironmentFacts gatherEnvironment()
{
    EnvironmentFacts facts;
    addSystemInformation(facts);
    addWmi(facts);
    return facts;
}

// The system files in the order players know from the check, each as this 64-bit program
// loads it: the C runtime stands for the program's runtime, and the common controls the
// options window is built on take the ActiveX controls' row. The 32-bit-only files of the
// old runtime (its Japanese resources, ASYCFILT.dll, dx8vb.dll, MSCOMCTL.ocx) cannot be
// loaded by a 64-bit process at all and would warn at every start.
std::vector<RequiredLibrary> requiredLibraries()
{
    return {
        {"GDI32.dll", kMayFail},    {"user32.dll", kMayFail},   {"olepro32.dll", kMayFail},
        {"gdiplus.dll", kMayFail},  {"ole32.dll", kMayFail},    {"kernel32.dll", kMayFail},
        {"winmm.dll", kMayFail},    {"shlwapi.dll", kMayFail},  {"comdlg32.dll", kMayFail},
        {"shell32.dll", kMayFail},  {"msvcrt.dll", kMayFail},   {"OLEAUT32.dll", kMayFail},
        {"COMCAT.dll", kMayFail},   {"scrrun.dll", kMayFail},
        {"COMCTL32.dll", N_("オプションウィンドウを開けない可能性があります。")},
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

std::string systemLocale()
{
    wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
    if (GetUserDefaultLocaleName(name, LOCALE_NAME_MAX_LENGTH) <= 0)
        return {};
    return win32::utf8(name);
}

} // namespace tvx::platform
