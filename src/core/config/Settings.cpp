#include "config/Settings.h"

#include "base/Language.h"

namespace tvx {

std::string programName(std::string_view searchWindowName)
{
    return "Tallivex  for " + std::string(searchWindowName);
}

std::string programTitle(std::string_view searchWindowName)
{
    return programName(searchWindowName) + "    " + std::string(kVersionText);
}

const std::array<PatternSet, kRegionCount>& defaultPatternStrings()
{
    // Column groups of each glyph, left column first: bit y of a group is row y of the cell.
    static const std::array<PatternSet, kRegionCount> patterns{{
        {   // level: bold seven-column digits; the delimiter is three full columns
            "007C00FE00820082008200FE007C", "00000000000400FE00FE00000000", "00C400E600B200920092009E008C",
            "004400C600920092009200FE006C", "00300038002C002600FE00FE0020", "004E00DE00920092009200F20062",
            "007C00FE00920092009200F60064", "0002000200C200F2003A000E0006", "006C00FE00920092009200FE006C",
            "004C00DE00920092009200FE007C", "01FF01FF01FF0000000000000000",
        },
        {   // experience: thin five-column digits; the delimiter is the bracket after the figure
            "007C008200820082007C", "0000000400FE00000000", "008400C200A20092008C", "0044008200920092006C",
            "00300028002400FE0020", "004E0092009200920062", "007C0092009200920064", "0002000200C20022001E",
            "006C009200920092006C", "004C009200920092007C", "000001FF010100000000",
        },
        {   // money: drawn inverted, ink around the strokes; the delimiter is five full columns
            "01FF010100FE00FE00FE00FE0101", "01FF01FF00FD00FD000000FF00FF", "01FF007D00BE00DE00DE00EE00F1",
            "01FF017D00FE00EE00EE00EE0111", "01FF01CF01D701DB01DD000001DF", "01FF017000F600F600F600F6010E",
            "01FF010300F500F600F600F6010F", "01FF01FE00FE013E01CE01F201FC", "01FF011100EE00EE00EE00EE0111",
            "01FF01E100DE00DE00DE015E0181", "01FF01FF01FF01FF01FF00000000",
        },
    }};
    return patterns;
}

std::array<CaptureRegionRect, kRegionCount> defaultCaptureRegions(ScreenMode mode)
{
    // A window adds its border (3) and title bar (22) to the full-screen positions.
    const std::int32_t dx = mode == ScreenMode::Window ? 3 : 0;
    const std::int32_t dy = mode == ScreenMode::Window ? 22 : 0;
    return {{
        {35 + dx, 578 + dy, 50, 9},
        {463 + dx, 570 + dy, 90, 9},
        {0 + dx, 269 + dy, 146, 9},
    }};
}

void resetRecognitionDefaults(Settings& settings, ScreenMode mode)
{
    const Settings fresh;
    settings.CaptureRegion = defaultCaptureRegions(mode);
    settings.BinaryThreshold = fresh.BinaryThreshold;
    settings.BinaryMask = fresh.BinaryMask;
    settings.ReferenceSize = fresh.ReferenceSize;
    settings.PatternStrings = defaultPatternStrings();
    settings.Reading = fresh.Reading;
}

void restoreDefaults(Settings& settings, std::string_view programFolder, ScreenMode mode)
{
    const std::string windowName = settings.SearchWindowName;
    settings = Settings{};
    settings.SaveFolder = programFolder;
    settings.SearchWindowName = windowName;
    resetRecognitionDefaults(settings, mode);
}

Settings defaultSettings(std::string_view programFolder, ScreenMode mode)
{
    Settings settings;
    restoreDefaults(settings, programFolder, mode);
    return settings;
}

void applyLanguage(Settings& settings, std::string_view systemLocale)
{
    const Language language = languageFromCode(settings.UiLanguage).value_or(languageOfLocale(systemLocale));
    settings.UiLanguage = languageCode(language);
    setLanguage(language);
}

} // namespace tvx
