#include "FormCompact.h"
#include "FormHistory.h"
#include "FormMain.h"
#include "QtText.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "measurement/SessionHistory.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "view/HistoryView.h"
#include "view/LiveWindowModel.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/ScriptedPrompter.h"
#include "support/TempFolder.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace tvx {
namespace {

// One meter with its main window over a home folder whose settings file the windows save.
struct Desk {
    Desk(Settings& settings, const std::filesystem::path& home, test::FakeMachine& machine, DebugLog& log,
         test::ScriptedPrompter& prompter, TextCodec& codec)
        : config(settings, home, prompter, codec, &log), window(programTitle("MapleStory"), log, home),
          ports{machine.clock, machine, machine, machine, machine, machine, machine, window}, meter(settings, ports, log)
    {
        window.setConfigFile(&config, {});
        window.attach(meter);
    }

    ConfigFile config;
    ui::FormMain window;
    MeterPorts ports;
    Meter meter;
};

class LiveWindowsTest : public testing::Test {
protected:
    LiveWindowsTest()
    {
        settings.SaveFolder = pathUtf8(temp.path());
        settings.StartDelay = 0;
    }

    // The settings as the file holds them now.
    Settings saved()
    {
        Settings fresh = defaultSettings(pathUtf8(temp.path()));
        ConfigFile(fresh, temp.path(), prompter, *codec).run(ConfigFile::Load);
        return fresh;
    }

    template <typename T = QLabel>
    static T* child(const QObject& parent, const QString& name)
    {
        auto* widget = parent.findChild<T*>(name);
        EXPECT_NE(widget, nullptr) << name.toStdString();
        return widget;
    }

    static std::string text(const QObject& parent, const QString& name) { return ui::coreText(child(parent, name)->text()); }

