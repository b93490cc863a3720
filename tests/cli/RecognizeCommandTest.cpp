#include "RecognizeCommand.h"

#include "config/Settings.h"
#include "recognition/CaptureFile.h"
#include "support/GameScreen.h"
#include "base/Utf8Path.h"
#include "support/JsonPath.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace tvx {
namespace {

// Full-screen images with numbers drawn in the game's glyphs at the default regions.
class RecognizeCommandTest : public testing::Test {
protected:
    // Draws each region's number (nullptr leaves the region blank) on a noisy screen.
    std::string screen(const std::string& name, std::array<const char*, kRegionCount> numbers,
                       ScreenMode mode = ScreenMode::FullScreen, std::uint32_t seed = 1)
    {
        std::array<std::string, kRegionCount> texts;
        for (std::size_t i = 0; i < texts.size(); ++i)
            texts[i] = numbers[i] != nullptr ? numbers[i] : "";
        const Frame frame = test::gameScreen(texts, mode, seed);
        EXPECT_TRUE(writeBitmap24(m_folder / name, frame));
        return pathUtf8(m_folder / name);
    }

    int run(std::vector<std::string> args)
    {
        m_out.str("");
        m_err.str("");
        return cli::runRecognize(args, m_out, m_err);
    }

    test::TempFolder m_temp;
    const std::filesystem::path& m_folder = m_temp.path();
    std::ostringstream m_out;
    std::ostringstream m_err;
};

TEST_F(RecognizeCommandTest, PrintsOneJsonLinePerImage)
{
    const auto first = screen("a.bmp", {"137", "4567890", "1234567890"});
    const auto second = screen("b.bmp", {"8", nullptr, "0"}, ScreenMode::FullScreen, 2);
    EXPECT_EQ(run({first, second}), 0);
    EXPECT_EQ(m_out.str(), "{\"file\":\"" + test::jsonPath(m_folder / "a.bmp") +
                               "\",\"level\":137,\"exp\":4567890,\"money\":1234567890}\n" + "{\"file\":\"" +
                               test::jsonPath(m_folder / "b.bmp") + "\",\"level\":8,\"exp\":-1,\"money\":0}\n");
    EXPECT_EQ(m_err.str(), "");
}

TEST_F(RecognizeCommandTest, WindowModeReadsTheShiftedRegions)
{
    const auto image = screen("w.bmp", {"42", "777", "31"}, ScreenMode::Window);
    EXPECT_EQ(run({"--window-mode", image}), 0);
    EXPECT_NE(m_out.str().find("\"level\":42,\"exp\":777,\"money\":31"), std::string::npos) << m_out.str();
    EXPECT_EQ(run({image}), 0);
    EXPECT_NE(m_out.str().find("\"level\":-1,\"exp\":-1,\"money\":-1"), std::string::npos) << m_out.str();
}

TEST_F(RecognizeCommandTest, TraceGoesToStandardError)
{
    const auto image = screen("t.bmp", {"5", "12", "3"});
    EXPECT_EQ(run({"--trace", image}), 0);
    const std::string trace = m_err.str();
    EXPECT_NE(trace.find("category0 変換データ : "), std::string::npos);
    EXPECT_NE(trace.find("1 認識:\n2 認識:\n 認識:デリミタ"), std::string::npos) << trace;
}

// Each image that cannot be read is named with its result; the others are still read.
TEST_F(RecognizeCommandTest, UnreadableImagesAreNamedAndTheRestStillRead)
{
    const auto good = screen("good.bmp", {"9", "9", "9"});
    std::ofstream(m_folder / "broken.bmp", std::ios::binary) << "PK\x03\x04";
    const std::vector<std::uint8_t> whole = encodeBitmap24(test::gameScreen({"9", "9", "9"}));
    std::ofstream(m_folder / "short.bmp", std::ios::binary).write(reinterpret_cast<const char*>(whole.data()), 3000);
    std::filesystem::create_directories(m_folder / "folder.bmp");
    ASSERT_TRUE(writeBitmap24(m_folder / "small.bmp", Frame(20, 20)));
    const auto path = [this](const char* name) { return pathUtf8(m_folder / name); };

    EXPECT_EQ(run({path("broken.bmp"), path("missing.bmp"), path("short.bmp"), path("folder.bmp"), path("small.bmp"),
                   good}),
              2);
    const std::string err = m_err.str();
    const std::string cannot = ": cannot read the image (";
    for (const std::string& said :
         {path("broken.bmp") + cannot + "result -4", path("missing.bmp") + cannot + "result -5",
          path("short.bmp") + cannot, path("folder.bmp") + cannot, path("small.bmp") + ": level region: error 9"})
        EXPECT_NE(err.find(said), std::string::npos) << said << "\n" << err;
    EXPECT_TRUE(m_out.str().ends_with("{\"file\":\"" + test::jsonPath(utf8Path(good)) +
                                      "\",\"level\":9,\"exp\":9,\"money\":9}\n"))
        << m_out.str();
}

} // namespace
} // namespace tvx
