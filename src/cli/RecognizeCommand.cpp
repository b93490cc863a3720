#include "RecognizeCommand.h"

#include "CliImage.h"
#include "CliSettings.h"
#include "HomeFolder.h"
#include "Json.h"

#include "recognition/CaptureFile.h"
#include "recognition/ScreenRecognizer.h"
#include "base/Errors.h"
#include "base/Utf8Path.h"

#include <array>
#include <optional>
#include <ostream>

namespace tvx::cli {
namespace {

constexpr std::array<const char*, kRegionCount> kRegionNames{"level", "exp", "money"};

constexpr const char* kUsage = "usage: tallivex-cli recognize [--window-mode] [--trace] [--home DIR [--yes|--no]] "
                                "IMAGE...\n";

struct Options {
    bool trace = false;
    std::optional<std::filesystem::path> home;
    CliAnswers answers;
    std::vector<std::string> images;
};

bool parseOptions(const std::vector<std::string>& args, Options& options, std::ostream& err)
{
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--window-mode")
            options.answers.screen = ScreenMode::Window;
        else if (arg == "--trace")
            options.trace = true;
        else if (arg == "--home" && i + 1 < args.size())
            options.home = utf8Path(args[++i]);
        else if (parseCliAnswer(arg, options.answers))
            continue;
        else if (arg.starts_with("--")) {
            err << "tallivex-cli recognize: unknown option " << arg << '\n';
            return false;
        } else
            options.images.push_back(arg);
    }
    if (options.images.empty()) {
        err << kUsage;
        return false;
    }
    return true;
}

// Reads one image into `bitmap`, whose buffer serves every image; false when the file
// itself could not be used.
bool recognizeImage(const std::string& image, const Options& options, ScreenRecognizer& recognizer,
                    CaptureBitmap& bitmap, std::ostream& out, std::ostream& err)
{
    if (!loadCliImage(utf8Path(image), bitmap, err))
        return false;

    bool usable = true;
    std::array<std::string, kRegionCount> values{"-1", "-1", "-1"};
    for (int region = 0; region < kRegionCount; ++region) {
        try {
            recognizer.fill(region, bitmap);
            recognizer.binarize(region);
            const RecognitionResult result = recognizer.recognize(region, options.trace);
            for (const std::string& line : result.trace)
                err << line << '\n';
            if (region == RegionLevel)
                values[0] = std::to_string(levelFromText(result.digits));
            else
                values[static_cast<std::size_t>(region)] = amountFromText(result.digits).toString();
        } catch (const RuntimeError& error) {
            err << image << ": " << kRegionNames[static_cast<std::size_t>(region)] << " region: error "
                << static_cast<int>(error.number()) << " (" << error.what() << ")\n";
            if (error.number() == ErrorNumber::SubscriptOutOfRange)
                usable = false;
        }
    }
    out << "{\"file\":" << jsonString(image) << ",\"level\":" << values[0] << ",\"exp\":" << values[1]
        << ",\"money\":" << values[2] << "}\n";
    return usable;
}

} // namespace

int runRecognize(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    Options options;
    if (!parseOptions(args, options, err))
        return 1;
    // With a home folder its configuration decides; --window-mode then only answers the
    // screen question should the file have to be made afresh.
    const auto home = options.home ? cliHomeFolder(options.home, err) : std::nullopt;
    if (options.home && !home)
        return 2;
    const Settings settings =
        home ? loadCliSettings(*home, options.answers, err) : defaultSettings("", options.answers.screen);
    ScreenRecognizer recognizer(settings);
    CaptureBitmap bitmap;
    int status = 0;
    for (const std::string& image : options.images) {
        if (!recognizeImage(image, options, recognizer, bitmap, out, err))
            status = 2;
    }
    return status;
}

} // namespace tvx::cli
