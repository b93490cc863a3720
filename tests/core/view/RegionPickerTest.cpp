#include "view/RegionPicker.h"
#include "view/RegionPreview.h"

#include "support/GameScreen.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

RegionPicker pickerOnGameScreen()
{
    RegionPicker picker(defaultSettings(""));
    picker.setScreen(test::gameCapture({"137", "4567890", "1234567890"}));
    return picker;
}

TEST(RegionPickerTest, PicturePointsMapToScreenPixelsAtEveryZoom)
{
    RegionPicker picker = pickerOnGameScreen();
    struct Case { std::int32_t zoomAsked, zoom, x, y, pixelX, pixelY; };
    const Case cases[] = {
        {1, 1, 10, 20, 10, 20},     {2, 2, 21, 41, 10, 20},     {3, 2, 21, 41, 10, 20},
        {8, 8, 87, 7, 10, 0},       {100, 16, 160, 16, 10, 1},  {0, 1, -5, -1, 0, 0},
        {4, 4, 99999, 99999, 1023, 767},
    };
    for (const Case& c : cases) {
        picker.setZoom(c.zoomAsked);
        EXPECT_EQ(picker.zoom(), c.zoom) << c.zoomAsked;
        const ScreenPoint p = picker.screenPixel(c.x, c.y);
        EXPECT_EQ(p.x, c.pixelX) << c.zoomAsked << " " << c.x;
        EXPECT_EQ(p.y, c.pixelY) << c.zoomAsked << " " << c.y;
    }
}

TEST(RegionPickerTest, ADragSpansTheRectangleOfItsCornerPixels)
{
    RegionPicker picker = pickerOnGameScreen();
    picker.setZoom(4);
    picker.selectRegion(RegionExp);
    struct Case { std::int32_t fromX, fromY, toX, toY; CaptureRegionRect rect; };
    const Case cases[] = {
        {400, 2000, 763, 2035, {100, 500, 91, 9}}, // right and down; both corners included
        {763, 2035, 400, 2000, {100, 500, 91, 9}}, // left and up gives the same
        {400, 2000, 403, 2003, {100, 500, 1, 1}},  // a click is one pixel
        {400, 2000, 800, 2200, {100, 500, 101, 51}}, // taller than a column group: read by shape
        {400, 2200, 800, 2000, {100, 500, 101, 51}},
    };
    for (const Case& c : cases) {
        picker.press(c.fromX, c.fromY);
        picker.drag((c.fromX + c.toX) / 2, (c.fromY + c.toY) / 2);
        EXPECT_TRUE(picker.dragging());
        picker.release(c.toX, c.toY);
        EXPECT_FALSE(picker.dragging());
        EXPECT_EQ(picker.settings().CaptureRegion[RegionExp], c.rect) << c.toX << "," << c.toY;
    }
    EXPECT_EQ(picker.settings().CaptureRegion[RegionLevel], defaultSettings("").CaptureRegion[RegionLevel]);
    EXPECT_EQ(picker.pictureRect(RegionExp), (CaptureRegionRect{400, 2000, 404, 204}));
    EXPECT_EQ(picker.selectedCentre().x, 400 + 202); // where a new zoom scrolls to
    EXPECT_EQ(picker.selectedCentre().y, 2000 + 102);
    EXPECT_FALSE(picker.drag(0, 0)); // no drag without a press
}

TEST(RegionPickerTest, NudgingKeepsTheRegionOnTheScreen)
{
    RegionPicker picker = pickerOnGameScreen();
    picker.selectRegion(RegionMoney); // 0, 269, 146 x 9
    EXPECT_FALSE(picker.nudge(-1, 0));
    EXPECT_TRUE(picker.nudge(3, -2));
    EXPECT_EQ(picker.settings().CaptureRegion[RegionMoney], (CaptureRegionRect{3, 267, 146, 9}));
    EXPECT_TRUE(picker.nudge(5000, 5000));
    EXPECT_EQ(picker.settings().CaptureRegion[RegionMoney], (CaptureRegionRect{1024 - 146, 768 - 9, 146, 9}));
}

TEST(RegionPixelsTest, PixelsOffThePictureReadBlackAndTheRestAs0xRRGGBB)
{
    Frame frame(4, 2);
    for (int x = 0; x < 4; ++x)
        for (int y = 0; y < 2; ++y)
            frame.setPixel(x, y, 1, 2, static_cast<std::uint8_t>(10 * x + y)); // blue, green, red
    const std::vector<std::uint32_t> pixels = regionPixels(toCaptureBitmap(frame), {2, 1, 3, 2});
    EXPECT_EQ(pixels, (std::vector<std::uint32_t>{0x150201, 0x1F0201, 0, 0, 0, 0}));
}

} // namespace
} // namespace tvx