    // The player drags the window by the given distance.
    static void drag(QWidget& window, QPoint by)
    {
        const QPoint grip(60, 40);
        const QPoint from = window.mapToGlobal(grip);
        QMouseEvent press(QEvent::MouseButtonPress, grip, from, Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(&window, &press);
        for (const QPoint step : {by / 2, by}) {
            QMouseEvent move(QEvent::MouseMove, grip + step, from + step, Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(&window, &move);
        }
        QMouseEvent release(QEvent::MouseButtonRelease, grip + by, from + by, Qt::LeftButton, Qt::NoButton, {});
        QApplication::sendEvent(&window, &release);
    }

    test::TempFolder temp;
    test::FakeMachine machine;
    test::ScriptedPrompter prompter;
    std::unique_ptr<TextCodec> codec = platform::makeTextCodec();
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
};

TEST_F(LiveWindowsTest, TheLiveLinesAndTheCompactWindowDrawTheLiveViewAndFollowTheState)
{
    settings.StallAlarm = true;
    settings.StallMinutes = 1;
    // Open when the meter last closed: it opens before the session starts, and follows it.
    settings.CompactShown = true;
    Desk desk(settings, temp.path(), machine, log, prompter, *codec);
    desk.window.FormMain_Load();
    desk.window.show();
    ui::FormCompact* compact = desk.window.formCompact();
    ASSERT_NE(compact, nullptr);
    EXPECT_TRUE(compact->isVisible());
    EXPECT_EQ(compact->windowTitle(), QStringLiteral("Tallivex 小窓"));
    EXPECT_TRUE(compact->windowFlags().testFlags(Qt::Tool | Qt::WindowStaysOnTopHint)) << "over the game";
    EXPECT_EQ(compact->parent(), nullptr) << "not minimised with the main window";

    // Every text the view gives, where the windows draw it.
    const auto expectShown = [&](const char* when) {
        const LiveView view = meterLiveView(desk.meter);
        EXPECT_EQ(text(desk.window, QStringLiteral("lblLiveRates")), view.rates) << when;
        EXPECT_EQ(text(desk.window, QStringLiteral("lblLiveOutlook")), view.outlook) << when;
        EXPECT_EQ(text(*compact, QStringLiteral("lblState")), view.stateText) << when;
        EXPECT_EQ(child(*compact, QStringLiteral("shpState"))->property("stateColour").toUInt(), view.stateColour) << when;
        EXPECT_EQ(text(*compact, QStringLiteral("lblLevel")), view.levelText) << when;
        for (std::size_t i = 0; i < view.compact.size(); ++i) {
            EXPECT_EQ(text(*compact, QStringLiteral("lblCaption%1").arg(i)), view.compact[i].caption) << when;
            EXPECT_EQ(text(*compact, QStringLiteral("lblValue%1").arg(i)), view.compact[i].value) << when;
        }
        EXPECT_EQ(compact->findChild<QLabel*>(QStringLiteral("lblCaption%1").arg(view.compact.size())), nullptr) << when;
        const QRect lastLine = child(*compact, QStringLiteral("lblValue%1").arg(view.compact.size() - 1))->geometry();
        EXPECT_LE(lastLine.bottom(), compact->height() - kCompactMargin) << when << ": every line inside";
        return view;
    };
    EXPECT_EQ(expectShown("waiting").stateText, "待機中");

    machine.screens = {test::gameCapture({"180", "1000", "2000"})};
    desk.meter.cycle().runCycle();
    machine.clock.advanceMs(10 * 60 * 1000);
    machine.screens = {test::gameCapture({"180", "5000", "9000"})};
    desk.meter.cycle().runCycle();
    const LiveView reading = expectShown("reading");
    EXPECT_EQ(reading.stateText, "読み取り中");
    EXPECT_EQ(reading.compact.size(), 4u) << "the money line too";
    EXPECT_TRUE(text(*compact, QStringLiteral("lblValue0")).ends_with("k/h"));
    if (const char* folder = std::getenv("TALLIVEX_SHOT_DIR"))
        compact->grab().save(QString::fromUtf8(folder) + QStringLiteral("/qt-compact-reading.png"));

    // A reading without a gain after the stall minutes: the mark turns red.
    machine.clock.advanceMs(61 * 1000);
    desk.meter.cycle().runCycle();
    EXPECT_EQ(expectShown("stalled").stateText, "停滞：経験値が増えません");
    EXPECT_EQ(compact->findChild<QLabel*>(QStringLiteral("shpState"))->property("stateColour").toUInt(), 0xD02020u);
    if (const char* folder = std::getenv("TALLIVEX_SHOT_DIR"))
        compact->grab().save(QString::fromUtf8(folder) + QStringLiteral("/qt-compact-stall.png"));

    // Rates of a high level, billions an hour, still fit the main window's line.
    machine.clock.advanceMs(10 * 60 * 1000);
    machine.screens = {test::gameCapture({"180", "600000000", "9000"})};
    desk.meter.cycle().runCycle();
    const LiveView high = expectShown("high rates");
    ASSERT_NE(high.rates.find("10分 3,599,970k/h"), std::string::npos) << high.rates;
    for (const char* name : {"lblLiveRates", "lblLiveOutlook"}) {
        const QLabel* line = child(desk.window, QString::fromLatin1(name));
        EXPECT_LE(line->fontMetrics().horizontalAdvance(line->text()), line->width()) << name;
    }

    desk.window.findChild<QPushButton*>(QStringLiteral("cmdTempStop"))->click();
    EXPECT_EQ(expectShown("suspended").stateText, "一時停止中");
    desk.window.action("menuStop")->trigger();
    EXPECT_EQ(expectShown("stopped").stateText, "停止中");
    desk.window.close();
}

TEST_F(LiveWindowsTest, TheCompactWindowKeepsItsPlaceOpacityAndOpennessInTheSettingsFile)
{
    settings.AutoStart = false;
    QPoint placed;
    {
        Desk desk(settings, temp.path(), machine, log, prompter, *codec);
        desk.window.FormMain_Load();
        desk.window.show();
        QAction* menuCompact = desk.window.action("menuCompact");
        menuCompact->trigger();
        ui::FormCompact* compact = desk.window.formCompact();
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        EXPECT_EQ(compact->pos(), QPoint(screen.width() - kCompactWidth - 16, 16)) << "the top right corner at first";
        EXPECT_TRUE(saved().CompactShown);
        EXPECT_EQ(saved().CompactX, kUnplaced) << "not moved yet";

        drag(*compact, QPoint(-300, 200));
        placed = compact->pos();
        EXPECT_EQ(placed, QPoint(screen.width() - kCompactWidth - 16 - 300, 216));
        EXPECT_EQ(QPoint(saved().CompactX, saved().CompactY), placed);

        QMenu* menu = compact->makeMenu();
        EXPECT_EQ(menu->actions().size(), static_cast<qsizetype>(kCompactOpacities.size() + 2));
        EXPECT_TRUE(child<QAction>(*menu, QStringLiteral("menuOpacity90"))->isChecked()) << "the default";
        child<QAction>(*menu, QStringLiteral("menuOpacity60"))->trigger();
        EXPECT_DOUBLE_EQ(compact->windowOpacity(), 0.6);
        EXPECT_EQ(saved().CompactOpacity, 60);

        child<QToolButton>(*compact, QStringLiteral("cmdClose"))->click();
        EXPECT_FALSE(compact->isVisible());
        EXPECT_FALSE(saved().CompactShown);
        menuCompact->trigger();
        EXPECT_TRUE(compact->isVisible());
        EXPECT_EQ(compact->pos(), placed);
        EXPECT_TRUE(saved().CompactShown);

        // The meter closes with the window open: it is only hidden, and stays open in the file.
        desk.window.close();
        EXPECT_FALSE(compact->isVisible());
        EXPECT_TRUE(saved().CompactShown);
    }

    // The next start reads the file and opens the window where it was left, as it was.
    Settings next = defaultSettings(pathUtf8(temp.path()));
    Desk desk(next, temp.path(), machine, log, prompter, *codec);
    desk.config.run(ConfigFile::Load);
    desk.window.FormMain_Load();
    ui::FormCompact* compact = desk.window.formCompact();
    ASSERT_NE(compact, nullptr);
    EXPECT_TRUE(compact->isVisible());
    EXPECT_EQ(compact->pos(), placed);
    EXPECT_DOUBLE_EQ(compact->windowOpacity(), 0.6);
    EXPECT_TRUE(prompter.shown.empty()) << prompter.shown.front().text;
    desk.window.close();
}

TEST_F(LiveWindowsTest, TheHistoryWindowListsTheSessionsNewestFirstAndExportsThem)
{
    settings.AutoStart = false;
    const std::filesystem::path history = historyFilePath(settings);
    const auto row = [](LocalDateTime start, std::int32_t level, std::int64_t gained) {
        HistoryRow r;
        r.start = start;
        r.end = addSeconds(start, 3600);
        r.activeSeconds = 3600;
        r.startLevel = level;
        r.endLevel = level + 1;
        r.expGained = gained;
        r.expPerHour = gained / 1000;
        r.levelUps = 1;
        return r;
    };
    // Oldest first in the file, as the meter writes it; two sessions on one Monday.
    const std::vector<HistoryRow> rows{row({2024, 1, 5, 21, 0, 0}, 120, 3'000'000),
                                       row({2024, 1, 8, 9, 30, 0}, 121, 4'500'000),
                                       row({2024, 1, 8, 20, 15, 0}, 122, 5'250'000)};
    for (const HistoryRow& r : rows)
        saveHistoryRow(history, r);
    const std::string historyBytes = test::readAll(history);

    Desk desk(settings, temp.path(), machine, log, prompter, *codec);
    desk.window.FormMain_Load();
    desk.window.action("menuHistory")->trigger();
    auto* form = desk.window.findChild<ui::FormHistory*>(QStringLiteral("frmHistory"));
    ASSERT_NE(form, nullptr);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(form->windowTitle(), QStringLiteral("セッション履歴"));
    auto* sessions = child<QTableWidget>(*form, QStringLiteral("grdSessions"));
    ASSERT_EQ(sessions->rowCount(), 3);
    EXPECT_EQ(sessions->item(0, 0)->text(), QStringLiteral("2024/01/08 20:15:00")) << "newest first";
    EXPECT_EQ(sessions->item(2, 0)->text(), QStringLiteral("2024/01/05 21:00:00"));
    EXPECT_EQ(sessions->item(0, 5)->text(), QStringLiteral("5,250,000"));
    const std::pair<const char*, HistoryTable> grids[] = {
        {"grdSessions", historySessions(rows)}, {"grdDays", historyDays(rows)}, {"grdWeeks", historyWeeks(rows)}};
    for (const auto& [name, table] : grids) {
        auto* grid = child<QTableWidget>(*form, QString::fromLatin1(name));
        ASSERT_EQ(grid->rowCount(), static_cast<int>(table.rows.size())) << name;
        ASSERT_EQ(grid->columnCount(), static_cast<int>(table.headers.size())) << name;
        for (int c = 0; c < grid->columnCount(); ++c)
            EXPECT_EQ(ui::coreText(grid->horizontalHeaderItem(c)->text()), table.headers[static_cast<std::size_t>(c)]);
        for (int r = 0; r < grid->rowCount(); ++r)
            for (int c = 0; c < grid->columnCount(); ++c)
                EXPECT_EQ(ui::coreText(grid->item(r, c)->text()),
                          table.rows[static_cast<std::size_t>(r)][static_cast<std::size_t>(c)])
                    << name << " " << r << "," << c;
    }
    EXPECT_EQ(child<QTableWidget>(*form, QStringLiteral("grdDays"))->rowCount(), 2);
    EXPECT_EQ(child<QTableWidget>(*form, QStringLiteral("grdWeeks"))->rowCount(), 2) << "Friday, then the Monday after";
    if (const char* folder = std::getenv("TALLIVEX_SHOT_DIR"))
        form->grab().save(QString::fromUtf8(folder) + QStringLiteral("/qt-history.png"));

    // The export: where the player chooses, the sessions as the view writes them; neither
    // the history file itself nor a folder that is not there takes it, and the player is told.
    const std::filesystem::path exported = temp.path() / utf8Path("書き出し 先.csv");
    const std::filesystem::path missing = temp.path() / "no such folder" / "x.csv";
    QString proposed;
    std::filesystem::path target;
    form->setSaveChooser([&](QWidget*, const QString& suggestion) {
        proposed = suggestion;
        return ui::qtText(pathUtf8(target));
    });
    const auto exportTo = [&](const std::filesystem::path& where) {
        target = where;
        prompter.shown.clear();
        child<QPushButton>(*form, QStringLiteral("cmdExport"))->click();
    };
    exportTo(exported);
    EXPECT_TRUE(proposed.endsWith(QStringLiteral("/セッション履歴.csv")));
    EXPECT_EQ(test::readAll(exported), historyCsv(rows));
    EXPECT_TRUE(prompter.shown.empty());
    for (const auto& [refused, named] : {std::pair{history, "セッション履歴のファイルそのもの"}, std::pair{missing, "no such folder"}}) {
        exportTo(refused);
        ASSERT_EQ(prompter.shown.size(), 1u) << pathUtf8(refused);
        EXPECT_NE(prompter.shown[0].text.find(named), std::string::npos) << prompter.shown[0].text;
    }
    EXPECT_EQ(test::readAll(history), historyBytes) << "the history is never written by the window";
    EXPECT_FALSE(std::filesystem::exists(missing));

    // A file that is not a history: named, no rows, left as it is.
    const std::string damaged = std::string(kHistoryHeader) + "\r\n2024/01/08 20:15:00,not a row\r\n";
    std::ofstream(history, std::ios::binary | std::ios::trunc) << damaged;
    prompter.shown.clear();
    desk.window.action("menuHistory")->trigger();
    ASSERT_EQ(prompter.shown.size(), 1u);
    EXPECT_NE(prompter.shown[0].text.find(pathUtf8(history)), std::string::npos) << prompter.shown[0].text;
    for (const char* name : {"grdSessions", "grdDays", "grdWeeks"})
        EXPECT_EQ(child<QTableWidget>(*form, QString::fromLatin1(name))->rowCount(), 0) << name;
    EXPECT_EQ(test::readAll(history), damaged);
    desk.window.close();
}

} // namespace
} // namespace tvx
