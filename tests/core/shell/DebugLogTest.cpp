#include "shell/DebugLog.h"
#include "support/ReadFile.h"
#include "support/FakeClock.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tvx {
namespace {

class DebugLogTest : public testing::Test {
protected:
    test::TempFolder m_temp;
    const std::filesystem::path& m_home = m_temp.path();
    test::FakeClock m_clock{LocalDateTime{2009, 4, 1, 13, 5, 9}};
};

TEST_F(DebugLogTest, EachStartRenewsTheLogAndKeepsOneBackUp)
{
    DebugLog log(m_home, m_clock);
    log.WriteDebugLog("Starting Program  first", DebugLog::kNewLog);
    EXPECT_FALSE(std::filesystem::exists(log.backupPath()));
    log.WriteDebugLog("Suspend Mode On ");
    EXPECT_EQ(test::readAll(log.path()), "2009/04/01 13:05:09 Starting Program  first\r\n"
                                   "2009/04/01 13:05:09 Suspend Mode On \r\n");

    m_clock.setNow(LocalDateTime{2010, 12, 31, 23, 59, 58});
    log.WriteDebugLog("Starting Program  second", DebugLog::kNewLog);
    EXPECT_EQ(test::readAll(log.path()), "2010/12/31 23:59:58 Starting Program  second\r\n");
    EXPECT_EQ(test::readAll(log.backupPath()), "2009/04/01 13:05:09 Starting Program  first\r\n"
                                         "2009/04/01 13:05:09 Suspend Mode On \r\n");

    log.WriteDebugLog("Starting Program  third", DebugLog::kNewLog);
    EXPECT_EQ(test::readAll(log.backupPath()), "2010/12/31 23:59:58 Starting Program  second\r\n");
}

TEST_F(DebugLogTest, AppendingToAMissingLogCreatesItAndErrorLinesKeepTheirFormat)
{
    DebugLog log(m_home, m_clock);
    log.writeErrorTrap("DisplayResult", ErrorNumber::Overflow);
    log.writeErrorTrap("SecurePixels", ErrorNumber::SubscriptOutOfRange);
    EXPECT_EQ(test::readAll(log.path()), "2009/04/01 13:05:09 Error Trap : DisplayResult : CODE6  Overflow\r\n"
                                   "2009/04/01 13:05:09 Error Trap : SecurePixels : CODE9  Subscript out of range\r\n");
}

TEST_F(DebugLogTest, AnUnwritableFolderIsReportedToTheCaller)
{
    DebugLog log(m_home / "no" / "such" / "folder", m_clock);
    EXPECT_THROW(log.WriteDebugLog("x"), RuntimeError);
}

} // namespace
} // namespace tvx
