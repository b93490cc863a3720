#include "FormCalibrate.h"
#include "GlyphView.h"
#include "ScreenPicture.h"

#include "TextCodecFactory.h"
#include "config/ConfigFile.h"
#include "ports/ScreenSource.h"
#include "ports/Waiter.h"
#include "base/Utf8Path.h"
#include "support/BitmapFont.h"
#include "support/ScaledFont.h"
#include "support/ScriptedScreen.h"
#include "support/FakeClock.h"
#include "support/ReadFile.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace tvx::ui {
namespace {

using test::fontCapture;
using test::InstantWaiter;
using test::ScriptedScreen;

template <typename T>
T* child(QWidget& form, const QString& name)
{
    auto* widget = form.findChild<T*>(name);
    EXPECT_NE(widget, nullptr) << name.toStdString();
    return widget;
}

// Takes screens through the capture button and learns each with the numbers typed.
void captureAndLearn(FormCalibrate& form, const std::vector<std::array<std::string, kRegionCount>>& screens)
{
    for (const auto& numbers : screens) {
        child<QPushButton>(form, QStringLiteral("cmdCapture"))->click();
        for (int r = 0; r < kRegionCount; ++r)
            child<QLineEdit>(form, QStringLiteral("txtNumber%1").arg(r))
                ->setText(QString::fromStdString(numbers[static_cast<std::size_t>(r)]));
        child<QPushButton>(form, QStringLiteral("cmdLearn"))->click();
    }
}

const std::vector<std::array<std::string, kRegionCount>> kScreens{
    {"58", "1234567", "90,210"}, {"247", "8890123", "5,006,400"}, {"203", "4455667", "-"}, {"96", "-", "-"}};

TEST(FormCalibrateTest, LearnsFromCapturesAndChangesTheSettingsOnlyWhenConfirmed)
{
    Settings settings = defaultSettings("");
    const Settings before = settings;
    InstantWaiter waiter;
    ScriptedScreen screen;
    for (std::uint32_t i = 0; i < kScreens.size(); ++i)
        screen.screens.push_back(fontCapture(kScreens[i], i + 1));
    {
        FormCalibrate form(settings, nullptr, {&screen, &waiter, nullptr});
        EXPECT_EQ(child<QLabel>(form, QStringLiteral("lblReading0"))->text(),
                  QStringLiteral("読み取り： キャプチャ画像がありません"));
        captureAndLearn(form, kScreens);
        const QString level = child<QLabel>(form, QStringLiteral("lblMessage0"))->text();
        EXPECT_TRUE(level.startsWith(QStringLiteral("学習しました（文字幅 6 列）"))) << level.toStdString();
        EXPECT_TRUE(level.contains(QStringLiteral("読み返し： 58 → 58、247 → 247、203 → 203、96 → 96"))) << level.toStdString();
        EXPECT_TRUE(level.contains(QStringLiteral("未学習： 1"))) << level.toStdString();
        EXPECT_TRUE(child<GlyphView>(form, QStringLiteral("picGlyph5"))->columns() == test::fontGlyph('5'));
        // The built-in templates are seven columns wide: the level's 1, never shown, is empty.
        EXPECT_TRUE(child<GlyphView>(form, QStringLiteral("picGlyph1"))->columns().empty());
        // The last screen read with what was learnt.
        EXPECT_EQ(child<QLabel>(form, QStringLiteral("lblReading0"))->text(), QStringLiteral("読み取り： 96"));
        child<QPushButton>(form, QStringLiteral("cmdCancel"))->click();
    }
    EXPECT_EQ(settings, before);

    for (std::uint32_t i = 0; i < kScreens.size(); ++i)
        screen.screens.push_back(fontCapture(kScreens[i], i + 1));
    FormCalibrate form(settings, nullptr, {&screen, &waiter, nullptr});
    captureAndLearn(form, kScreens);
    child<QPushButton>(form, QStringLiteral("cmdApply"))->click();
    EXPECT_EQ(form.result(), QDialog::Accepted);
    EXPECT_EQ(settings.ReferenceSize[RegionLevel].Width, 6);
    EXPECT_EQ(settings.ReferenceSize[RegionMoney].Width, 6);
    EXPECT_EQ(settings.PatternStrings[RegionLevel][1], "");
    EXPECT_NE(settings.PatternStrings[RegionLevel][9], before.PatternStrings[RegionLevel][9]);
}

TEST(FormCalibrateTest, DraggingOnTheZoomedScreenSetsTheRegionAndShowsItsReading)
{
    Settings settings = defaultSettings("");
    CaptureBitmap screen = fontCapture({"", "", ""}, 1);
    FormCalibrate form(settings, &screen, {});
    EXPECT_FALSE(child<QPushButton>(form, QStringLiteral("cmdCapture"))->isEnabled());
    // The experience number alone, somewhere else on the screen.
    Frame frame = test::fontScreen({"", "", ""});
    test::paintFontText(frame, {300, 100, 60, 9}, RegionExp, 2, "4096]");
    form.showScreen(toCaptureBitmap(frame));
    child<QComboBox>(form, QStringLiteral("cboZoom"))->setCurrentIndex(1); // 2 times
    form.findChild<QWidget*>(QStringLiteral("optRegion1"))->setProperty("checked", true);

    auto* picture = child<ScreenPicture>(form, QStringLiteral("picScreen"));
    QTest::mousePress(picture, Qt::LeftButton, {}, QPoint(2 * 300, 2 * 100));
    QMouseEvent move(QEvent::MouseMove, QPointF(2 * 330, 2 * 104), picture->mapToGlobal(QPointF(2 * 330, 2 * 104)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(picture, &move);
    QTest::mouseRelease(picture, Qt::LeftButton, {}, QPoint(2 * 359 + 1, 2 * 108 + 1));
    EXPECT_EQ(form.calibration().picker().settings().CaptureRegion[RegionExp], (CaptureRegionRect{300, 100, 60, 9}));
    EXPECT_EQ(child<GlyphView>(form, QStringLiteral("picColumns1"))->columns().size(), 60u);

    child<QLineEdit>(form, QStringLiteral("txtNumber1"))->setText(QStringLiteral("4096"));
    child<QPushButton>(form, QStringLiteral("cmdLearn"))->click();
    EXPECT_TRUE(child<QLabel>(form, QStringLiteral("lblMessage1"))->text().contains(QStringLiteral("4096 → 4096")));
    QTest::keyClick(picture, Qt::Key_Right); // a moved region starts over
    EXPECT_EQ(child<QLabel>(form, QStringLiteral("lblMessage1"))->text(), QString());
    child<QPushButton>(form, QStringLiteral("cmdApply"))->click();
    EXPECT_EQ(settings.CaptureRegion[RegionExp], (CaptureRegionRect{301, 100, 60, 9}));
    EXPECT_EQ(settings.ReferenceSize[RegionExp].Width, 5);

    // For the README: TALLIVEX_SCREENSHOT=file.png saves the window as the player sees it.
    if (const QByteArray path = qgetenv("TALLIVEX_SCREENSHOT"); !path.isEmpty())
        form.grab().save(QString::fromLocal8Bit(path));
}

// A UI scaled by one and a half draws the digits a column wider in some places than in
// others: taught, the region is read by shape, which the window says.
TEST(FormCalibrateTest, AScaledUiIsTaughtAsShapesAndTheWindowSaysSo)
{
    Settings settings = defaultSettings("");
    const CaptureRegionRect rect{300, 100, 110, 16};
    settings.CaptureRegion[RegionExp] = rect;
    settings.BinaryThreshold[RegionExp] = 135;
    const auto drawn = [&rect](const char* text, double origin) {
        return test::scaledScreen(rect, text, {1.5, origin, 0.3, false, false, "", false});
    };
    FormCalibrate form(settings, nullptr, {});
    form.resize(1280, 760);
    const std::pair<const char*, double> screens[] = {
        {"3,141,592]", 1.2}, {"6,535,897]", 1.7}, {"9,323,846]", 2.1}, {"2,643,383]", 1.4}, {"2,795,028]", 2.6}};
    for (const auto& [text, origin] : screens) {
        form.showScreen(drawn(text, origin));
        child<QLineEdit>(form, QStringLiteral("txtNumber1"))->setText(QString::fromUtf8(text).remove(QLatin1Char(']')));
        child<QPushButton>(form, QStringLiteral("cmdLearn"))->click();
    }
    const QString message = child<QLabel>(form, QStringLiteral("lblMessage1"))->text();
    EXPECT_TRUE(message.startsWith(QStringLiteral("学習しました（字形、高さ "))) << message.toStdString();
    EXPECT_TRUE(message.contains(QStringLiteral("読み方： 字形、しきい値 135"))) << message.toStdString();
    EXPECT_TRUE(message.contains(QStringLiteral("2795028 → 2795028　全数字を学習済み"))) << message.toStdString();
    form.showScreen(drawn("1,024,768]", 2.3));
    EXPECT_EQ(child<QLabel>(form, QStringLiteral("lblReading1"))->text(), QStringLiteral("読み取り： 1024768"));
    EXPECT_FALSE(child<GlyphView>(form, QStringLiteral("picGlyph107"))->columns().empty());

    // For the README: TALLIVEX_SCREENSHOT_SHAPES=file.png saves the window as the player sees it.
    if (const QByteArray path = qgetenv("TALLIVEX_SCREENSHOT_SHAPES"); !path.isEmpty())
        form.grab().save(QString::fromLocal8Bit(path));
    child<QPushButton>(form, QStringLiteral("cmdApply"))->click();
    EXPECT_EQ(settings.Reading[RegionExp].Mode, ReadingMode::Shapes);
}

TEST(FormCalibrateTest, TheOptionsWindowOpensItAndTakesWhatIsConfirmed)
{
    test::TempFolder home;
    test::FakeClock clock{LocalDateTime{2024, 3, 9, 7, 5, 2}};
    DebugLog log{home.path(), clock};
    test::ScriptedPrompter prompter;
    const auto codec = platform::makeTextCodec();
    Settings settings = defaultSettings(pathUtf8(home.path()));
    ConfigFile config{settings, home.path(), prompter, *codec, &log};
    int sized = 0;
    config.setSecurePixels([&sized] { ++sized; });
    const CaptureBitmap screen = fontCapture({"", "4096", ""}, 1);
    FormOption options(config, &screen);
    EXPECT_EQ(child<QLabel>(options, QStringLiteral("lblResult1"))->text(), QStringLiteral("認識結果： 認識できません　［完全一致］"));

    bool shown = false;
    QTimer::singleShot(0, [&shown] {
        auto* form = qobject_cast<FormCalibrate*>(QApplication::activeModalWidget());
        ASSERT_NE(form, nullptr);
        shown = true;
        child<QLineEdit>(*form, QStringLiteral("txtNumber1"))->setText(QStringLiteral("4,096"));
        child<QPushButton>(*form, QStringLiteral("cmdLearn"))->click();
        child<QPushButton>(*form, QStringLiteral("cmdApply"))->click();
    });
    child<QPushButton>(options, QStringLiteral("cmdCalibrate"))->click();
    EXPECT_TRUE(shown);
    EXPECT_EQ(sized, 1);
    EXPECT_EQ(child<QLabel>(options, QStringLiteral("lblResult1"))->text(), QStringLiteral("認識結果： 4096　［完全一致］"));
    EXPECT_EQ(settings.PatternStrings[RegionLevel], defaultSettings("").PatternStrings[RegionLevel]);
    const std::string debugLog = test::readAll(log.path());
    EXPECT_NE(debugLog.find("Click : Calibration Learn "), std::string::npos) << debugLog;
    EXPECT_NE(debugLog.find("Click : Calibration Apply "), std::string::npos);
}

} // namespace
} // namespace tvx::ui
