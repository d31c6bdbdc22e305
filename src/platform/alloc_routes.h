// The three pointers through which general allocation goes: the C runtime's at first, the memory
// manager's once it is switched on. Any thread.
//
//     void* row = platform::routedAllocate(bytes);
//     platform::routedRelease(row);
//
// Memory goes back by routedRelease also when the routes changed in between: a route knows its own
// memory and passes the runtime's on.
#pragma once

#include <cstddef>

namespace brushwork::platform {

struct AllocRoutes {
    void* (*allocate)(std::size_t bytes);                   // null: no memory
    void* (*reallocate)(void* pointer, std::size_t bytes);  // null: the old memory stays
    void (*release)(void* pointer);                         // null is ignored
};

// malloc, realloc and free.
[[nodiscard]] AllocRoutes runtimeRoutes() noexcept;
[[nodiscard]] AllocRoutes allocRoutes() noexcept;
// Tests put runtimeRoutes() back.
void setAllocRoutes(const AllocRoutes& routes) noexcept;

[[nodiscard]] void* routedAllocate(std::size_t bytes);
[[nodiscard]] void* routedReallocate(void* pointer, std::size_t bytes);
void routedRelease(void* pointer);

}  // namespace brushwork::platform
