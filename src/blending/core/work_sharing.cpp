#include "blending/core/work_sharing.h"

#include <algorithm>
#include <atomic>
#include <vector>

#include "foundation/tasks/task_pool.h"

namespace brushwork::npc {
namespace {

void doAlone(std::size_t count, const std::function<void(std::size_t)>& work) {
    for (std::size_t n = 0; n < count; ++n) work(n);
}

// For a job beside another one's, or inside it: helpers of its own.
void shareOnce(std::size_t count, std::size_t helperCount,
               const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next{0};
    const auto takeAll = [&] {
        for (std::size_t n = next++; n < count; n = next++) work(n);
    };
    std::vector<TaskHandle> helpers;
    try {
        helpers.reserve(helperCount);
        for (std::size_t n = 0; n < helperCount; ++n)
            helpers.push_back(TaskPool::instance().submit(takeAll));
    } catch (...) {
        // Fewer helpers then. Those that are on their way refer to this frame and are waited for.
    }
    takeAll();
    for (const TaskHandle& helper : helpers) helper.wait();
}

}  // namespace

void shareWork(std::size_t count, const std::function<void(std::size_t)>& work, SharedWork amount) {
    if (count == 0) return;
    // The caller is one of the threads, but a single worker helps nevertheless.
    const auto workers = static_cast<std::size_t>(TaskPool::instance().size());
    const std::size_t helpers = std::min(workers < 2 ? workers : workers - 1, count - 1);
    if (helpers == 0) return doAlone(count, work);
    switch (WorkCrew::instance().share(count, helpers, work, amount)) {
        case WorkCrew::Answer::Done: return;
        case WorkCrew::Answer::NotWorthIt: return doAlone(count, work);
        case WorkCrew::Answer::Busy: break;
    }
    if (amount == SharedWork::Much)
        shareOnce(count, helpers, work);
    else
        doAlone(count, work);
}

}  // namespace brushwork::npc
