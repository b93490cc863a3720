#include "HomeFolder.h"

#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace tvx::platform {
namespace {

namespace fs = std::filesystem;

// Where the help documents and the home folder go: installed under a prefix (the Linux package), a build
// tree or unpacked zip, a program folder nobody may write to, and an explicit --home.
TEST(HomeFolderTest, FollowsHowTheProgramIsLaidOut)
{
    test::TempFolder temp;
    const fs::path t = temp.path();
    // The per-user data folder in the test's folder (ctest runs each test in a process of its own).
#ifdef _WIN32
    _wputenv_s(L"LOCALAPPDATA", (t / "user data").c_str());
#else
    setenv("XDG_DATA_HOME", (t / "user data").c_str(), 1);
#endif
    for (const char* folder : {"usr/bin", "usr/share/tallivex", "build/src/app", "odd/bin", "odd/share"})
        fs::create_directories(t / folder);
    std::ofstream(t / "odd/share/tallivex") << "a file, not the data folder";
    const fs::path installedData = "../share/tallivex";
    const fs::path perUser = userDataFolder();
    ASSERT_EQ(perUser.parent_path(), t / "user data");

    // What, layout, --home, documents folder, home folder.
    const std::tuple<const char*, ProgramLayout, std::optional<fs::path>, fs::path, fs::path> cases[] = {
        {"installed", {t / "usr/bin", installedData}, {}, t / "usr/share/tallivex", perUser},
        {"installed, --home", {t / "usr/bin", installedData}, t / "mine", t / "usr/share/tallivex", t / "mine"},
        {"no installed layout on this system", {t / "usr/bin", {}}, {}, t / "usr/bin", t / "usr/bin"},
        {"build tree", {t / "build/src/app", installedData}, {}, t / "build/src/app", t / "build/src/app"},
        {"data folder is a file", {t / "odd/bin", installedData}, {}, t / "odd/bin", t / "odd/bin"},
        {"program folder not writable (gone)", {t / "gone/bin", installedData}, {}, t / "gone/bin", perUser},
    };
    for (const auto& [what, layout, override, documents, home] : cases) {
        SCOPED_TRACE(what);
        EXPECT_EQ(documentFolder(layout), documents);
        EXPECT_EQ(homeFolder(override, layout), home);
        EXPECT_TRUE(fs::is_directory(home));
    }
    // Nothing was made beside the installed program.
    EXPECT_TRUE(fs::is_empty(t / "usr/bin"));
}

} // namespace
} // namespace tvx::platform
