#include "PracticeCharacter.h"
#include "base/Utf8Path.h"
#include "PracticeScene.h"
#include "PracticeSession.h"
#include "PracticeWindow.h"

#include "recognition/CaptureFile.h"
#include "recognition/ScreenRecognizer.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <vector>

namespace tvx::practice {
namespace {

// What the meter reads off a screen with the default settings.
CharacterState readBack(const Frame& frame)
{
    const Settings settings = defaultSettings("");
    ScreenRecognizer recognizer(settings);
    const CaptureBitmap bitmap = toCaptureBitmap(frame);
    std::array<std::string, kRegionCount> digits;
    for (int region = 0; region < kRegionCount; ++region) {
        recognizer.fill(region, bitmap);
        recognizer.binarize(region);
        digits[static_cast<std::size_t>(region)] = recognizer.recognize(region).digits;
    }
    return {levelFromText(digits[RegionLevel]), amountFromText(digits[RegionExp]).wholePart(),
            amountFromText(digits[RegionMoney]).wholePart()};
}

Frame toFrame(const QImage& image)
{
    const QImage bgr = image.convertToFormat(QImage::Format_BGR888);
    Frame frame(bgr.width(), bgr.height());
    for (int y = 0; y < bgr.height(); ++y)
        std::memcpy(frame.row(y), bgr.constScanLine(y), frame.rowBytes());
    return frame;
}

const std::vector<CharacterState>& sampleStates()
{
    static const std::vector<CharacterState> states = {
        {1, 0, 0},
        {1, 14, 5},
        {50, 250'000, 12'345'678},
        {100, 1, 1'000'000},
        {10, 9, 2'147'483'647},
        {190, 1'234'567'890, 9'876'543'210},
        {199, 38'703'313'816 - 36'692'244'111 - 1, PracticeCharacter::kMaxMoney},
        {200, 0, 99'999'999'999'999},
    };
    return states;
}

TEST(PracticeScene, PaintedStatesReadBackExactly)
{
    const Settings settings = defaultSettings("");
    for (const CharacterState& state : sampleStates()) {
        SCOPED_TRACE(testing::Message() << state.level << ' ' << state.exp << ' ' << state.money);
        const PracticeCharacter character(state);
        ASSERT_EQ(character.state(), state); // the sample itself must be a reachable state
        const Frame frame = paintScene(settings, state);
        EXPECT_EQ(frame.width(), 800);
        EXPECT_EQ(frame.height(), 600);
        EXPECT_EQ(readBack(frame), state);
    }
}

TEST(PracticeScene, TextsStayOutOfTheCaptureRegions)
{
    for (const ScreenMode mode : {ScreenMode::FullScreen, ScreenMode::Window})
        for (const CaptureRegionRect& region : defaultSettings("", mode).CaptureRegion)
            for (const bool paused : {false, true})
                for (const SceneLabel& label : sceneLabels(paused))
                    for (const SceneRect& box : {label.box, kHintBox})
                        EXPECT_FALSE(overlaps(box, region)) << label.text << " and " << region.StartX << ','
                                                            << region.StartY;
}

class PracticeWindowTest : public testing::Test {
protected:
    PracticeOptions options(const CharacterState& start)
    {
        PracticeOptions o;
        o.start = start;
        o.expPerTick = 1000;
        o.moneyPerTick = 7;
        o.tickMs = 3'600'000; // the test drives the ticks
        o.stateFile = pathUtf8(m_folder.path() / "state.txt");
        return o;
    }

    std::vector<std::string> stateLines() const
    {
        std::istringstream text(test::readAll(m_folder.path() / "state.txt"));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            // The epoch seconds differ per run; the rest is what was drawn.
            EXPECT_GT(std::stoll(line.substr(0, line.find(' '))), 1'600'000'000) << line;
            lines.push_back(line.substr(line.find(' ') + 1));
        }
        return lines;
    }

    test::TempFolder m_folder;
};

TEST_F(PracticeWindowTest, KeysAndTicksChangeWhatTheGrabbedWindowShowsAndEveryChangeIsNoted)
{
    const CharacterState start{77, 123'456, 9'876'543'210};
    PracticeWindow window(options(start));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("MapleStory"));
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::FramelessWindowHint));
    window.show();
    const QImage shot = window.grab().toImage();
    ASSERT_EQ(shot.size(), QSize(800, 600));
    EXPECT_EQ(readBack(toFrame(shot)), start);

    PracticeCharacter expected(start);
    std::vector<std::string> lines{"77 123456 9876543210"};
    const auto note = [&] {
        const CharacterState& s = expected.state();
        lines.push_back(std::to_string(s.level) + ' ' + std::to_string(s.exp) + ' ' + std::to_string(s.money));
    };
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_TRUE(window.paused());
    window.tick(); // paused: nothing rises, nothing is noted
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_FALSE(window.paused());
    QTest::keyClick(&window, Qt::Key_U);
    expected.levelUp();
    note();
    window.tick();
    expected.rise(1000, 7);
    note();
    EXPECT_EQ(readBack(toFrame(window.grab().toImage())), expected.state());
    QTest::keyClick(&window, Qt::Key_D);
    expected.die();
    note();
    QTest::keyClick(&window, Qt::Key_D);
    expected.die();
    note();
    QTest::keyClick(&window, Qt::Key_C);
    expected.change();
    note();
    EXPECT_EQ(window.state(), expected.state());
    EXPECT_EQ(readBack(toFrame(window.grab().toImage())), expected.state());
    EXPECT_EQ(stateLines(), lines);
}

} // namespace
} // namespace tvx::practice
