#include "PracticeScene.h"
#include "PracticeSession.h"
#include "PracticeWindow.h"

#include "recognition/ScreenRecognizer.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <sstream>

namespace tvx::practice {
namespace {

// What the meter reads off a screen with the default settings.
CharacterState readBack(const Frame& frame)
{
    const Settings settings = defaultSettings(""); // the recognizer keeps a reference
    ScreenRecognizer recognizer(settings);
    const CaptureBitmap bitmap = toCaptureBitmap(frame);
    const auto read = [&](int region) {
        recognizer.fill(region, bitmap);
        recognizer.binarize(region);
        return recognizer.recognize(region).digits;
    };
    return {levelFromText(read(RegionLevel)), amountFromText(read(RegionExp)).wholePart(),
            amountFromText(read(RegionMoney)).wholePart()};
}

TEST(PracticeScene, PaintedStatesReadBackExactly)
{
    const CharacterState states[] = {
        {1, 0, 0}, {10, 9, 2'147'483'647}, {190, 1'234'567'890, 9'876'543'210},
        {199, 38'703'313'816 - 36'692'244'111 - 1, PracticeCharacter::kMaxMoney},
    };
    for (const CharacterState& state : states) {
        SCOPED_TRACE(testing::Message() << state.level << ' ' << state.exp << ' ' << state.money);
        ASSERT_EQ(PracticeCharacter(state).state(), state); // the sample itself must be a reachable state
        const Frame frame = paintScene(defaultSettings(""), state);
        EXPECT_EQ(std::pair(frame.width(), frame.height()), std::pair(800, 600));
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

TEST(PracticeWindow, KeysAndTicksChangeWhatTheGrabbedWindowShowsAndEveryChangeIsNoted)
{
    test::TempFolder folder;
    PracticeOptions options;
    options.start = {77, 123'456, 9'876'543'210};
    options.expPerTick = 1000;
    options.moneyPerTick = 7;
    options.tickMs = 3'600'000; // the test drives the ticks
    options.stateFile = pathUtf8(folder.path() / "state.txt");
    PracticeWindow window(options);
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::FramelessWindowHint));
    window.show();

    // A key, or a tick without one, and the same on a character of our own; each change noted.
    PracticeCharacter expected(options.start);
    std::vector<std::string> lines{"77 123456 9876543210"};
    const std::pair<std::optional<Qt::Key>, std::function<void()>> steps[] = {
        {Qt::Key_U, [&] { expected.levelUp(); }},
        {std::nullopt, [&] { expected.rise(1000, 7); }},
        {Qt::Key_D, [&] { expected.die(); }},
        {Qt::Key_C, [&] { expected.change(); }},
    };
    for (const auto& [key, same] : steps) {
        if (key)
            QTest::keyClick(&window, *key);
        else
            window.tick();
        same();
        const CharacterState& s = expected.state();
        lines.push_back(std::to_string(s.level) + ' ' + std::to_string(s.exp) + ' ' + std::to_string(s.money));
        const QImage shown = window.grab().toImage().convertToFormat(QImage::Format_BGR888);
        Frame frame(shown.width(), shown.height());
        for (int y = 0; y < shown.height(); ++y)
            std::memcpy(frame.row(y), shown.constScanLine(y), frame.rowBytes());
        EXPECT_EQ(readBack(frame), s) << lines.back();
    }
    // The state file: seconds since the epoch, then what was drawn.
    std::istringstream text(test::readAll(folder.path() / "state.txt"));
    std::vector<std::string> noted;
    for (std::string line; std::getline(text, line);) {
        EXPECT_GT(std::stoll(line.substr(0, line.find(' '))), 1'600'000'000) << line;
        noted.push_back(line.substr(line.find(' ') + 1));
    }
    EXPECT_EQ(noted, lines);
}

} // namespace
} // namespace tvx::practice
