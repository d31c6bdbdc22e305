// How long a stage of drawing a shape took. Only measured while the host asks for layer logs.
#pragma once

#include <chrono>
#include <cstdint>

#include "foundation/host/host_calls.h"

namespace brushwork {

inline constexpr std::int32_t shapeLogLevel = 0x2016;

class ShapeTiming {
  public:
    ShapeTiming() : active_(hostDebugLevel() == shapeLogLevel) {
        if (active_) start_ = Clock::now();
    }

    [[nodiscard]] bool isActive() const { return active_; }
    [[nodiscard]] double seconds() const {
        return std::chrono::duration<double>(Clock::now() - start_).count();
    }
    // Of a processor that is taken to run at 1.7 GHz, so that figures of all machines compare.
    [[nodiscard]] static double cyclesPerPixel(double seconds, std::int32_t width,
                                               std::int32_t height) {
        const double pixels = static_cast<double>(width) * static_cast<double>(height);
        return pixels > 0.0 ? seconds * 1700000000.0 / pixels : 0.0;
    }

  private:
    using Clock = std::chrono::steady_clock;
    bool active_;
    Clock::time_point start_;
};

}  // namespace brushwork
