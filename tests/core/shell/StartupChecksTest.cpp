#include "shell/StartupChecks.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

TEST(IsTempFolderTest, EitherFolderInsideTheOther)
{
    const char* temp = "C:\\Users\\mei\\AppData\\Local\\Temp\\";
    const char* shortTemp = "C:\\Users\\MEI~1\\AppData\\Local\\Temp\\";
    struct Case { const char* program; bool refused; };
    const Case cases[] = {
        {"C:\\Users\\mei\\AppData\\Local\\Temp\\", true},
        {"c:\\users\\mei\\appdata\\local\\temp\\Temp1_tv.zip\\tv", true}, // case ignored
        {"C:\\USERS\\MEI~1\\APPDATA\\LOCAL\\TEMP\\x", true},            // the short form
        {"C:\\Users", true},                                            // a parent of the temporary folder
        {"D:\\Games\\Tallivex", false},
    };
    for (const Case& k : cases)
        EXPECT_EQ(IsTempFolder(k.program, temp, shortTemp), k.refused) << k.program;
    EXPECT_FALSE(IsTempFolder("/opt/tallivex", "", ""));
}

} // namespace
} // namespace tvx
