// The one recursive lock of the image layer: over block tables, page allocators, page cache and
// smart images, so that a page allocation that evicts meets no second lock.
//
//     const ImageLockScope guard;  // in an entry point of a smart image
//
// Lock order: this lock, then the lock of one tiny allocator or of one object pool. Who holds one
// of those takes no other lock, this one least of all.
#pragma once

#include <atomic>
#include <mutex>

namespace brushwork {

// Made on first use, never destroyed.
[[nodiscard]] std::recursive_mutex& imageLock();

namespace detail {
inline std::atomic<bool> imageLockSwitch{false};
}

// Whether ImageLockScope locks. Off at first: without the memory manager smart images belong to
// one thread. Changed only while no scope is open on another thread.
inline void engageImageLock(bool on) noexcept {
    detail::imageLockSwitch.store(on, std::memory_order_release);
}
[[nodiscard]] inline bool imageLockEngaged() noexcept {
    return detail::imageLockSwitch.load(std::memory_order_acquire);
}

// Holds the lock for a scope, if it was engaged when the scope began. Reading one pixel opens such
// a scope: while the lock is off it costs one load.
class ImageLockScope {
  public:
    ImageLockScope() : lock_(imageLockEngaged() ? &imageLock() : nullptr) {
        if (lock_) lock_->lock();
    }
    ~ImageLockScope() {
        if (lock_) lock_->unlock();
    }
    ImageLockScope(const ImageLockScope&) = delete;
    ImageLockScope& operator=(const ImageLockScope&) = delete;

  private:
    std::recursive_mutex* lock_;
};

}  // namespace brushwork
