// IdleWork: what is done once the host has been quiet for a while.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "brushwork/host_call_table.h"

namespace brushwork {

class IdleWork {
  public:
    static constexpr std::int32_t afterEdit = 2030, afterStroke = 1030;  // milliseconds

    explicit IdleWork(std::function<void()> work) : work_(std::move(work)) {}
    IdleWork(const IdleWork&) = delete;
    IdleWork& operator=(const IdleWork&) = delete;
    ~IdleWork() { cancel(); }

    void restart(std::int32_t milliseconds);
    void cancel();
    [[nodiscard]] bool isPending() const { return timer_.has_value(); }

  private:
    static void ring(void* self);

    std::function<void()> work_;
    std::optional<HostTimerId> timer_;
};

}  // namespace brushwork
