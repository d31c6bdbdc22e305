#include "image/memory/image_health.h"

#include <atomic>

namespace brushwork {
namespace {

std::atomic<std::int32_t> failure{0};

}  // namespace

std::int32_t imageFailure() noexcept {
    return failure.load(std::memory_order_relaxed);
}

void noteImageFailure(std::int32_t value) noexcept {
    std::int32_t none = 0;
    failure.compare_exchange_strong(none, value);
}

void clearImageFailure() noexcept {
    failure = 0;
}

}  // namespace brushwork
