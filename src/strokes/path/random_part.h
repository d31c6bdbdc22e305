// The next random value of the process, brought to a range for jitter.
#pragma once

#include "foundation/services/random_source.h"

namespace brushwork {

// 0..1
[[nodiscard]] inline float randomPart() {
    return static_cast<float>(randomValue()) / static_cast<float>(randomMaximum);
}

// -1..1
[[nodiscard]] inline float randomBothWays() {
    return 2.0f * static_cast<float>(randomValue()) / static_cast<float>(randomMaximum) - 1.0f;
}

}  // namespace brushwork
