#include "base/CopyOver.h"
#include "base/Utf8Path.h"

#include "support/ReadFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tvx {
namespace {

class CopyOverTest : public testing::Test {
protected:
    void write(const std::filesystem::path& path, const std::string& text)
    {
        std::ofstream(path, std::ios::binary) << text;
    }
    bool leftovers() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(m_temp.path()))
            if (entry.path().extension() == ".copy")
                return true;
        return false;
    }

    test::TempFolder m_temp;
    const std::filesystem::path m_log = m_temp.path() / "debug.txt";
    const std::filesystem::path m_backup = m_temp.path() / utf8Path("前回 の記録.txt");
};

TEST_F(CopyOverTest, EachCopyReplacesThePreviousOne)
{
    std::filesystem::path stale = m_backup;
    write(stale += ".copy", "left by a copy that was cut short");
    for (const std::string text : {"first run\r\n", "second, longer run\r\n", "3\r\n"}) {
        write(m_log, text);
        EXPECT_FALSE(copyOver(m_log, m_backup)) << text;
        EXPECT_EQ(test::readAll(m_backup), text);
        EXPECT_EQ(test::readAll(m_log), text);
    }
    EXPECT_FALSE(leftovers());
}

TEST_F(CopyOverTest, AFailedCopyLeavesThePreviousBackUpWhole)
{
    write(m_backup, "kept");
    EXPECT_TRUE(copyOver(m_temp.path() / "missing.txt", m_backup));
    EXPECT_EQ(test::readAll(m_backup), "kept");

    write(m_log, "new");
    EXPECT_TRUE(copyOver(m_log, m_temp.path() / "no such folder" / "backup.txt"));
    EXPECT_FALSE(leftovers());
}

} // namespace
} // namespace tvx
