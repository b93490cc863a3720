// replay --live and history against figures worked out here from the frames alone.
#include "HistoryCommand.h"
#include "ReplayCommand.h"
#include "base/Utf8Path.h"
#include "measurement/ExpTable.h"

#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>

namespace tvx {
namespace {

struct Shown {
    std::int64_t t;
    std::int32_t level; // 0: not readable
    std::int64_t exp;
    std::optional<std::int64_t> money;
};

std::int64_t total(const Shown& s) { return ExpTable(s.level).wholePart() + s.exp; }
double position(const Shown& s)
{
    const double span = (ExpTable(s.level + 1) - ExpTable(s.level)).toDouble();
    return s.level + static_cast<double>(s.exp) / span;
}
std::int64_t floorRate(std::int64_t gain, std::int64_t seconds)
{
    // gain x 3.6 / seconds, rounded toward minus infinity.
    const std::int64_t n = gain * 36;
    const std::int64_t d = seconds * 10;
    return n / d - ((n % d != 0 && (n < 0)) ? 1 : 0);
}

// A three-hour session every five minutes: a level-up, twenty minutes of failed readings,
// a long idle stretch, money on some readings, a death, then another character.
std::vector<Shown> script()
{
    std::vector<Shown> frames;
    std::int32_t level = 100;
    std::int64_t exp = (ExpTable(101) - ExpTable(100)).wholePart() - 3'000'000;
    std::int64_t money = 50'000;
    for (int i = 0; i < 38; ++i) {
        const std::int64_t t = 30 + i * 300;
        if (i == 27)
            level = 150, exp = 5000; // another character
        const bool failed = i >= 9 && i <= 12;
        const bool idle = i >= 16 && i <= 21;
        if (!idle && !failed) {
            exp += 1'000'000 + 37'777 * (i % 5);
            money += 333 * (i % 3);
        }
        const std::int64_t span = (ExpTable(level + 1) - ExpTable(level)).wholePart();
        if (exp >= span)
            exp -= span, ++level;
        if (i == 24)
            exp = 0; // died: experience lost, level kept
        const std::optional<std::int64_t> shownMoney = i % 3 == 0 ? std::nullopt : std::optional(money);
        frames.push_back({t, failed ? 0 : level, exp, shownMoney});
    }
    return frames;
}

std::string field(const std::string& line, const std::string& name)
{
    const std::regex pattern("\"" + name + "\": (null|\"[A-Za-z]*\"|-?[0-9.]+)");
    std::smatch match;
    return std::regex_search(line, match, pattern) ? match[1].str() : "missing";
}

std::string optionalNumber(const std::optional<std::int64_t>& value)
{
    return value ? std::to_string(*value) : "null";
}

std::string fixed(double value, int places)
{
    std::ostringstream text;
    text.setf(std::ios::fixed);
    text.precision(places);
    text << value;
    return text.str() == "-0.00" ? "0.00" : text.str();
}

class LiveReplayTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(folder);
        for (const Shown& s : frames) {
            const std::string level = s.level > 0 ? std::to_string(s.level) : "";
            const std::string money = s.money ? std::to_string(*s.money) : "";
            ASSERT_TRUE(writeBitmap24(folder / (std::to_string(s.t) + ".bmp"),
                                      test::gameScreen({level, std::to_string(s.exp), money}, ScreenMode::FullScreen,
                                                       static_cast<std::uint32_t>(s.t), 560, 590)));
        }
    }

    std::vector<Shown> frames = script();
    test::TempFolder temp;
    std::filesystem::path folder = temp.path() / "frames";
    std::filesystem::path saves = temp.path() / "saves";
};

