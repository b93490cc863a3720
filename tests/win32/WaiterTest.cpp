// The wait that keeps window messages flowing: a close ends the waits in progress at once,
// and waits begun afterwards wait as asked.
#include "Win32Waiter.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace tvx::win32ui {
namespace {

Win32Waiter* g_waiter = nullptr;
int g_ticks = 0;

void CALLBACK closeOnTick(HWND, UINT, UINT_PTR id, DWORD)
{
    ++g_ticks;
    KillTimer(nullptr, id);
    g_waiter->endWaits();
}

TEST(Win32WaiterTest, ACloseEndsTheWaitsInProgressOnly)
{
    Win32Waiter waiter;
    g_waiter = &waiter;
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, &closeOnTick);
    ASSERT_NE(timer, 0u);
    const DWORD start = GetTickCount();
    waiter.WaitMs(60000); // the timer's message arrives during the wait and closes
    EXPECT_EQ(g_ticks, 1);
    EXPECT_LT(GetTickCount() - start, 60000u) << "the wait ended with the close";

    const DWORD again = GetTickCount();
    waiter.WaitMs(200);
    EXPECT_GE(GetTickCount() - again, 150u) << "a wait begun after the close waits";
    g_waiter = nullptr;
}

} // namespace
} // namespace tvx::win32ui
