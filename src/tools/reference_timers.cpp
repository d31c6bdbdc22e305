#include "tools/reference_timers.h"

#include <algorithm>
#include <thread>

namespace brushwork::tools {

HostTimerId ReferenceTimers::start(std::int32_t milliseconds, HostTimerCallback callback,
                                   void* argument) {
    if (!callback) return 0;
    const HostTimerId id = nextId_++;
    due_[{now_ + std::max(milliseconds, 0), id}] = {callback, argument};
    return id;
}

void ReferenceTimers::stop(HostTimerId timer) {
    const auto found = std::find_if(due_.begin(), due_.end(),
                                    [&](const auto& each) { return each.first.second == timer; });
    if (found != due_.end()) due_.erase(found);
}

void ReferenceTimers::wait(std::int64_t milliseconds) {
    const std::int64_t end = now_ + std::max<std::int64_t>(milliseconds, 0);
    while (!due_.empty() && due_.begin()->first.first <= end) {
        const auto [when, timer] = *due_.begin();
        due_.erase(due_.begin());
        passUntil(when.first);
        ++rung_;
        timer.callback(timer.argument);
    }
    passUntil(end);
}

void ReferenceTimers::passUntil(std::int64_t moment) {
    if (moment <= now_) return;
    if (pace_ == Pace::Real) std::this_thread::sleep_for(std::chrono::milliseconds(moment - now_));
    now_ = moment;
}

}  // namespace brushwork::tools
