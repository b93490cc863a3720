#pragma once
// What the fuzz targets share: a scratch folder, a prompter that says yes, a reading of every region.
#include "base/Errors.h"
#include "ports/Prompter.h"
#include "recognition/ScreenRecognizer.h"
#include "../support/TempFolder.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace tvx::fuzz {

// A folder of this process's own for targets that touch files, removed at exit.
inline const std::filesystem::path& scratchFolder()
{
    static const test::TempFolder folder;
    return folder.path();
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
