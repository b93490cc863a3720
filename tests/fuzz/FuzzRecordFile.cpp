// The hourly record file with any content, base name, stamp and lines appended: only
// RuntimeError may leave WriteRecordLine, and an appended line ends the file whole.
#include "FuzzSupport.h"
#include "TextCodecFactory.h"
#include "measurement/RecordFile.h"
#include "../support/ReadFile.h"

#include <algorithm>
#include <fstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tvx;
    // The name stays inside the scratch folder: no separators, no parent steps.
    const auto plainName = [](std::string name) {
        std::replace_if(name.begin(), name.end(), [](char c) { return c == '/' || c == '\\' || c == '\0'; }, '_');
        return name;
    };
    static const std::unique_ptr<TextCodec> codec = platform::makeTextCodec();
    FuzzedDataProvider in(data, size);
    Settings settings = defaultSettings(fuzz::scratchFolder().string());
    settings.SaveFile = plainName(in.ConsumeRandomLengthString(300));
    settings.SaveCsv = in.ConsumeBool();
    settings.SaveMonthly = in.ConsumeBool();
    const std::string stamp = plainName(in.ConsumeRandomLengthString(14));
    const std::filesystem::path log = fuzz::scratchFolder() / "log";
    std::error_code ec;
    std::filesystem::remove_all(log, ec);
    if (in.ConsumeBool()) {
        std::filesystem::create_directories(log, ec);
        std::ofstream(recordFilePath(settings, stamp), std::ios::binary) << in.ConsumeRandomLengthString(256);
    }
    RecordFile records(settings, codec.get());
    while (in.remaining_bytes() > 0) {
        const int mode = in.ConsumeBool() ? RecordFile::kStart : RecordFile::kAppend;
        const std::string text = in.ConsumeRandomLengthString(128);
        try {
            records.WriteRecordLine(stamp, text, mode);
        } catch (const RuntimeError&) {
            return 0;
        }
        // An ASCII line appended to a file lands whole at its end.
        const bool ascii = std::all_of(text.begin(), text.end(), [](char c) { return c > 0 && c != '\r' && c != '\n'; });
        if (mode == RecordFile::kAppend && ascii && !stamp.empty()) {
            const std::string file = test::readAll(recordFilePath(settings, stamp));
            if (!file.ends_with("\r\n"))
                std::abort();
        }
    }
    return 0;
}
