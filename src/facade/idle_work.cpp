#include "facade/idle_work.h"

#include "foundation/host/host_calls.h"

namespace brushwork {

void IdleWork::restart(std::int32_t milliseconds) {
    cancel();
    timer_ = hostStartTimer(milliseconds, &IdleWork::ring, this);
}

void IdleWork::cancel() {
    if (!timer_) return;
    hostStopTimer(*timer_);
    timer_.reset();
}

void IdleWork::ring(void* self) {
    auto& idle = *static_cast<IdleWork*>(self);
    idle.timer_.reset();
    idle.work_();
}

}  // namespace brushwork
