#include "image/memory/image_lock.h"

#include <atomic>
#include <memory>

namespace brushwork {
namespace {

std::atomic<bool> engaged{false};

}  // namespace

std::recursive_mutex& imageLock() {
    // Never destroyed: pages go back while the process ends.
    static std::recursive_mutex& lock = *std::make_unique<std::recursive_mutex>().release();
    return lock;
}

void engageImageLock(bool on) noexcept {
    engaged.store(on, std::memory_order_release);
}

bool imageLockEngaged() noexcept {
    return engaged.load(std::memory_order_acquire);
}

}  // namespace brushwork
