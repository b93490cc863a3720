#include "measurement/RecordFile.h"
#include "base/Utf8Path.h"
#include "base/Errors.h"

#include "support/ReadFile.h"
#include "support/FakeMachine.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tvx {
namespace {

TEST(RecordFilePathTest, NamesByMonthOrBySession)
{
    Settings settings = defaultSettings("");
    settings.SaveFolder = "/rec";
    settings.SaveFile = "exp_";
    settings.SaveCsv = true;
    EXPECT_EQ(recordFilePath(settings, "200904011305"), utf8Path("/rec/log/exp_200904月.csv"));
    settings.SaveFile.clear();
    settings.SaveCsv = false;
    settings.SaveMonthly = false;
    EXPECT_EQ(recordFilePath(settings, "200904011305"), std::filesystem::path("/rec/log/200904011305.txt"));
}

class RecordFileTest : public testing::Test {
protected:
    RecordFileTest() { settings.SaveFolder = pathUtf8(temp.path()); }

    std::string file() { return test::readAll(recordFilePath(settings, kStamp)); }

    static constexpr const char* kStamp = "202401311200";
    test::TempFolder temp;
    Settings settings = defaultSettings("");
    test::MarkingCodec codec;
    RecordFile records{settings, &codec};
};

TEST_F(RecordFileTest, HeaderRules)
{
    const std::string header = "\xEF\xBB\xBF" + recordHeader(false) + "\r\n";
    records.WriteRecordLine("", "no session", RecordFile::kAppend);
    EXPECT_FALSE(std::filesystem::exists(temp.path() / "log"));

    // A record that finds no file only starts it; the next one lands below the header.
    records.WriteRecordLine(kStamp, "lost", RecordFile::kAppend);
    records.WriteRecordLine(kStamp, "one", RecordFile::kAppend);
    EXPECT_EQ(file(), header + "one\r\n");

    // A second session of the month appends below the first.
    records.WriteRecordLine(kStamp, "", RecordFile::kStart);
    records.WriteRecordLine(kStamp, "two", RecordFile::kAppend);
    EXPECT_EQ(file(), header + "one\r\ntwo\r\n");

    // A file per session starts afresh.
    settings.SaveMonthly = false;
    records.WriteRecordLine(kStamp, "old", RecordFile::kAppend);
    records.WriteRecordLine(kStamp, "old", RecordFile::kAppend);
    records.WriteRecordLine(kStamp, "", RecordFile::kStart);
    EXPECT_EQ(file(), header);
}

TEST_F(RecordFileTest, AppendsInTheEncodingTheFileHas)
{
    std::filesystem::create_directories(temp.path() / "log");
    const std::string cp932Header = " \x8c\x8e\x93\xfa\r\n"; // " 月日" in CP932
    std::ofstream(recordFilePath(settings, kStamp), std::ios::binary) << cp932Header;
    records.WriteRecordLine(kStamp, "メル", RecordFile::kAppend);
    EXPECT_EQ(file(), cp932Header + "[cp932]メル\r\n");

    std::filesystem::remove(recordFilePath(settings, kStamp));
    std::ofstream(recordFilePath(settings, kStamp), std::ios::binary) << " 月日\r\n"; // UTF-8 without a mark
    records.WriteRecordLine(kStamp, "メル", RecordFile::kAppend);
    EXPECT_EQ(file(), " 月日\r\nメル\r\n");
}

TEST_F(RecordFileTest, PlacesTheFileSystemRefusesAreTrappedErrors)
{
    const auto numberOf = [this](int mode) {
        try {
            records.WriteRecordLine(kStamp, "x", mode);
        } catch (const RuntimeError& error) {
            return static_cast<int>(error.number());
        }
        return 0;
    };
    std::ofstream(temp.path() / "log") << "a file where the folder should be";
    EXPECT_EQ(numberOf(RecordFile::kAppend), 76);
    std::filesystem::remove(temp.path() / "log");

    // Longer than any file system allows a name to be: refused by the name check or by the
    // open, depending on the system, but always as a trapped error.
    settings.SaveFile = std::string(300, 'a');
    EXPECT_NE(numberOf(RecordFile::kStart), 0);
    EXPECT_NE(numberOf(RecordFile::kAppend), 0);
}

} // namespace
} // namespace tvx
