#include "FormOption.h"
#include "GlyphView.h"

#include "TextCodecFactory.h"
#include "config/ConfigFile.h"
#include "config/PatternColumns.h"
#include "ports/ScreenSource.h"
#include "ports/Waiter.h"
#include "recognition/GlyphPainter.h"
#include "base/Utf8Path.h"
#include "support/FakeClock.h"
#include "support/GameScreen.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"

#include <QLabel>
#include <QComboBox>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QTest>
#include <QScrollBar>
#include <QScrollArea>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>

namespace tvx::ui {
namespace {

class FakeWaiter : public Waiter {
public:
    void WaitMs(std::int32_t ms) override
    {
        waited.push_back(ms);
        if (during)
            during();
    }
    std::vector<std::int32_t> waited;
    std::function<void()> during;
};

class FakeScreen : public ScreenSource {
public:
    std::optional<CaptureBitmap> grab(std::span<const CaptureRegionRect>) override { return image; }
    std::optional<CaptureBitmap> image;
};

class FormOptionTest : public testing::Test {
protected:
    FormOptionTest()
    {
        m_settings = defaultSettings(pathUtf8(m_home));
        m_config.setSecurePixels([this] { ++m_sized; });
    }

    template <typename T>
    T* child(FormOption& form, const char* name)
    {
        auto* widget = form.findChild<T*>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    void click(FormOption& form, const char* name) { child<QPushButton>(form, name)->click(); }

    std::string file() const
    {
        std::ifstream in(m_home / "TV2MConfig.ini", std::ios::binary);
        std::ostringstream bytes;
        bytes << in.rdbuf();
        return m_codec->fromCp932(bytes.str()).value_or("");
    }

    test::TempFolder m_temp;
    const std::filesystem::path& m_home = m_temp.path();
    test::FakeClock m_clock{LocalDateTime{2024, 3, 9, 7, 5, 2}};
    DebugLog m_log{m_home, m_clock};
    test::ScriptedPrompter m_prompter;
    std::unique_ptr<TextCodec> m_codec = platform::makeTextCodec();
    Settings m_settings;
    int m_sized = 0;
    ConfigFile m_config{m_settings, m_home, m_prompter, *m_codec, &m_log};
};

TEST_F(FormOptionTest, NumbersAreAskedThroughThePrompterAndTheButtonsRunTheConfigFile)
{
    FormOption form(m_config, nullptr);
    form.show();
    // Never larger than the screen: its buttons stay on it.
    const QRect screen = form.screen()->availableGeometry();
    EXPECT_LE(form.frameGeometry().height(), screen.height());
    EXPECT_LE(form.frameGeometry().width(), screen.width());
    EXPECT_FALSE(child<QPushButton>(form, "cmdCapture")->isEnabled());
    auto* interval = child<QPushButton>(form, "cmdCaptureInterval");
    EXPECT_EQ(interval->text(), QStringLiteral("6"));

    m_prompter.numbers = {19999, 12};
    interval->click(); // cancelled
    EXPECT_EQ(m_settings.CaptureInterval, 6);
    interval->click();
    EXPECT_EQ(m_settings.CaptureInterval, 12);
    EXPECT_EQ(interval->text(), QStringLiteral("12"));
    EXPECT_EQ(m_prompter.shown.back().text, "キャプチャインターバル(分)を入力してください [1, 1440]");
    EXPECT_EQ(m_prompter.shown.back().title, "設定値入力");

    // A region size resizes the capture buffers at once.
    m_prompter.numbers = {12};
    click(form, "cmdSizeY1");
    EXPECT_EQ(m_settings.CaptureRegion[RegionExp].SizeY, 12);
    EXPECT_EQ(m_sized, 1);

    auto* method = child<QComboBox>(form, "cboScreenCapture");
    EXPECT_EQ(method->currentIndex(), 0);
    method->setCurrentIndex(1);
    EXPECT_EQ(m_settings.ScreenCapture, CaptureMethod::PrintScreen);

    click(form, "cmdSave");
    EXPECT_EQ(m_prompter.shown.back().text, "設定を保存しました。");
    EXPECT_NE(file().find("     12 ,          キャプチャインターバル(分)\r\n"), std::string::npos);
    EXPECT_NE(file().find("      1 ,          画面の取り込み方法"), std::string::npos);

    m_prompter.answers = {true, true};
    click(form, "cmdInit");
    EXPECT_EQ(m_settings.CaptureInterval, 6);
    EXPECT_EQ(interval->text(), QStringLiteral("6"));
    EXPECT_NE(file().find("      6 ,          キャプチャインターバル(分)\r\n"), std::string::npos);
    EXPECT_EQ(method->currentIndex(), 0) << "the defaults take the direct copy again";

    // Closing with an unsaved edit asks first; No keeps the file as it was.
    m_prompter.numbers = {30};
    interval->click();
    m_prompter.answers = {false};
    form.close();
    EXPECT_EQ(m_prompter.shown.back().kind, "yesno");
    EXPECT_EQ(m_prompter.shown.back().title, "設定");
    EXPECT_NE(file().find("      6 ,          キャプチャインターバル(分)\r\n"), std::string::npos);
    EXPECT_EQ(m_settings.CaptureInterval, 30) << "the edit holds until the program ends";
}

TEST_F(FormOptionTest, PatternCaptureWaitsGrabsSavesAndShowsTheRegions)
{
    FakeWaiter waiter;
    FakeScreen screen;
    screen.image = test::gameCapture({"137", "", ""});
    bool cycleSkip = false;
    bool heldWhileWaiting = false;
    waiter.during = [&] { heldWhileWaiting = cycleSkip; };
    FormOption form(m_config, nullptr, {&screen, &waiter, &m_clock, &cycleSkip});
    EXPECT_EQ(child<QLabel>(form, "lblResult0")->text(), QStringLiteral("認識結果： キャプチャ画像がありません　［完全一致］"));

    click(form, "cmdCapture");
    EXPECT_EQ(waiter.waited, std::vector<std::int32_t>{10000});
    EXPECT_TRUE(heldWhileWaiting) << "no reading meanwhile";
    EXPECT_FALSE(cycleSkip) << "and readings go on afterwards";
    EXPECT_TRUE(std::filesystem::exists(m_home / "Capture_0309070502.bmp"));
    EXPECT_EQ(m_sized, 1);
    EXPECT_EQ(child<QLabel>(form, "lblResult0")->text(), QStringLiteral("認識結果： 137　［完全一致］"));
    EXPECT_FALSE(child<QLabel>(form, "picCapture0")->pixmap().isNull());

    screen.image.reset();
    click(form, "cmdCapture");
    std::ifstream in(m_home / "debug.txt", std::ios::binary);
    std::ostringstream log;
    log << in.rdbuf();
    EXPECT_NE(log.str().find("Pattern Capture and Save ･･･ End \r\n"), std::string::npos);
    EXPECT_NE(log.str().find("Error Trap : cmdCapture_Click : CODE5  "), std::string::npos);
}

TEST_F(FormOptionTest, ATemplateIsTakenFromTheBinarisedColumnsOrDrawnPixelByPixel)
{
    const std::string five = m_settings.PatternStrings[RegionLevel][5];
    m_settings.PatternStrings[RegionLevel][5] = "";
    const CaptureBitmap capture = test::gameCapture({"57", "", ""});
    FormOption form(m_config, &capture);
    EXPECT_NE(child<QLabel>(form, "lblResult0")->text(), QStringLiteral("認識結果： 57　［完全一致］"));

    auto* tile = child<GlyphView>(form, "picPattern5");
    QTest::mouseClick(tile, Qt::LeftButton);
    // The "5" starts at column 1 of the region; a click selects one glyph width from there.
    auto* columns = child<GlyphView>(form, "picColumns");
    QTest::mouseClick(columns, Qt::LeftButton, {}, columns->pixelCentre(1, 0));
    EXPECT_EQ(columns->selectionLength(), 7);
    click(form, "cmdTakeColumns");
    EXPECT_EQ(m_settings.PatternStrings[RegionLevel][5], five);
    EXPECT_EQ(child<QLabel>(form, "lblResult0")->text(), QStringLiteral("認識結果： 57　［完全一致］"));

    // Row 0 of the first column is blank in every template; a click inks it.
    auto* editor = child<GlyphView>(form, "picEditor");
    QTest::mouseClick(editor, Qt::LeftButton, {}, editor->pixelCentre(0, 0));
    EXPECT_EQ(m_settings.PatternStrings[RegionLevel][5], "004F" + five.substr(4));
    EXPECT_EQ(decodePatternColumns(m_settings.PatternStrings[RegionLevel][5])->size(), 7u);
}

TEST_F(FormOptionTest, TheFirstShowingFitsTheRegionsOnTheScreen)
{
    // The pictures of the last capture widen the regions page; shown, the window takes them in.
    const CaptureBitmap capture = test::gameCapture({"137", "", ""});
    FormOption form(m_config, &capture);
    form.show();
    QTest::qWait(20);
    const QRect work = form.screen()->availableGeometry();
    EXPECT_TRUE(work.contains(form.geometry())) << form.geometry().width() << "x" << form.geometry().height();
    auto* tabs = child<QTabWidget>(form, "tabOption");
    const auto* regions = qobject_cast<QScrollArea*>(tabs->widget(0));
    ASSERT_NE(regions, nullptr);
    if (regions->widget()->sizeHint().width() + 64 < work.width()) {
        EXPECT_FALSE(regions->horizontalScrollBar()->isVisible()) << "room enough on this screen";
    }
    for (const char* name : {"cmdSave", "cmdClose"}) {
        const QWidget* button = child<QPushButton>(form, name);
        EXPECT_TRUE(form.rect().contains(QRect(button->mapTo(&form, QPoint(0, 0)), button->size()))) << name;
    }
    // With TALLIVEX_SHOT_DIR set, a picture of every tab as it first shows.
    if (const char* folder = std::getenv("TALLIVEX_SHOT_DIR"))
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            form.grab().save(QString::fromUtf8(folder) + QStringLiteral("/qt-options-tab%1.png").arg(tab));
        }
}

} // namespace
} // namespace tvx::ui
