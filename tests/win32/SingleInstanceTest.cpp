#include "support/TempFolder.h"

#include "SingleInstance.h"

#include <gtest/gtest.h>

namespace tvx {
namespace {

using platform::acquireSingleInstance;

TEST(SingleInstanceTest, SecondAcquireOnTheSameHomeIsRefused)
{
    test::TempFolder home;
    auto first = acquireSingleInstance(home.path());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(acquireSingleInstance(home.path()), nullptr);
    // The same folder spelled differently is still the same home.
    std::wstring upper = home.path().wstring();
    for (auto& c : upper)
        c = static_cast<wchar_t>(towupper(c));
    EXPECT_EQ(acquireSingleInstance(std::filesystem::path(upper)), nullptr);
    EXPECT_EQ(acquireSingleInstance(home.path() / ""), nullptr);
    EXPECT_EQ(acquireSingleInstance(home.path() / "sub" / ".."), nullptr);
}

TEST(SingleInstanceTest, AnotherHomeIsFree)
{
    test::TempFolder home;
    auto first = acquireSingleInstance(home.path() / "a");
    auto second = acquireSingleInstance(home.path() / "b");
    auto japanese = acquireSingleInstance(home.path() / std::filesystem::path(u8"メイプル"));
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_NE(japanese, nullptr);
}

TEST(SingleInstanceTest, ReleasedHomeCanBeTakenAgain)
{
    test::TempFolder home;
    auto first = acquireSingleInstance(home.path());
    ASSERT_NE(first, nullptr);
    first.reset();
    auto again = acquireSingleInstance(home.path());
    EXPECT_NE(again, nullptr);
    EXPECT_EQ(acquireSingleInstance(home.path()), nullptr);
}

} // namespace
} // namespace tvx
