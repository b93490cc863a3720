#pragma once

#include <cstdlib>
#include <memory>

namespace tvx::platform {

// xcb replies and events are malloc'ed and freed by the caller.
template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T>
Reply<T> reply(T* raw)
{
    return Reply<T>(raw, &std::free);
}

} // namespace tvx::platform
