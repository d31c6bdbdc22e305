// The one recursive lock of the image layer: over block tables, page allocators, page cache and
// smart images, so that a page allocation that evicts meets no second lock.
//
//     const ImageLockScope guard;  // in an entry point of a smart image
//
// Lock order: this lock, then the lock of one tiny allocator or of one object pool. Who holds one
// of those takes no other lock, this one least of all.
#pragma once

#include <mutex>

namespace brushwork {

// Made on first use, never destroyed.
[[nodiscard]] std::recursive_mutex& imageLock();

// Whether ImageLockScope locks. Off at first: without the memory manager smart images belong to
// one thread. Changed only while no scope is open on another thread.
void engageImageLock(bool on) noexcept;
[[nodiscard]] bool imageLockEngaged() noexcept;

// Holds the lock for a scope, if it was engaged when the scope began.
class ImageLockScope {
  public:
    ImageLockScope() : lock_(imageLock(), std::defer_lock) {
        if (imageLockEngaged()) lock_.lock();
    }
    ImageLockScope(const ImageLockScope&) = delete;
    ImageLockScope& operator=(const ImageLockScope&) = delete;

  private:
    std::unique_lock<std::recursive_mutex> lock_;
};

}  // namespace brushwork
