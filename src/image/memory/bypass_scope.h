// While a scope is open, general allocation goes to the C runtime: the manager is allocating for
// itself. Open scopes are counted, as threads may have theirs at one time; what another thread
// allocates meanwhile comes from the runtime too and goes back there.
#pragma once

#include <atomic>
#include <cstdint>

namespace brushwork {

class BypassScope {
  public:
    explicit BypassScope(std::atomic<std::int32_t>& open) : open_(open) { ++open_; }
    BypassScope(const BypassScope&) = delete;
    BypassScope& operator=(const BypassScope&) = delete;
    ~BypassScope() { --open_; }

  private:
    std::atomic<std::int32_t>& open_;
};

}  // namespace brushwork
