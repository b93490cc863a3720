#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>
#include <vector>

namespace tvx {

// Memory that comes zeroed from calloc, elements left as they come. A large block is fresh
// pages from the system, already zero: a picture of which a reading fills a few regions
// only touches the pages of those regions, not the megabytes around them.
template <typename T>
struct ZeroedAllocator {
    using value_type = T;

    ZeroedAllocator() = default;
    template <typename U>
    ZeroedAllocator(const ZeroedAllocator<U>&) noexcept
    {
    }

    T* allocate(std::size_t count)
    {
        void* memory = std::calloc(count, sizeof(T));
        return memory != nullptr ? static_cast<T*>(memory) : throw std::bad_alloc();
    }
    void deallocate(T* memory, std::size_t) noexcept { std::free(memory); }

    // resize() adds elements as they are: zero, from calloc.
    template <typename U>
    void construct(U* at) noexcept
    {
        ::new (static_cast<void*>(at)) U;
    }
    template <typename U, typename... Args>
    void construct(U* at, Args&&... args)
    {
        ::new (static_cast<void*>(at)) U(std::forward<Args>(args)...);
    }

    friend bool operator==(const ZeroedAllocator&, const ZeroedAllocator&) = default;
};

using ZeroedBytes = std::vector<std::uint8_t, ZeroedAllocator<std::uint8_t>>;

} // namespace tvx
