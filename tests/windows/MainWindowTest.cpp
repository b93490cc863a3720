// The main window in both front ends: its menus, account and log, and the live lines, the
// compact window and the history window showing the core's views.
#include "support/WindowDriver.h"

#include "TextCodecFactory.h"
#include "base/Utf8Path.h"
#include "config/ConfigFile.h"
#include "measurement/SessionHistory.h"
#include "meter/Meter.h"
#include "shell/DebugLog.h"
#include "support/FakeMachine.h"
#include "support/GameScreen.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"
#include "support/TextChecks.h"
#include "view/GraphFrameView.h"
#include "view/HistoryView.h"
#include "view/JokePopup.h"
#include "view/LiveWindowModel.h"
#include "view/MainMenu.h"

#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

namespace tvx::test {
namespace {

class MainWindowTest : public testing::Test {
protected:
    MainWindowTest()
    {
        settings.SaveFolder = pathUtf8(temp.path());
        settings.StartDelay = 0;
    }

    std::string debugLog() const { return readAll(log.path()); }

    // A reading of these numbers after the given seconds of play.
    void readAfter(std::uint32_t seconds, const std::array<std::string, kRegionCount>& numbers)
    {
        machine.clock.advanceMs(seconds * 1000);
        machine.screens = {gameCapture(numbers)};
        host->meter().cycle().runCycle();
    }

    Settings saved()
    {
        Settings read = defaultSettings(pathUtf8(temp.path()));
        ConfigFile(read, temp.path(), machine, *codec).run(ConfigFile::Load);
        return read;
    }

