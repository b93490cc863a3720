#include "LearnCommand.h"
#include "RecognizeCommand.h"

#include "support/BitmapFont.h"
#include "support/ReadFile.h"
#include "support/JsonPath.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace tvx {
namespace {

// Screens written in a font the built-in templates do not know, learnt by one command and
// read by another with the configuration the first one saved.
class LearnCommandTest : public testing::Test {
protected:
    std::string screen(const std::string& name, std::array<std::string, kRegionCount> texts, std::uint32_t seed = 1)
    {
        const auto path = pathUtf8(m_temp.path() / name);
        EXPECT_TRUE(writeBitmap24(utf8Path(path), test::fontScreen(texts, seed)));
        return path;
    }

    int learn(std::vector<std::string> args)
    {
        args.insert(args.begin(), {"--home", pathUtf8(m_home.path())});
        m_out.str("");
        m_err.str("");
        return cli::runLearn(args, m_out, m_err);
    }

    int recognize(std::vector<std::string> images)
    {
        images.insert(images.begin(), {"--home", pathUtf8(m_home.path())});
        m_out.str("");
        m_err.str("");
        return cli::runRecognize(images, m_out, m_err);
    }

    std::string config() const { return test::readAll(m_home.path() / "TV2MConfig.ini"); }

    test::TempFolder m_temp;
    test::TempFolder m_home;
    std::ostringstream m_out;
    std::ostringstream m_err;
};

TEST_F(LearnCommandTest, AFewScreensTeachAnUnknownFontThatRecognizeThenReads)
{
    const std::array<std::string, kRegionCount> taught[] = {
        {"58", "1234567", "90,210"},  {"147", "8890123", "5,006,400"}, {"203", "4455667", "77,318"},
        {"96", "9087654", "1,234,589"}, {"110", "3141592", "2,718,281"},
    };
    std::vector<std::string> args;
    for (std::uint32_t i = 0; i < std::size(taught); ++i) {
        args.push_back(screen(std::to_string(i) + ".bmp", taught[i], i + 1));
        args.insert(args.end(), taught[i].begin(), taught[i].end());
    }
    ASSERT_EQ(learn(args), 0) << m_err.str();
    EXPECT_EQ(m_out.str(),
              "{\"region\":\"level\",\"images\":5,\"mode\":\"exact\",\"width\":6,\"threshold\":188,"
              "\"thresholdProposed\":false,\"learnt\":\"0123456789\",\"missing\":\"\",\"endMark\":true,"
              "\"separator\":null,\"ambiguous\":false,\"replaced\":false}\n"
              "{\"region\":\"exp\",\"images\":5,\"mode\":\"exact\",\"width\":6,\"threshold\":133,"
              "\"thresholdProposed\":false,\"learnt\":\"0123456789\",\"missing\":\"\",\"endMark\":true,"
              "\"separator\":0,\"ambiguous\":false,\"replaced\":false}\n"
              "{\"region\":\"money\",\"images\":5,\"mode\":\"exact\",\"width\":6,\"threshold\":223,"
              "\"thresholdProposed\":false,\"learnt\":\"0123456789\",\"missing\":\"\",\"endMark\":true,"
              "\"separator\":2,\"ambiguous\":false,\"replaced\":false}\n");

    const std::string unseen = screen("new.bmp", {"185", "7301264", "6,543,210"}, 9);
    EXPECT_EQ(recognize({unseen}), 0) << m_err.str();
    EXPECT_EQ(m_out.str(), "{\"file\":\"" + test::jsonPath(utf8Path(unseen)) + "\",\"level\":185,\"exp\":7301264,\"money\":6543210}\n");
}

TEST_F(LearnCommandTest, SkippedRegionsKeepTheirTemplatesAndReportWhatIsMissing)
{
    const std::string before = (learn({screen("a.bmp", {"", "", ""}), "-", "-", "-"}), config());
    ASSERT_EQ(learn({screen("b.bmp", {"37", "", ""}), "37", "-", "-", screen("c.bmp", {"773", "", ""}, 2), "773", "-", "-"}),
              0)
        << m_err.str();
    const std::string out = m_out.str();
    EXPECT_NE(out.find("\"region\":\"level\",\"images\":2,\"mode\":\"exact\",\"width\":6,\"threshold\":188,"
                       "\"thresholdProposed\":false,\"learnt\":\"37\",\"missing\":\"01245689\""),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("{\"region\":\"exp\",\"images\":0,\"mode\":\"exact\",\"width\":5,\"threshold\":133,"
                       "\"thresholdProposed\":false,\"learnt\":\"\",\"missing\":\"\""),
              std::string::npos)
        << out;
    // Lines 21 to 33 hold the level's settings, 34 to 59 those of the experience and money.
    const auto lines = [](const std::string& text, std::ptrdiff_t first, std::ptrdiff_t last) {
        const std::vector<std::string> all = test::splitLines(text);
        return std::vector<std::string>(all.begin() + first - 1, all.begin() + last);
    };
    EXPECT_EQ(lines(config(), 34, 59), lines(before, 34, 59));
    EXPECT_NE(lines(config(), 21, 33), lines(before, 21, 33));
}

// One screen a call, as players teach: each call keeps what the ones before taught, the
// file loads as saved after every call, and a digit not taught yet fails the reading.
TEST_F(LearnCommandTest, ScreensTaughtOneACallAddUpAndLoadAsSaved)
{
    const std::array<std::string, kRegionCount> calls[] = {{"72", "1430517", "-"}, {"3", "86", "-"}, {"194", "29", "-"}};
    for (std::uint32_t i = 0; i < std::size(calls); ++i) {
        const std::string image = screen(std::to_string(i) + ".bmp", {calls[i][0], calls[i][1], ""}, i + 1);
        ASSERT_EQ(learn({image, calls[i][0], calls[i][1], "-"}), 0) << m_err.str();
        EXPECT_EQ(m_out.str().find("\"replaced\":true"), std::string::npos) << "call " << i << ": " << m_out.str();
        // Read back as the program loads it: no back-up, no defaults in its place.
        const std::string saved = config();
        EXPECT_EQ(recognize({image}), 0) << m_err.str();
        EXPECT_NE(m_out.str().find("\"level\":" + calls[i][0] + ",\"exp\":" + calls[i][1]), std::string::npos)
            << m_out.str();
        EXPECT_EQ(config(), saved);
        EXPECT_FALSE(std::filesystem::exists(m_home.path() / "TV2MConfigBack.ini"));
    }
    // Digits of all three calls together; 5 and 6 of the level were never shown.
    EXPECT_EQ(recognize({screen("held.bmp", {"147", "9831", ""}, 7), screen("new.bmp", {"56", "3", ""}, 8)}), 0);
    const std::string out = m_out.str();
    EXPECT_NE(out.find("\"level\":147,\"exp\":9831"), std::string::npos) << out;
    EXPECT_NE(out.find("\"level\":-1,\"exp\":3,"), std::string::npos) << out;
}

TEST_F(LearnCommandTest, ARefusedImageSavesNothing)
{
    const std::string before = (learn({screen("a.bmp", {"", "", ""}), "-", "-", "-"}), config());
    const std::string good = screen("good.bmp", {"37", "", ""});
    const std::string wrong = screen("wrong.bmp", {"73", "", ""}, 2);
    EXPECT_EQ(learn({good, "37", "-", "-", wrong, "37", "-", "-"}), 2);
    EXPECT_NE(m_err.str().find(wrong + ": level 37: the digit 3 differs from the one learnt before"), std::string::npos)
        << m_err.str();
    EXPECT_NE(m_err.str().find("nothing was saved"), std::string::npos);
    EXPECT_EQ(m_out.str(), "");
    EXPECT_EQ(config(), before);

    EXPECT_EQ(learn({good, "37", "-"}), 1);
    EXPECT_EQ(learn({good, "3x", "-", "-"}), 2);
    EXPECT_NE(m_err.str().find("level 3x: not a number"), std::string::npos) << m_err.str();
}

} // namespace
} // namespace tvx
