#include "LearnCommand.h"

#include "CliSettings.h"
#include "HomeFolder.h"
#include "Json.h"
#include "SystemClock.h"
#include "TextCodecFactory.h"

#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "recognition/RegionLearner.h"
#include "shell/DebugLog.h"

#include <array>
#include <optional>
#include <ostream>

namespace tvx::cli {
namespace {

constexpr std::array<const char*, kRegionCount> kRegionNames{"level", "exp", "money"};

constexpr const char* kUsage =
    "usage: tallivex-cli learn --home DIR [--window-mode] IMAGE LEVEL EXP MONEY [IMAGE LEVEL EXP MONEY ...]\n"
    "       (\"-\" in place of a number skips that region)\n";

constexpr std::size_t kGroup = 1 + kRegionCount;

struct Options {
    std::optional<std::filesystem::path> home;
    CliAnswers answers;
    std::vector<std::string> groups; // image, level, exp, money, image, ...
};

bool parseOptions(const std::vector<std::string>& args, Options& options, std::ostream& err)
{
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--window-mode")
            options.answers.screen = ScreenMode::Window;
        else if (arg == "--home" && i + 1 < args.size())
            options.home = utf8Path(args[++i]);
        else if (parseCliAnswer(arg, options.answers))
            continue;
        else if (arg.starts_with("--")) {
            err << "tallivex-cli learn: unknown option " << arg << '\n' << kUsage;
            return false;
        } else
            options.groups.push_back(arg);
    }
    if (options.groups.empty() || options.groups.size() % kGroup != 0) {
        err << kUsage;
        return false;
    }
    return true;
}

std::string glyphName(int glyph)
{
    if (glyph == kEndMarkGlyph)
        return "the end mark";
    if (glyph == kSeparatorGlyph)
        return "the thousands separator";
    return "the digit " + std::to_string(glyph);
}

std::string describeRefusal(const LearnOutcome& outcome, std::size_t digits)
{
    switch (outcome.refusal) {
    case LearnRefusal::None: return "learnt";
    case LearnRefusal::NotANumber: return "not a number";
    case LearnRefusal::OutsideImage: return "the region lies outside the image";
    case LearnRefusal::NoSplit:
        return "the ink does not split into " + std::to_string(digits) + " digits and an end mark of one width";
    case LearnRefusal::Contradiction:
        if (outcome.glyph < 0)
            return "its glyphs are " + std::to_string(outcome.imageWidth) + " columns wide, those learnt before " +
                   std::to_string(outcome.learntWidth);
        return glyphName(outcome.glyph) + " differs from the one learnt before";
    case LearnRefusal::ReadBack:
        return "the templates would read it as " + (outcome.readBack.empty() ? "nothing" : outcome.readBack);
    }
    return "refused";
}

std::string regionJson(const RegionLearner& learner)
{
    std::string learnt;
    for (int d = 0; d < 10; ++d)
        if (learner.seen(d))
            learnt += static_cast<char>('0' + d);
    const std::optional<std::int32_t> separator = learner.separatorWidth();
    const bool exact = learner.mode() == ReadingMode::Exact;
    return "{\"region\":" + jsonString(kRegionNames[static_cast<std::size_t>(learner.region())]) +
           ",\"images\":" + std::to_string(learner.imageCount()) + ",\"mode\":" + jsonString(exact ? "exact" : "shapes") +
           ",\"width\":" + (exact ? std::to_string(learner.glyphSize()) : "null") +
           (exact ? "" : ",\"height\":" + std::to_string(learner.glyphSize())) +
           ",\"threshold\":" + std::to_string(learner.threshold()) +
           ",\"thresholdProposed\":" + (learner.thresholdProposed() ? "true" : "false") +
           ",\"learnt\":" + jsonString(learnt) + ",\"missing\":" + jsonString(learner.missing()) +
           ",\"endMark\":" + (learner.seen(kEndMarkGlyph) ? "true" : "false") +
           ",\"separator\":" + (separator ? std::to_string(*separator) : "null") +
           ",\"ambiguous\":" + (learner.ambiguous() ? "true" : "false") +
           ",\"replaced\":" + (learner.replacedPrior() ? "true" : "false") + "}";
}

// What changed beyond the glyphs, for the player to see.
void tellChanges(const RegionLearner& learner, std::int32_t oldThreshold, std::ostream& err)
{
    const char* name = kRegionNames[static_cast<std::size_t>(learner.region())];
    if (learner.thresholdProposed())
        err << name << ": threshold " << oldThreshold << " does not separate the digits; " << learner.threshold()
            << " is proposed and saved\n";
    if (learner.replacedPrior())
        err << name << ": the screens contradict what was taught before; it is replaced\n";
}

// Feeds one image to the learners; false when it could not be read or a region was refused.
bool learnImage(const std::string* group, std::array<RegionLearner, kRegionCount>& learners, std::ostream& err)
{
    const std::string& image = group[0];
    CaptureBitmap bitmap;
    const CaptureLoadResult loaded = LoadCaptureBitmap(utf8Path(image), bitmap);
    if (loaded != CaptureLoadResult::Read) {
        err << image << ": cannot read the image (result " << static_cast<int>(loaded) << ": " << describe(loaded)
            << ")\n";
        return false;
    }
    bool accepted = true;
    for (std::size_t r = 0; r < kRegionCount; ++r) {
        const std::string& number = group[1 + r];
        if (number == "-")
            continue;
        const LearnOutcome outcome = learners[r].add(bitmap, number);
        if (!outcome.accepted()) {
            const std::size_t digits = numberDigits(number).value_or("").size();
            err << image << ": " << kRegionNames[r] << " " << number << ": " << describeRefusal(outcome, digits) << '\n';
            accepted = false;
        }
    }
    return accepted;
}

bool save(Settings& settings, const std::filesystem::path& folder, const CliAnswers& answers, std::ostream& err)
{
    platform::SystemClock clock;
    DebugLog log(folder, clock);
    CliPrompter prompter(answers, err);
    const auto codec = platform::makeTextCodec();
    ConfigFile(settings, folder, prompter, *codec, &log).run(ConfigFile::Save);
    return !prompter.writeFailed();
}

} // namespace

int runLearn(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    Options options;
    if (!parseOptions(args, options, err))
        return 1;
    const auto home = cliHomeFolder(options.home, err);
    if (!home)
        return 2;
    const std::filesystem::path& folder = *home;
    Settings settings = loadCliSettings(folder, options.answers, err);
    const std::array<std::int32_t, kRegionCount> oldThresholds = settings.BinaryThreshold;
    std::array<RegionLearner, kRegionCount> learners{RegionLearner(settings, RegionLevel),
                                                     RegionLearner(settings, RegionExp),
                                                     RegionLearner(settings, RegionMoney)};
    bool consistent = true;
    for (std::size_t i = 0; i < options.groups.size(); i += kGroup)
        consistent = learnImage(&options.groups[i], learners, err) && consistent;
    if (!consistent) {
        err << "tallivex-cli learn: nothing was saved\n";
        return 2;
    }
    for (const RegionLearner& learner : learners) {
        learner.applyTo(settings);
        tellChanges(learner, oldThresholds[static_cast<std::size_t>(learner.region())], err);
    }
    if (!save(settings, folder, options.answers, err)) {
        err << "tallivex-cli learn: the configuration could not be written\n";
        return 2;
    }
    for (const RegionLearner& learner : learners)
        out << regionJson(learner) << '\n';
    return 0;
}

} // namespace tvx::cli
