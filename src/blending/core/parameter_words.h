// A blender's parameters as kernels read them.
#pragma once

#include <cstdint>

namespace brushwork::npc {

// The fraction cut off; what is out of range becomes its nearest bound, not-a-number 0.
[[nodiscard]] inline std::uint32_t toWord(float value) {
    if (!(value > 0.0F)) return 0;
    return value >= 4294967296.0F ? 0xFFFFFFFFU : static_cast<std::uint32_t>(value);
}

// 1.0 is 65535. The product is a float.
[[nodiscard]] inline std::uint32_t toWord16(float value) {
    return toWord(value * 65535.0F);
}

}  // namespace brushwork::npc
