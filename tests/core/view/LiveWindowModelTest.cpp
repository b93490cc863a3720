#include "view/LiveWindowModel.h"

#include "measurement/SessionHistory.h"
#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tvx {
namespace {

HistoryRow sessionAt(int day, std::int64_t exp)
{
    HistoryRow row;
    row.start = {2025, 6, day, 20, 0, 0};
    row.end = addSeconds(row.start, 3600);
    row.activeSeconds = 3600;
    row.startLevel = 100;
    row.endLevel = 101;
    row.expGained = exp;
    return row;
}

void writeFile(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

TEST(LiveWindowModelTest, TheHistoryWindowLoadsRowsOrNamesTheFileItCannotRead)
{
    test::TempFolder temp;
    const std::filesystem::path file = historyFilePath(temp.path());
    EXPECT_FALSE(openHistoryWindow(file).error) << "no history yet is no fault";

    saveHistoryRow(file, sessionAt(1, 1000));
    saveHistoryRow(file, sessionAt(3, 3000));
    const HistoryWindowData loaded = openHistoryWindow(file);
    ASSERT_FALSE(loaded.error);
    EXPECT_EQ(loaded.rows.size(), 2u);
    for (std::size_t page = 0; page < kHistoryPages.size(); ++page)
        EXPECT_EQ(loaded.tables[page].rows.size(), 2u) << page; // two days, two weeks
    EXPECT_EQ(loaded.tables[0].rows[0][0], "2025/06/03 20:00:00");

    const std::string broken = std::string(kHistoryHeader) + "\r\nnot a row\r\n";
    writeFile(file, broken);
    const HistoryWindowData unreadable = openHistoryWindow(file);
    ASSERT_TRUE(unreadable.error);
    EXPECT_NE(unreadable.error->find(pathUtf8(file)), std::string::npos) << *unreadable.error;
    EXPECT_TRUE(unreadable.rows.empty());
    EXPECT_TRUE(unreadable.tables[0].rows.empty());
    EXPECT_EQ(test::readAll(file), broken);
}

TEST(LiveWindowModelTest, TheExportWritesTheCsvOrSaysWhyNotAndNeverTouchesTheHistory)
{
    test::TempFolder temp;
    const std::filesystem::path history = historyFilePath(temp.path());
    const std::vector<HistoryRow> rows{sessionAt(1, 1000), sessionAt(2, 2000)};
    for (const HistoryRow& row : rows)
        saveHistoryRow(history, row);
    const std::string historyBefore = test::readAll(history);
    const std::filesystem::path existing = temp.path() / utf8Path("書き出し 先.csv");
    writeFile(existing, "old");

    struct Case {
        std::filesystem::path target;
        const char* named; // in the message, or nullptr when the export succeeds
    };
    for (const Case& c : {
             Case{existing, nullptr},
             Case{temp.path() / "new.csv", nullptr},
             Case{history, "セッション履歴のファイルそのもの"},
             Case{history.parent_path() / "." / history.filename(), "セッション履歴のファイルそのもの"},
             Case{temp.path() / "missing" / "x.csv", "missing"},
         }) {
        const std::optional<std::string> message = exportHistory(rows, c.target, history);
        if (c.named == nullptr) {
            EXPECT_FALSE(message) << *message;
            EXPECT_EQ(test::readAll(c.target), historyCsv(rows));
            std::filesystem::path temporary = c.target;
            temporary += ".new";
            EXPECT_FALSE(std::filesystem::exists(temporary));
        } else {
            ASSERT_TRUE(message) << c.target;
            EXPECT_NE(message->find(c.named), std::string::npos) << *message;
        }
    }
    EXPECT_EQ(test::readAll(history), historyBefore);
}

} // namespace
} // namespace tvx
