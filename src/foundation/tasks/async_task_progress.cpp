#include "foundation/tasks/async_task_progress.h"

namespace brushwork::znUtil {

AsyncTaskProgress::~AsyncTaskProgress() = default;

void AsyncTaskProgress::setFraction(float fraction) {
    fraction_ = fraction;
    changed_ = true;
}

bool AsyncTaskProgress::isRunning() const {
    return state_ == Running;
}

void AsyncTaskProgress::start() {
    state_ = Running;
    changed_ = false;
}

void AsyncTaskProgress::setState(std::int32_t state) {
    state_ = state;
}

std::int32_t AsyncTaskProgress::state() const {
    return state_;
}

void AsyncTaskProgress::assign(const Range& range) {
    range_ = range;
}

float AsyncTaskProgress::fraction() const {
    return fraction_;
}

}  // namespace brushwork::znUtil
