// What the session shows and writes when readings fail, money is never read, the record
// file cannot be written, or a stop comes while a cycle waits: no figure is invented.
#include "support/CsvFields.h"
#include "support/MeterFixture.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tvx {
namespace {

using test::csvFields;
using test::splitLines;
using SessionFiguresTest = test::MeterFixture;

std::vector<std::string> recordLines(const std::filesystem::path& saveFolder)
{
    const auto lines = splitLines(test::readAll(saveFolder / "log" / utf8Path("給与明細200904月.csv")));
    return lines.empty() ? lines : std::vector<std::string>(lines.begin() + 1, lines.end());
}

std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t n = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
        ++n;
    return n;
}

TEST_F(SessionFiguresTest, MoneyHasNoTimeRateOrCurveUntilItIsRead)
{
    struct Case {
        const char* name;
        bool scan;
        const char* secondMinutes; // the money re-reads' waits shift the first reading
    };
    for (const Case& k : {Case{"money not scanned", false, "6.0"}, Case{"scanned, not found at first", true, "5.9"}}) {
        SCOPED_TRACE(k.name);
        test::TempFolder folder;
        settings.SaveFolder = pathUtf8(folder.path());
        settings.SaveCsv = true;
        settings.MoneyScan = k.scan;
        meter().menuRun_Click();
        cycle(100, "10", "100", ""); // bases, money unread
        cycle(460, "10", "350", "");
        cycle(820, "10", "600", "500"); // money's first reading is its base
        cycle(1180, "10", "850", "860");
        meter().menuStop_Click();

        const auto lines = recordLines(folder.path());
        ASSERT_EQ(lines.size(), 3u);
        EXPECT_EQ(csvFields(lines[0]), (std::vector<std::string>{"04/01 13:12", "10", "3697", "", "250", "", "6.0", "2", "", ""}));
        EXPECT_EQ(csvFields(lines[1]), (std::vector<std::string>{"04/01 13:18", "10", "3947", "500", "250", "0", k.secondMinutes, "2", "0.0", "0"}));
        EXPECT_EQ(csvFields(lines[2]), (std::vector<std::string>{"04/01 13:24", "10", "4197", "860", "250", "360", "6.0", "2", "6.0", "3"}));
        // The graph: a gap where money had no rate, then its rates.
        const clsGraphBuffer& graph = *meter().state().graph;
        EXPECT_EQ(graph.Value(2).RateM(), Currency::fromInt(-1));
        EXPECT_EQ(graph.Value(1).RateM(), Currency::fromInt(-1));
        EXPECT_EQ(graph.Value(0).RateM(), Currency::fromInt(3));
        const std::string box = meter().logBox().text();
        for (const std::string& shown : splitLines(box)) {
            if (shown.starts_with("04/01")) {
                EXPECT_EQ(shown.find('-'), std::string::npos) << shown;
            }
        }
        const std::size_t first = box.find("04/01 13:12");
        ASSERT_NE(first, std::string::npos) << box;
        const std::string line = box.substr(first, box.find("\r\n", first) - first);
        EXPECT_EQ(line.ends_with("     未認識 "), k.scan) << line;
        std::filesystem::remove_all(folder.path() / "log");
        meter().logBox().clear();
    }
}

TEST_F(SessionFiguresTest, AfterAChangeOfCharacterMoneyWaitsForItsOwnReading)
{
    settings.SaveCsv = true;
    meter().menuRun_Click();
    cycle(100, "10", "100", "5000");
    cycle(460, "10", "350", "5100");
    cycle(820, "5", "10", "");  // another character, money hidden
    cycle(1180, "5", "20", ""); // its bases
    cycle(1540, "5", "40", "");
    const auto lines = recordLines(temp.path());
    ASSERT_EQ(lines.size(), 2u);
    const auto fields = csvFields(lines[1]);
    EXPECT_EQ(fields[5], "") << lines[1];
    EXPECT_EQ(fields[8], "") << lines[1];
    EXPECT_EQ(fields[9], "") << lines[1];
}

TEST_F(SessionFiguresTest, AFailedReadingIsReportedAndChangesNeitherLabelsNorRecordsNorSummary)
{
    settings.SaveCsv = true;
    meter().menuRun_Click();
    cycle(40, "", "", "");
    EXPECT_TRUE(meter().logBox().text().ends_with("\r\n04/01 13:05  認識失敗  全部 NG\r\n"));
    EXPECT_FALSE(std::filesystem::exists(temp.path() / "log")) << "no record before a reading";
    cycle(100, "10", "100", "");
    cycle(460, "11", "50", "");
    const ResultLabels before = meter().state().labels;
    ASSERT_EQ(before.Elapse.Lv, "1");
    const struct {
        const char* lv;
        const char* exp;
        const char* said;
    } failures[] = {{"", "", "LvとExp NG"}, {"12", "", "Exp NG"}, {"", "70", "Lv NG"}};
    for (const auto& f : failures) {
        cycle(820, f.lv, f.exp, "33");
        meter().session().DisplayResult(MeasurementSession::kUpdate); // as the level watch's burst does
        EXPECT_TRUE(meter().logBox().text().ends_with(std::string("04/01 13:18  認識失敗  ") + f.said + "\r\n"))
            << meter().logBox().text();
        const ResultLabels& now = meter().state().labels;
        EXPECT_EQ(now.End.Lv, before.End.Lv) << f.said;
        EXPECT_EQ(now.End.Exp, before.End.Exp);
        EXPECT_EQ(now.Elapse.Lv, before.Elapse.Lv);
        EXPECT_EQ(now.Elapse.Exp, before.Elapse.Exp);
    }
    EXPECT_NE(debugText().find("ImageRecognition misstep :Exp NG"), std::string::npos);
    EXPECT_EQ(recordLines(temp.path()).size(), 1u);
    meter().menuStop_Click();
    const std::string box = meter().logBox().text();
    EXPECT_NE(box.find("    終了  Lv:  11    Exp:           50 "), std::string::npos) << box;
    EXPECT_NE(box.find("    増加  Lv:   1    Exp:         1666 "), std::string::npos) << box;
}

