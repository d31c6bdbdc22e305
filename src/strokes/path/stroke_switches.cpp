#include "strokes/path/stroke_switches.h"

#include <atomic>

namespace brushwork {

namespace {

std::atomic<std::int32_t>& flip() {
    static std::atomic<std::int32_t> mode{0};
    return mode;
}

}  // namespace

std::int32_t yFlipMode() {
    return flip().load(std::memory_order_relaxed);
}

void setYFlipMode(std::int32_t mode) {
    flip().store(mode, std::memory_order_relaxed);
}

}  // namespace brushwork
