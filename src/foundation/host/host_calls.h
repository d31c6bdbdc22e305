// One function for each host role that the engine uses: it bears the empty slot.
#pragma once

#include <cstdint>

namespace brushwork {

// What the host asks to have logged; 0 when it doesn't say. Any thread.
[[nodiscard]] std::int32_t hostDebugLevel() noexcept;

}  // namespace brushwork
