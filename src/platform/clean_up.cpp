#include "platform/clean_up.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace brushwork::platform {

namespace {

std::atomic<bool> endBegun{false};
std::atomic<int> threadsHolding{0};
thread_local int depth = 0;

[[noreturn]] void stayUntilTheEnd() {
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

}  // namespace

// Sequentially consistent: whoever ends the process sees this thread's hold, or this thread sees
// the end.
EndingHold::EndingHold() {
    if (depth++ > 0) return;
    threadsHolding.fetch_add(1);
    if (!endBegun.load()) return;
    threadsHolding.fetch_sub(1);
    stayUntilTheEnd();
}

EndingHold::~EndingHold() {
    if (--depth > 0) return;
    threadsHolding.fetch_sub(1);
    if (endBegun.load()) stayUntilTheEnd();
}

void EndingHold::beginEnd() {
    endBegun.store(true);
}

bool EndingHold::anyLeft() {
    return threadsHolding.load() > 0;
}

}  // namespace brushwork::platform