TEST_F(SessionFiguresTest, AReadingThatOutlivesItsSessionIsDropped)
{
    settings.MoneyScan = true;
    settings.SaveCsv = true;
    show("10", "100", "");
    meter().menuRun_Click();
    at(100);
    // The player stops while the cycle waits for the money window, then starts again.
    machine.onWait = [this](std::int32_t ms) {
        if (ms == settings.MoneyWait) {
            meter().menuStop_Click();
            meter().menuRun_Click();
        }
    };
    meter().cycle().runCycle();
    machine.onWait = nullptr;
    EXPECT_TRUE(meter().state().labels.Start.Time.empty()) << "the new session has no reading yet";
    EXPECT_EQ(machine.grabs, 1) << "no money re-read for a session that ended";

    cycle(460, "10", "350", "700");
    cycle(820, "10", "600", "700");
    const auto lines = recordLines(temp.path());
    ASSERT_EQ(lines.size(), 1u) << "the first reading of the new session is its base";
    EXPECT_EQ(csvFields(lines[0])[6], "6.0");
    EXPECT_EQ(countOf(meter().logBox().text(), " 経過: "), 1u) << "one summary, of the first session";
}

TEST_F(SessionFiguresTest, AnUnwritableRecordFolderIsToldOnceAndTheSessionGoesOn)
{
    const auto blocker = temp.path() / "blocked";
    std::ofstream(blocker) << "a file where the folder should be";
    settings.SaveFolder = pathUtf8(blocker);
    meter().menuRun_Click();
    cycle(100, "10", "100", "");
    cycle(460, "10", "350", "");
    cycle(820, "10", "600", "");
    EXPECT_EQ(machine.count("message エラー: 時給記録ファイルに書き込めません。"), 1u);
    EXPECT_EQ(countOf(debugText(), "Error Trap : WriteRecordLine : CODE76  Path not found"), 3u);
    EXPECT_EQ(meter().state().labels.End.Exp, "600");
    EXPECT_EQ(meter().state().labels.Elapse.Exp, "500");
    EXPECT_EQ(meter().state().graph->Value(0).RateE(), Currency::fromInt(2));
    EXPECT_EQ(meter().state().graph->Value(1).RateE(), Currency::fromInt(2));
    EXPECT_EQ(countOf(meter().logBox().text(), "04/01 13:"), 2u) << "each record once, none piled up";

    meter().menuStop_Click();
    meter().menuRun_Click();
    cycle(1180, "10", "700", "");
    EXPECT_EQ(machine.count("message エラー: 時給記録ファイルに書き込めません。"), 2u) << "told again next session";
}

TEST_F(SessionFiguresTest, AMissingGameIsToldOnceASessionAndANewSessionStartsFromNothing)
{
    settings.MoneyScan = true;
    meter().menuRun_Click();
    cycle(100, "10", "100", "5000");
    cycle(460, "10", "350", "5900");
    machine.windows = {GameWindowState::Missing};
    const int grabs = machine.grabs;
    meter().cycle().runCycle();
    meter().cycle().runCycle();
    EXPECT_EQ(machine.count("notice エラー: MapleStoryが起動していません"), 1u);
    EXPECT_EQ(machine.grabs, grabs) << "nothing to take a picture of";
    meter().menuStop_Click();
    EXPECT_EQ(machine.count("notice hidden"), 1u) << "the notice goes with the session";

    meter().menuRun_Click();
    EXPECT_EQ(meter().state().labels.Elapse.Money, "-1");
    EXPECT_EQ(meter().session().CurrentLv, -1);
    meter().cycle().runCycle();
    EXPECT_EQ(machine.count("notice エラー: MapleStoryが起動していません"), 2u) << "said again in the new session";
    machine.windows = {GameWindowState::Front};
    cycle(900, "", "", "");
    EXPECT_EQ(machine.count("notice hidden"), 2u) << "the game is back";
    meter().logBox().clear();
    meter().menuStop_Click();
    const std::string summary = meter().logBox().text();
    EXPECT_EQ(summary.find("5000"), std::string::npos) << summary;
    EXPECT_EQ(summary.find("5900"), std::string::npos) << summary;
    EXPECT_EQ(summary.find("3697"), std::string::npos) << summary;
}

} // namespace
} // namespace tvx
