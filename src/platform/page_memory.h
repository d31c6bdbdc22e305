// Large blocks of address space, straight from the system.
#pragma once

#include <cstddef>

namespace brushwork::platform {

// Zeroed, aligned to 2 MiB where the system can, and backed by huge pages where it likes to; it
// costs memory only where it is touched. Null for 0 bytes and when there is no room. Any thread.
[[nodiscard]] void* takePageMemory(std::size_t bytes) noexcept;
// Takes back what takePageMemory gave, with the same count; null is ignored.
void givePageMemory(void* block, std::size_t bytes) noexcept;

}  // namespace brushwork::platform
