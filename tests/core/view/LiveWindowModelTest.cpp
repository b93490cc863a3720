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

} // namespace
} // namespace tvx
