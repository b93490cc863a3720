// Any bytes as TV2MConfig.ini, loaded as at start-up: the settings that come out lie within
// their ranges; unusable templates may stay as the player left them and are only named.
#include "FuzzSupport.h"
#include "TextCodecFactory.h"
#include "config/ConfigFile.h"
#include "config/SettingRanges.h"

#include <fstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tvx;
    static const std::unique_ptr<TextCodec> codec = platform::makeTextCodec();
    const std::filesystem::path& folder = fuzz::scratchFolder();
    {
        std::ofstream out(folder / ConfigFile::kFileName, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    Settings settings = defaultSettings(folder.string());
    fuzz::YesPrompter prompter;
    ConfigFile(settings, folder, prompter, *codec).run(ConfigFile::Load);

    Settings checked = settings;
    for (const std::string& line : enforceSettingRanges(checked))
        if (!line.starts_with("Setting Not Whole"))
            std::abort();
    if (!(checked == settings))
        std::abort();
    return 0;
}
