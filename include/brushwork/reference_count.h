// zn::ReferenceCount: the base of counted foundation objects.
#pragma once

#include <atomic>
#include <cstdint>

#include "brushwork/export.h"

namespace brushwork::zn {

// An object starts with no holder. Each holder calls addRef once and release once; the release
// that brings the count to zero destroys the object. Ref<T> does both. The count is atomic, so
// holders may live on different threads; what the object holds is guarded by its own class.
class BRUSHWORK_API ReferenceCount {
  public:
    ReferenceCount() = default;
    ReferenceCount(const ReferenceCount&) = delete;
    ReferenceCount& operator=(const ReferenceCount&) = delete;

    void addRef() const noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept {
        if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }
    [[nodiscard]] std::uint32_t refCount() const noexcept {
        return count_.load(std::memory_order_relaxed);
    }

  protected:
    virtual ~ReferenceCount();

  private:
    mutable std::atomic<std::uint32_t> count_{0};
};

}  // namespace brushwork::zn
