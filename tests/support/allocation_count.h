// Counts what the test program takes from the heap.
#pragma once

#include <cstdint>

namespace brushwork::test {

// Calls of operator new by the calling thread.
[[nodiscard]] std::uint64_t allocations();

}  // namespace brushwork::test
