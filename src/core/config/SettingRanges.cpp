#include "config/SettingRanges.h"

#include "base/Errors.h"
#include "config/PatternColumns.h"

#include <algorithm>
#include <array>

namespace tvx {
namespace {

using enum OutOfRange;

template <auto Member>
std::int32_t& single(Settings& s, std::size_t)
{
    return s.*Member;
}

template <auto Member>
std::int32_t& perRegion(Settings& s, std::size_t r)
{
    return (s.*Member)[r];
}

template <auto Member>
std::int32_t& region(Settings& s, std::size_t r)
{
    return s.CaptureRegion[r].*Member;
}

template <auto Member>
std::int32_t& cell(Settings& s, std::size_t r)
{
    return s.ReferenceSize[r].*Member;
}

// Geometry out of range means a damaged file: a clamped region or glyph cell would read
// other pixels and report numbers that are not on the screen. Times, counts and
// brightness levels saturate, so their nearest bound is what the player meant.
constexpr SettingRange kRanges[] = {
    {"CaptureRegion(#).StartX", kRegionCount, region<&CaptureRegionRect::StartX>, 0, kMaxScreenSide - 1, Damaged},
    {"CaptureRegion(#).StartY", kRegionCount, region<&CaptureRegionRect::StartY>, 0, kMaxScreenSide - 1, Damaged},
    {"CaptureRegion(#).SizeX", kRegionCount, region<&CaptureRegionRect::SizeX>, 1, kMaxScreenSide, Damaged},
    {"CaptureRegion(#).SizeY", kRegionCount, region<&CaptureRegionRect::SizeY>, 1, kMaxRegionRows, Damaged},
    {"CaptureInterval", 1, single<&Settings::CaptureInterval>, 1, 1440, Clamped},
    {"CaptureBeep", 1, single<&Settings::CaptureBeep>, 0, 5, Clamped},
    {"Lag", 1, single<&Settings::Lag>, 0, 10000, Clamped},
    {"StartDelay", 1, single<&Settings::StartDelay>, 0, 3600, Clamped},
    {"StartUpDelay", 1, single<&Settings::StartUpDelay>, 0, 3600, Clamped},
    {"DoHLInterval", 1, single<&Settings::DoHLInterval>, 100, 60000, Clamped},
    {"GestureTime", 1, single<&Settings::GestureTime>, 100, 10000, Clamped},
    {"MoneyWait", 1, single<&Settings::MoneyWait>, 0, 60000, Clamped},
    {"GraphTimeScale", 1, single<&Settings::GraphTimeScale>, 2, 512, Clamped},
    {"GraphAveNum", 1, single<&Settings::GraphAveNum>, 1, 100, Clamped},
    {"BinaryThreshold(#)", kRegionCount, perRegion<&Settings::BinaryThreshold>, 0, 255, Clamped},
    // Every negative mask switches masking off, as -1 does.
    {"BinaryMask(#)", kRegionCount, perRegion<&Settings::BinaryMask>, -1, 255, Clamped},
    {"ReferenceSize(#).Width", kRegionCount, cell<&ReferenceCellSize::Width>, 1, 64, Damaged},
    // The height is stored and shown but plays no part in matching.
    {"ReferenceSize(#).Height", kRegionCount, cell<&ReferenceCellSize::Height>, 1, kMaxRegionRows, Clamped},
};

constexpr std::array<std::string_view, 4> kSaveFormats{".bmp", ".png", ".jpg70", ".jpg90"};

std::string clampedLine(const std::string& name, const std::string& from, const std::string& to)
{
    return "Setting Out Of Range : " + name + " " + from + " -> " + to + " ";
}

void enforceRange(const SettingRange& range, Settings& settings, std::vector<std::string>& clamped)
{
    for (std::size_t i = 0; i < range.count; ++i) {
        std::int32_t& value = range.field(settings, i);
        if (value >= range.low && value <= range.high)
            continue;
        if (range.rule == Damaged)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                               settingName(range, i) + " = " + std::to_string(value) + " (" + std::to_string(range.low) +
                                   ".." + std::to_string(range.high) + ")");
        const std::int32_t bound = std::clamp(value, range.low, range.high);
        clamped.push_back(clampedLine(settingName(range, i), std::to_string(value), std::to_string(bound)));
        value = bound;
    }
}

// Templates the walk cannot use are kept as the player left them: the region then fails
// where they would be needed rather than losing everything else in the file.
void enforcePatterns(Settings& settings, std::vector<std::string>& clamped)
{
    for (std::size_t r = 0; r < kRegionCount; ++r) {
        const auto width = static_cast<std::size_t>(settings.ReferenceSize[r].Width);
        std::string notWhole;
        for (std::size_t j = 0; j < kPatternCount; ++j) {
            std::string& pattern = settings.PatternStrings[r][j];
            const std::string index = std::to_string(j);
            const auto columns = decodePatternColumns(pattern);
            if (pattern.empty())
                notWhole += " " + index + " empty,";
            else if (!columns)
                notWhole += " " + index + " not hexadecimal columns,";
            else if (columns->size() != width)
                notWhole += " " + index + " " + std::to_string(columns->size()) + " columns,";
            if (!columns || pattern.empty())
                continue;
            std::string upper = encodePatternColumns(*columns);
            if (upper != pattern) {
                clamped.push_back(clampedLine("PatternStrings(" + std::to_string(r + 1) + "," + index + ")", pattern, upper));
                pattern = std::move(upper);
            }
        }
        if (!notWhole.empty()) {
            notWhole.pop_back();
            clamped.push_back("Setting Not Whole : PatternStrings(" + std::to_string(r + 1) + ") width " +
                              std::to_string(width) + " :" + notWhole + " ");
        }
    }
}

void enforceSaveFormat(Settings& settings, std::vector<std::string>& clamped)
{
    if (std::find(kSaveFormats.begin(), kSaveFormats.end(), settings.SaveFormat) != kSaveFormats.end())
        return;
    const std::string fallback = Settings{}.SaveFormat;
    clamped.push_back(clampedLine("SaveFormat", "\"" + settings.SaveFormat + "\"", fallback));
    settings.SaveFormat = fallback;
}

} // namespace

std::span<const SettingRange> settingRanges()
{
    return kRanges;
}

std::string settingName(const SettingRange& range, std::size_t index)
{
    std::string name(range.name);
    if (const std::size_t at = name.find('#'); at != std::string::npos)
        name.replace(at, 1, std::to_string(index + 1));
    return name;
}

std::vector<std::string> enforceSettingRanges(Settings& settings)
{
    std::vector<std::string> clamped;
    for (const SettingRange& range : kRanges)
        enforceRange(range, settings, clamped);
    // After the widths, which the templates are measured against.
    enforcePatterns(settings, clamped);
    enforceSaveFormat(settings, clamped);
    return clamped;
}

} // namespace tvx