    TempFolder temp;
    FakeMachine machine;
    std::unique_ptr<TextCodec> codec = platform::makeTextCodec();
    Settings settings = defaultSettings("");
    DebugLog log{temp.path(), machine.clock};
    std::unique_ptr<MainWindowHost> host = makeMainWindowHost(settings, log, machine);
};

// Every menu item keeps the core's caption, Run the session's, through a relabelling after a
// change of language too; Run waits for the load.
TEST_F(MainWindowTest, MenusKeepTheirCaptionsAndFollowTheSessionFromTheLoadToTheClose)
{
    const auto expectMenus = [&](const char* when, std::string_view run, bool runEnabled, bool stopEnabled) {
        for (int command = 0; command <= static_cast<int>(MenuCommand::Version); ++command) {
            const MenuItem& item = menuItem(static_cast<MenuCommand>(command));
            EXPECT_EQ(host->menuText(std::string(item.name)), item.command == MenuCommand::Run ? run : item.text())
                << when << " " << item.name;
        }
        EXPECT_EQ(std::pair(host->menuEnabled("menuRun"), host->menuEnabled("menuStop")),
                  std::pair(runEnabled, stopEnabled)) << when;
        EXPECT_EQ(host->window().text("cmdTempStop"), "一時停止") << when;
    };
    EXPECT_EQ(host->window().title(), "Tallivex  for MapleStory    Ver.2.20");
    expectMenus("before the load", menuItem(MenuCommand::Run).text(), false, false);
    machine.screens = {gameCapture({"50", "1000", "0"})};
    host->load();
    EXPECT_TRUE(host->logBox().starts_with(" 月日 時刻")) << host->logBox();
    host->retranslate();
    expectMenus("relabelled", "ロギング", false, true);

    host->meter().cycle().runCycle();
    EXPECT_EQ(host->window().text("lblStartLv"), "50");
    EXPECT_EQ(host->window().text("lblStartExpPS"), "0.14％");
    host->choose("menuStop");
    expectMenus("stopped", "開始", true, false);
    EXPECT_HOLDS(host->logBox(), "    開始  Lv:  50");
    host->choose("menuOperatingInfo");
    EXPECT_HOLDS(debugLog(), "Click : Operating Information ");

    host->close();
    EXPECT_TRUE(host->logBox().ends_with("        終了しています・・・\n")) << host->logBox();
}

TEST_F(MainWindowTest, GraphLabelClicksReachTheViewAndTheLog)
{
    settings.AutoStart = false;
    host->load();
    host->clickGraphLabel(GraphLabel::Tl1);
    host->clickGraphLabel(GraphLabel::El0);
    EXPECT_EQ(host->meter().state().graphView.timeShift, settings.GraphTimeScale / 4);
    EXPECT_FLOAT_EQ(host->meter().state().graphView.zoom, 1.1f);
    EXPECT_LACKS(debugLog(), "Click : Window Refresh ") << "a label click is the graph's";
}

// The version window's おまけ opens the popup; each kind of attempt in turn (the close box, Escape, its button)
// shows the next line, whole, and only the attempt on the last line lets it go.
TEST_F(MainWindowTest, TheJokePopupFromTheVersionWindowLetsGoOnlyAfterItsScript)
{
    const auto script = JokePopup::script();
    WindowDriver& version = host->version();
    WindowDriver& joke = host->joke();
    std::string caption;
    std::vector<std::string> faults;
    bool versionLeftOpen = false;
    std::deque<PlayerStep> steps{[&] {
                                     if (!version.isOpen())
                                         return false;
                                     caption = version.text("cmdJoke");
                                     version.shoot("version");
                                     version.click("cmdJoke");
                                     return true;
                                 },
                                 [&] { return joke.isOpen(); }};
    for (std::size_t line = 0; line < script.size(); ++line)
        steps.push_back([&, line] {
            const std::string at = "line " + std::to_string(line) + ": ";
            if (!joke.isOpen()) {
                faults.push_back(at + "the popup has gone");
                return true;
            }
            if (joke.title() != script[line].caption || joke.text("lblMessage") != script[line].message ||
                joke.text("cmdClose") != script[line].button)
                faults.push_back(at + "shows " + joke.text("lblMessage"));
            if (!joke.fits("lblMessage") || !joke.fits("cmdClose"))
                faults.push_back(at + "cut off");
            joke.shoot("popup-" + std::to_string(line + 1));
            if (line % 3 == 0)
                joke.close();
            else if (line % 3 == 1)
                joke.press(WindowDriver::Key::Escape);
            else
                joke.click("cmdClose");
            return true;
        });
    steps.push_back([&] {
        if (joke.isOpen())
            return false; // the deadline's own closing attempts end it, and the test fails
        versionLeftOpen = version.isOpen();
        version.click("cmdOK");
        return true;
    });
    play(std::move(steps), [&] { host->choose("menuVersion"); });
    EXPECT_EQ(caption, JokePopup::kOpenCaption);
    EXPECT_TRUE(faults.empty()) << faults.front() << " (" << faults.size() << " in all)";
    EXPECT_TRUE(versionLeftOpen) << "the last attempt closes only the popup";
}

// The live figures' windows.
using LiveWindowsTest = MainWindowTest;

TEST_F(LiveWindowsTest, TheLiveLinesAndTheCompactWindowDrawTheLiveViewWholeAndFollowTheSession)
{
    settings.StallAlarm = true;
    settings.StallMinutes = 1;
    settings.CompactShown = true; // open when the meter last closed: it opens before the session starts
    host->load();
    ASSERT_TRUE(host->compact().isOpen());
    EXPECT_EQ(host->compact().title(), kCompactTitle);
    WindowDriver& window = host->window();
    const auto expectShown = [&](const char* when) {
        const LiveView view = meterLiveView(host->meter());
        EXPECT_EQ(window.text("lblLiveRates"), view.rates) << when;
        EXPECT_EQ(window.text("lblLiveOutlook"), view.outlook) << when;
        EXPECT_TRUE(window.fits("lblLiveRates") && window.fits("lblLiveOutlook")) << when;
        // The compact window draws the view's texts in order, whole, over the game without taking the focus.
        std::vector<std::string> texts{view.stateText, view.levelText};
        for (const LiveLine& line : view.compact) {
            texts.push_back(line.caption);
            texts.push_back(line.value);
        }
        const MainWindowHost::CompactShown compact = host->compactShown();
        EXPECT_EQ(std::tuple(compact.texts, compact.whole, compact.overGame), std::tuple(texts, true, true)) << when;
        return view;
    };
    EXPECT_EQ(expectShown("waiting").stateText, "待機中");

    readAfter(0, {"180", "1000", "2000"});
    readAfter(600, {"180", "2501000", "9000"});
    const LiveView reading = expectShown("reading");
    EXPECT_EQ(reading.stateText, "読み取り中");
    EXPECT_HOLDS(reading.rates, "15,000k/h"); // 2.5 million in 10 minutes
    host->compact().shoot("compact-reading");

    // A reading without a gain after the stall minutes.
    readAfter(61, {"180", "2501000", "9000"});
    const LiveView stalled = expectShown("stalled");
    EXPECT_EQ(stalled.stateText, "停滞：経験値が増えません");
    EXPECT_EQ(stalled.stateColour, 0xD02020u) << "red";
    host->compact().shoot("compact-stall");

    // About a million k/h of each still fits the live lines and the compact window.
    readAfter(600, {"180", "166001000", "16667666666"});
    const LiveView high = expectShown("high rates");
    EXPECT_HOLDS(high.rates, "10分 981,");

    window.clickNow("cmdTempStop");
    EXPECT_EQ(expectShown("suspended").stateText, "一時停止中");
}

TEST_F(LiveWindowsTest, TheCompactWindowKeepsItsPlaceOpacityAndOpennessInTheSettingsFile)
{
    settings.AutoStart = false;
    host->load();
    host->choose("menuCompact");
    ASSERT_TRUE(host->compact().isOpen());
    EXPECT_EQ(host->compactShown().opacity, 90) << "the default";
    const auto place = [&] { return std::pair(host->compact().frame().left, host->compact().frame().top); };
    const auto [x, y] = place();
    EXPECT_EQ(std::pair(x, y), std::pair(host->screen().width - kCompactWidth - 16, 16)) << "the top right corner";
    host->dragCompact(-300, 200);
    const std::pair placed(x - 300, y + 200);
    host->compactMenu(60);
    Settings file = saved();
    EXPECT_EQ(std::tuple(file.CompactX, file.CompactY, file.CompactOpacity, file.CompactShown),
              std::tuple(placed.first, placed.second, 60, true));

    // Closed by itself or from the main window's menu, and opened again: where it was left.
    host->compactMenu(0);
    EXPECT_FALSE(saved().CompactShown);
    host->choose("menuCompact");
    host->choose("menuCompact");
    EXPECT_FALSE(host->compact().isOpen()) << "the menu closes it too";
    host->choose("menuCompact");
    ASSERT_TRUE(host->compact().isOpen());
    EXPECT_EQ(place(), placed);

    // Open when the meter closes: it stays open in the file, and the next start opens it
    // where it was left, as it was.
    host->close();
    EXPECT_FALSE(host->compact().isOpen());
    Settings next = saved();
    ASSERT_TRUE(next.CompactShown);
    host.reset();
    host = makeMainWindowHost(next, log, machine);
    host->load();
    ASSERT_TRUE(host->compact().isOpen());
    EXPECT_EQ(place(), placed);
    EXPECT_EQ(host->compactShown().opacity, 60);
    EXPECT_EQ(machine.count("message "), 0u);
}

TEST_F(LiveWindowsTest, TheHistoryWindowListsTheSessionsNewestFirstExportsThemAndNamesAnUnreadableFile)
{
    settings.AutoStart = false;
    const std::filesystem::path history = historyFilePath(settings);
    // Oldest first in the file, as the meter writes it; two sessions in one week.
    for (const std::int64_t day : {2, 9, 3}) {
        const LocalDateTime start{2025, 6, static_cast<int>(day), 21, 0, 0};
        saveHistoryRow(history, {start, addSeconds(start, 5400), 5400, 140, 141, 123'456'789 * day,
                                 123'456'789 * day / 1500, 98'765'432, 65'843, 0, 0});
    }
    const std::string historyBytes = readAll(history);
    const std::vector<HistoryRow> rows = loadHistory(history);
    std::vector<std::vector<std::vector<std::string>>> tables; // each page's header row, then its rows
    for (const HistoryTable& table : {historySessions(rows), historyDays(rows), historyWeeks(rows)}) {
        tables.push_back({table.headers});
        tables.back().insert(tables.back().end(), table.rows.begin(), table.rows.end());
    }
    host->load();
    host->choose("menuHistory");
    bool whole = false;
    const auto pages = host->historyPages(&whole);
    EXPECT_EQ(host->history().title(), kHistoryTitle);
    ASSERT_EQ(pages, tables);
    EXPECT_EQ(pages[0][1][0], "2025/06/09 21:00:00") << "newest first";
    EXPECT_TRUE(whole);
    EXPECT_TRUE(host->history().enabled("cmdExport"));
    host->history().shoot("history");

    // Where the player chooses, the sessions as the core writes them; neither the history
    // file itself nor a folder that is not there takes it, and the player is told.
    const std::filesystem::path exported = temp.path() / utf8Path("書き出し 先.csv");
    const std::optional<std::string> proposed = host->exportHistory(exported);
    EXPECT_TRUE(!proposed || proposed->ends_with("/セッション履歴.csv")) << proposed.value_or("");
    EXPECT_EQ(readAll(exported), historyCsv(rows));
    EXPECT_EQ(machine.count("message "), 0u);
    for (const auto& [refused, named] :
         {std::pair{history, "セッション履歴のファイルそのもの"}, std::pair{temp.path() / "missing" / "x.csv", "missing"}}) {
        machine.events.clear();
        host->exportHistory(refused);
        ASSERT_EQ(machine.count("message "), 1u) << pathUtf8(refused);
        EXPECT_HOLDS(machine.events.back(), named);
    }
    EXPECT_EQ(readAll(history), historyBytes) << "the history is never written by the window";

    // A file that is not a history: named, nothing listed, left as it is.
    const std::string damaged = std::string(kHistoryHeader) + "\r\n2025/06/09 21:00:00,not a row\r\n";
    std::ofstream(history, std::ios::binary | std::ios::trunc) << damaged;
    machine.events.clear();
    host->choose("menuHistory");
    ASSERT_EQ(machine.count("message "), 1u);
    EXPECT_HOLDS(machine.events.back(), pathUtf8(history));
    ASSERT_TRUE(host->history().isOpen());
    for (const auto& page : host->historyPages(&whole))
        EXPECT_EQ(page.size(), 1u) << "the header alone";
    EXPECT_FALSE(host->history().enabled("cmdExport"));
    EXPECT_EQ(readAll(history), damaged);
}

} // namespace
} // namespace tvx::test