TEST_F(LiveReplayTest, EveryLineHoldsTheFiguresOfItsReading)
{
    std::ostringstream out;
    std::ostringstream err;
    const std::filesystem::path live = temp.path() / "live.jsonl";
    ASSERT_EQ(cli::runReplay({pathUtf8(folder), "--save-folder", pathUtf8(saves), "--start", "2025-03-01 21:00",
                              "--live", pathUtf8(live)},
                             out, err),
              0)
        << err.str();
    std::istringstream lines(test::readAll(live));

    std::vector<std::size_t> character; // readings of the current character
    std::optional<std::int64_t> lastValid;
    std::int64_t lastGain = 0;
    std::int32_t previousLevel = 0;
    int stalls = 0;
    bool armed = true;
    for (std::size_t n = 0; n < frames.size(); ++n) {
        const Shown& now = frames[n];
        std::string line;
        ASSERT_TRUE(std::getline(lines, line)) << "no line for second " << now.t;
        SCOPED_TRACE(line);
        EXPECT_EQ(field(line, "t"), std::to_string(now.t));
        const bool valid = now.level > 0;
        if (valid) {
            if (previousLevel != 0 && (now.level < previousLevel || now.level >= previousLevel + 4))
                character.clear(), armed = true;
            if (character.empty())
                lastGain = now.t;
            else if (total(now) > total(frames[character.back()]))
                lastGain = now.t, armed = true;
            character.push_back(n);
            lastValid = now.t;
            previousLevel = now.level;
        }
        const char* names[] = {"10", "30", "60", "Session"};
        const std::int64_t minutes[] = {10, 30, 60, 100000};
        std::optional<std::int64_t> exp30;
        for (int w = 0; w < 4; ++w) {
            std::optional<std::int64_t> exp, money;
            std::optional<double> level;
            if (valid) {
                const Shown* from = nullptr;
                const Shown* moneyFrom = nullptr;
                for (std::size_t j : character) {
                    const Shown& then = frames[j];
                    if (then.t < now.t - minutes[w] * 60)
                        continue;
                    from = from ? from : &then;
                    if (then.money && !moneyFrom)
                        moneyFrom = &then;
                }
                if (from->t < now.t) {
                    exp = floorRate(total(now) - total(*from), now.t - from->t);
                    level = std::round((position(now) - position(*from)) * 100 * 3600 / (now.t - from->t) * 100) / 100;
                }
                if (now.money && moneyFrom->t < now.t)
                    money = floorRate(*now.money - *moneyFrom->money, now.t - moneyFrom->t);
            }
            EXPECT_EQ(field(line, std::string("exp") + names[w]), optionalNumber(exp)) << names[w];
            EXPECT_EQ(field(line, std::string("level") + names[w]), level ? fixed(*level, 2) : "null") << names[w];
            EXPECT_EQ(field(line, std::string("money") + names[w]), optionalNumber(money)) << names[w];
            if (w == 1)
                exp30 = exp;
        }
        std::string next = "null";
        if (valid && exp30 && *exp30 > 0) {
            const double left = static_cast<double>(ExpTable(now.level + 1).wholePart() - total(now));
            next = fixed(std::round(left * 60 / (*exp30 * 1000.0) * 10) / 10, 1);
        }
        EXPECT_EQ(field(line, "nextLevelMinutes"), next);

        std::string stall = "null";
        if (now.t - lastValid.value_or(0) >= 15 * 60)
            stall = "\"noReading\"";
        else if (now.t - lastGain >= 15 * 60)
            stall = "\"noGain\"";
        if (stall != "null" && armed)
            ++stalls, armed = false;
        EXPECT_EQ(field(line, "stall"), stall);
    }

    // One history row per character, as the desktop program leaves them.
    std::ostringstream rows;
    ASSERT_EQ(cli::runHistory({"--save-folder", pathUtf8(saves)}, rows, err), 0) << err.str();
    const std::string text = rows.str();
    ASSERT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
    const std::string first = text.substr(0, text.find('\n'));
    EXPECT_EQ(field(first, "startLevel"), "100");
    EXPECT_EQ(field(first, "levelUps"), std::to_string(frames[26].level - 100));
    EXPECT_EQ(field(first, "expGained"), std::to_string(total(frames[26]) - total(frames[0])));
    EXPECT_HOLDS(first, "\"start\": \"2025/03/01 21:00:30\", \"end\": \"2025/03/01 23:10:30\"");
    const std::string second = text.substr(first.size() + 1);
    EXPECT_EQ(field(second, "startLevel"), "150");
    EXPECT_EQ(field(first, "stalls") + "+" + field(second, "stalls"), std::to_string(stalls) + "+0");
}

TEST_F(LiveReplayTest, AHistoryThatCannotBeReadIsNamedAndLeftAsItIs)
{
    const std::filesystem::path history = saves / "log" / utf8Path("セッション履歴.csv");
    std::filesystem::create_directories(history.parent_path());
    { std::ofstream(history, std::ios::binary) << "not a history\r\n"; }
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(cli::runReplay({pathUtf8(folder), "--save-folder", pathUtf8(saves)}, out, err), 2);
    EXPECT_HOLDS(err.str(), "セッション履歴");
    EXPECT_EQ(test::readAll(history), "not a history\r\n");
    EXPECT_EQ(cli::runHistory({"--save-folder", pathUtf8(saves)}, out, err), 2);
    EXPECT_HOLDS(err.str(), "line 1");
}

} // namespace
} // namespace tvx
