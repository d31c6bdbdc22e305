#include "blending/core/work_sharing.h"

#include <algorithm>
#include <atomic>
#include <vector>

#include "foundation/tasks/task_pool.h"

namespace brushwork::npc {

void shareWork(std::size_t count, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next{0};
    const auto takeAll = [&] {
        for (std::size_t n = next++; n < count; n = next++) work(n);
    };
    TaskPool& pool = TaskPool::instance();
    // The caller is one of the threads, but a single worker helps nevertheless.
    const auto workers = static_cast<std::size_t>(pool.size());
    const std::size_t threads = std::min(workers == 1 ? std::size_t{2} : workers, count);
    std::vector<TaskHandle> helpers;
    try {
        helpers.reserve(threads);
        for (std::size_t n = 1; n < threads; ++n) helpers.push_back(pool.submit(takeAll));
    } catch (...) {
        // Fewer helpers then. Those that are on their way refer to this frame and are waited for.
    }
    takeAll();
    for (const TaskHandle& helper : helpers) helper.wait();
}

}  // namespace brushwork::npc
