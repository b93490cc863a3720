#pragma once
// What the fuzz targets share: a scratch folder, a prompter that says yes, a reading of every region.
#include "base/Errors.h"
#include "ports/Prompter.h"
#include "recognition/ScreenRecognizer.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace tvx::fuzz {

// A folder of this process's own for targets that touch files, removed at exit.
inline const std::filesystem::path& scratchFolder()
{
    static const std::filesystem::path folder = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "tallivex-fuzz-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            std::abort();
        std::atexit([] {
            std::error_code ec;
            std::filesystem::remove_all(scratchFolder(), ec);
        });
        return std::filesystem::path(pattern);
    }();
    return folder;
}

// Answers every question with yes and OK, and ignores messages.
class YesPrompter final : public Prompter {
public:
    void message(const std::string&, const std::string&) override {}
    bool askYesNo(const std::string&, const std::string&) override { return true; }
    bool askOkCancel(const std::string&, const std::string&) override { return true; }
    double askNumber(const std::string&, const std::string&, double, const std::string&, const std::string&,
                     const std::string&) override
    {
        return kCancelled;
    }
};

// Each region filled, binarised and recognised as a reading would; a region outside the
// picture is a failed reading.
inline void readEveryRegion(ScreenRecognizer& recognizer, const CaptureBitmap& picture)
{
    for (int region = 0; region < kRegionCount; ++region) {
        try {
            recognizer.fill(region, picture);
            recognizer.binarize(region);
            (void)recognizer.recognize(region, true);
        } catch (const RuntimeError&) {
        }
    }
}

} // namespace tvx::fuzz
