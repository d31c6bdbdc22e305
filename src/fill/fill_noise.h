// The two sequences behind dithering: noise, and places that spread evenly.
//
// Both go on from fill to fill, so that two fills don't show the same grain. They are the
// process's, without a lock: fills on several threads at once may draw the same numbers, which
// can't be seen.
#pragma once

#include <cstdint>

namespace brushwork {

// Two multiply-with-carry generators of 16 bits each, side by side.
class FillNoise {
  public:
    [[nodiscard]] std::uint32_t next() {
        a_ = step(a_, 36969);
        b_ = step(b_, 18000);
        return (a_ << 16) + b_;
    }

    // A copy of the process's noise, which begins at 0; a user draws from the copy and puts it
    // back.
    [[nodiscard]] static FillNoise current();
    void makeCurrent() const;

  private:
    static std::uint32_t step(std::uint32_t state, std::uint32_t factor) {
        const std::uint32_t moved = state + 1;
        return (moved & 0xFFFF) * factor + (moved >> 16);
    }

    std::uint32_t a_ = 0, b_ = 0;
};

// 128, 64, 192, 32, ...: the bits of a counter, turned round. Each 256 calls give every number.
[[nodiscard]] std::uint8_t nextSpreadNumber();
// The counter begins anew.
void restartSpreadNumbers();

}  // namespace brushwork
