#include "foundation/tasks/task_pool.h"

#include <algorithm>

#include "platform/processor.h"

namespace brushwork {

namespace {

// What a host asked for; 0 stands for the number of processors.
std::atomic<std::int32_t>& askedSize() noexcept {
    static std::atomic<std::int32_t> size{0};
    return size;
}

// Whether there is a pool to restart.
std::atomic<bool> poolMade{false};

}  // namespace

TaskPool& TaskPool::instance() {
    static TaskPool& pool = []() -> TaskPool& {
        TaskPool& made = *std::unique_ptr<TaskPool>(new TaskPool).release();
        made.start(defaultSize());
        poolMade.store(true, std::memory_order_release);
        return made;
    }();
    return pool;
}

std::int32_t TaskPool::defaultSize() {
    const std::int32_t asked = askedSize().load();
    return std::min(asked > 0 ? asked : platform::logicalProcessorCount(), mostWorkers);
}

void TaskPool::setDefaultSize(std::int32_t count) {
    askedSize().store(count);
    if (!poolMade.load(std::memory_order_acquire)) return;
    TaskPool& pool = instance();
    const std::int32_t size = pool.size();
    if (size == 0 || size == defaultSize() || callingWorkerIndex() >= 0) return;
    pool.stop();
    pool.start(defaultSize());
}

std::int32_t TaskPool::size() const {
    if (!isRunning()) return 0;
    const std::shared_lock lock(workersMutex_);
    return static_cast<std::int32_t>(workers_.size());
}

// Links the workers into a ring and starts them; answers how many could be.
std::size_t TaskPool::launch(Workers& workers, std::size_t count) {
    workers.clear();
    for (std::size_t index = 0; index < count; ++index)
        workers.push_back(std::make_unique<npc::Thread>(static_cast<std::int32_t>(index)));
    for (std::size_t index = 0; index < count; ++index)
        workers[index]->linkTo(*workers[(index + 1) % count]);
    std::size_t started = 0;
    while (started < count && workers[started]->start()) ++started;
    return started;
}

void TaskPool::end(Workers& workers) {
    for (const auto& worker : workers) worker->askToStop();
    for (const auto& worker : workers) worker->join();
}

void TaskPool::start(std::int32_t count) {
    const std::lock_guard once(startMutex_);
    if (isRunning()) return;
    Workers workers;
    // A ring with a worker that has no thread would hold tasks that nobody runs.
    for (auto wanted = static_cast<std::size_t>(std::clamp(count, 1, mostWorkers)); wanted > 0;) {
        const std::size_t started = launch(workers, wanted);
        if (started == wanted) break;
        end(workers);
        workers.clear();
        wanted = started;
    }
    if (workers.empty()) return;
    const std::lock_guard lock(workersMutex_);
    workers_ = std::move(workers);
    running_.store(true, std::memory_order_release);
}

// Workers that still run a task may submit more until they end, so they must find their vector:
// it is emptied when all have ended. What stood in their queues goes last, under no lock.
void TaskPool::stop() {
    if (callingWorkerIndex() >= 0) return;
    Workers ended;
    const std::lock_guard once(startMutex_);
    if (!running_.exchange(false)) return;
    end(workers_);
    const std::lock_guard lock(workersMutex_);
    ended.swap(workers_);
}

std::int32_t TaskPool::workerIndex(std::thread::id thread) const {
    const std::shared_lock lock(workersMutex_);
    for (const auto& worker : workers_)
        if (worker->id() == thread) return worker->index();
    return -1;
}

std::int32_t TaskPool::callingWorkerIndex() noexcept {
    const npc::Thread* worker = npc::Thread::calling();
    return worker ? worker->index() : -1;
}

void TaskPool::place(const Ref<npc::AssociatedState>& task, TaskPriority priority,
                     std::int32_t preferredWorker) {
    using Accept = npc::Thread::Accept;
    if (!isRunning()) return;
    const std::shared_lock lock(workersMutex_);
    const auto preferred = static_cast<std::uint32_t>(preferredWorker);
    const bool prefers = preferredWorker >= 0 && preferred < workers_.size();
    if (prefers) roundRobin_.store(preferred, std::memory_order_relaxed);
    if (tryEach(task, priority, Accept::Idle)) return;
    if (prefers && workers_[preferred]->push(task, priority)) return;
    if (tryEach(task, priority, Accept::Any)) return;
    pushToFirst(task, priority);
}

// One round over the workers, each asked once at most and passed over if its lock isn't free.
bool TaskPool::tryEach(const Ref<npc::AssociatedState>& task, TaskPriority priority,
                       npc::Thread::Accept accept) {
    const std::size_t count = workers_.size();
    for (std::size_t turn = 0; turn < count; ++turn) {
        const std::uint32_t next = roundRobin_.fetch_add(1, std::memory_order_relaxed);
        if (workers_[next % count]->tryPush(task, priority, accept)) return true;
    }
    return false;
}

// Waits for each lock. Submitters share the counter, so only the first place comes from it: a round
// must reach every worker.
bool TaskPool::pushToFirst(const Ref<npc::AssociatedState>& task, TaskPriority priority) {
    const std::size_t count = workers_.size();
    const std::size_t first = roundRobin_.fetch_add(1, std::memory_order_relaxed);
    for (std::size_t turn = 0; turn < count; ++turn)
        if (workers_[(first + turn) % count]->push(task, priority)) return true;
    return false;
}

}  // namespace brushwork
