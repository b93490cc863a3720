#include "meter/ScreenCapture.h"

#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "view/RegionPreview.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(ScreenCaptureTest, TheRoutesTakeWhatTheSettingAndThePlatformAllowAndAReadingKeepsTheWholeScreen)
{
    test::TempFolder home;
    Settings settings = defaultSettings("");
    settings.Lag = 500;
    test::FakeMachine machine;
    DebugLog log{home.path(), machine.clock};
    const CaptureBitmap game = test::gameCapture({"137", "4,567,890", "123,456"});
    const CaptureBitmap fromKey = test::gameCapture({"1", "2", "3"}, ScreenMode::FullScreen, 7);
    const CaptureBitmap black = toCaptureBitmap(Frame(1024, 768));
    using M = CaptureMethod;
    using R = ScreenCapture::Result;
    using Picture = std::optional<CaptureBitmap>;
    const struct { const char* name; M method; bool keyExists; Picture direct, clipboard; R result;
                   const CaptureBitmap* expected; bool pressed; } cases[] = {
        {"key", M::PrintScreen, true, game, fromKey, R::Taken, &fromKey, true},
        {"key, empty clipboard", M::PrintScreen, true, game, std::nullopt, R::NoPicture, nullptr, true},
        {"key missing here", M::PrintScreen, false, game, fromKey, R::Taken, &game, true},
        {"direct", M::Direct, true, game, fromKey, R::Taken, &game, false},
        {"direct, black, key", M::Direct, true, black, fromKey, R::Taken, &fromKey, true},
        {"direct, black, no key", M::Direct, false, black, fromKey, R::Taken, nullptr, true},
        {"direct, no display", M::Direct, true, std::nullopt, fromKey, R::NoPicture, nullptr, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScreenCapture fresh{settings, machine, machine, log};
        settings.ScreenCapture = c.method;
        machine.events.clear();
        machine.printScreenKey = c.keyExists;
        machine.screens = {c.direct};
        machine.clipboard = {c.clipboard};
        for (int twice = 0; twice < 2; ++twice) {
            std::optional<CaptureBitmap> image;
            EXPECT_EQ(fresh.take(settings.CaptureRegion, image), c.result);
            EXPECT_TRUE(c.expected == nullptr || (image && image->pixels == c.expected->pixels));
        }
        EXPECT_EQ(machine.count("print screen key"), c.pressed ? 2u : 0u);
        // Lag is waited only when the key was really there to press.
        EXPECT_EQ(machine.count("wait 500"), c.pressed && c.keyExists ? 2u : 0u);
    }

    // A reading (by the last route, direct) writes the whole screen to the file and reads the regions of the same moment.
    const CaptureBitmap narrow = toCaptureBitmap(test::gameScreen({"9", "8", "7"}, ScreenMode::FullScreen, 3, 1023, 700));
    const std::filesystem::path file = home.path() / "Capture.bmp";
    // bandRows 0: the source offers no bands; expected: the whole screen kept, and in the file when there is one;
    // wholeImage: the image is that whole screen, not the regions only.
    const struct { const char* name; std::int32_t bandRows; std::filesystem::path captureFile; CaptureBitmap screen;
                   bool keyExists; const CaptureBitmap* expected; bool wholeImage; } readings[] = {
        {"bands", 7, file, game, false, &game, false},
        {"bands of one row, padded rows", 1, file, narrow, false, &narrow, false},
        {"no bands", 0, file, game, false, &game, true},
        {"no capture file", 7, {}, game, false, &game, true},
        {"a capture file that cannot be written", 7, home.path() / "missing" / "Capture.bmp", game, false, &game, true},
        {"black, the key route", 7, file, black, true, &fromKey, true},
        {"black, no key route", 7, file, black, false, nullptr, false},
    };
    for (const auto& c : readings) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove(file);
        machine.bandRows = c.bandRows;
        machine.printScreenKey = c.keyExists;
        machine.screens = {c.screen};
        machine.clipboard = {fromKey};
        ScreenCapture fresh{settings, machine, machine, log};
        fresh.setCaptureFile(c.captureFile);
        std::optional<CaptureBitmap> image;
        ASSERT_EQ(fresh.takeReading(settings.CaptureRegion, image), ScreenCapture::Result::Taken);
        ASSERT_TRUE(image);
        const CaptureBitmap& whole = c.expected != nullptr ? *c.expected : c.screen;
        for (const CaptureRegionRect& rect : settings.CaptureRegion)
            EXPECT_EQ(regionPixels(*image, rect), regionPixels(whole, rect));
        EXPECT_EQ(image->pixels.size() == whole.pixels.size(), c.wholeImage);
        EXPECT_TRUE(!c.wholeImage || image->pixels == whole.pixels);
        const std::optional<CaptureBitmap> kept = fresh.kept();
        EXPECT_TRUE(kept && kept->pixels == whole.pixels);
        if (c.captureFile == file) {
            const std::vector<std::uint8_t> bytes = encodeBitmap24(toFrame(whole));
            EXPECT_EQ(test::readAll(file), std::string(bytes.begin(), bytes.end()));
        }
        for (const char* left : {".tmp", ".rows.tmp"})
            EXPECT_FALSE(std::filesystem::exists(file.string() + left));
    }
}

TEST(ScreenCaptureBlack, OnlyTheWantedRectanglesCount)
{
    Frame frame(100, 50);
    frame.row(40)[3 * 90] = 1; // one dark-blue pixel at (90, 40), outside the first rectangle
    const CaptureBitmap image = toCaptureBitmap(frame);
    const CaptureRegionRect left{0, 0, 50, 50};
    EXPECT_TRUE(isAllBlack(image, std::vector{left}));
    EXPECT_FALSE(isAllBlack(image, std::vector{left, CaptureRegionRect{80, 35, 20, 10}}));
    EXPECT_FALSE(isAllBlack(image, {}));
    EXPECT_FALSE(isAllBlack(image, std::vector{CaptureRegionRect{200, 200, 10, 10}})) << "nothing seen is not black";
    EXPECT_TRUE(isAllBlack(toCaptureBitmap(Frame(4, 4)), {}));
}

} // namespace
} // namespace tvx
