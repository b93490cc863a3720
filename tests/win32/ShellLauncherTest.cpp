#include "support/TempFolder.h"

#include "win32/Win32Ports.h"

#include <gtest/gtest.h>

#include <fstream>

namespace tvx {
namespace {

TEST(ShellLauncherTest, FileExistsTakesUtf8Names)
{
    test::TempFolder folder;
    const auto path = folder.path() / std::filesystem::path(u8"使用方法M.mht");
    std::ofstream(path) << "x";
    auto shell = platform::makeWin32ShellLauncher();
    EXPECT_TRUE(shell->fileExists(reinterpret_cast<const char*>(path.u8string().c_str())));
    EXPECT_FALSE(shell->fileExists(reinterpret_cast<const char*>((folder.path() / "ReadMeM.txt").u8string().c_str())));
    EXPECT_FALSE(shell->fileExists(""));
}

TEST(ShellLauncherTest, OpeningAMissingFileIsRefused)
{
    test::TempFolder folder;
    auto shell = platform::makeWin32ShellLauncher();
    EXPECT_FALSE(shell->open(reinterpret_cast<const char*>((folder.path() / "missing.mht").u8string().c_str())));
    EXPECT_FALSE(shell->open(""));
}

} // namespace
} // namespace tvx
