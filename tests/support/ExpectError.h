#pragma once

#include "base/Errors.h"

#include <gtest/gtest.h>

namespace tvx::test {

// A call that must fail with this error number, as the program's error traps see it.
template <typename Call>
void expectError(ErrorNumber number, Call&& call)
{
    try {
        call();
        ADD_FAILURE() << "no error raised";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), number);
    }
}

} // namespace tvx::test
