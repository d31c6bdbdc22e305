// TaskPool: the worker threads that draw, one pool for the whole process.
//
//     TaskPool& pool = TaskPool::instance();             // the first use starts it
//     std::vector<npc::TaskHandle> bands;
//     for (Band& band : rest) bands.push_back(pool.submit([&band] { draw(band); }));
//     draw(first);                                       // the caller does its share
//     while (!bands.empty()) {                           // and, the last first, what no
//         bands.back().wait();                           // worker has begun
//         bands.pop_back();
//     }
//
// A worker begins with the first, so a caller who waited for them in that order would sleep beside
// each task that the worker has just begun.
//
// Tasks are coarse: tens of microseconds of work at the least. A sleeping worker gets a task first,
// else one that isn't busy with its lock. A task may submit more, spawn children and wait.
//
// The pool is never destroyed: at the end of the process its workers end with it, asleep. Joining
// them from a destructor would hang a host that exits from within a task or whose library is
// unloaded after the system has ended its threads. Who wants them gone earlier calls stop(), and
// must before a library that holds this code is unloaded.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/tasks/task.h"
#include "foundation/tasks/worker.h"

namespace brushwork {

class TaskPool {
  public:
    static constexpr std::int32_t mostWorkers = 256;

    // The pool; the first call starts it with the default size. Any thread.
    [[nodiscard]] static TaskPool& instance();
    // How many workers the first use starts: as many as the system has processors, until a host
    // says another number (0: processors again). A pool that runs with another size is stopped and
    // started with this one, one that was stopped stays so. Not from a task, nor while there are
    // tasks: those in the queues would be left to their waiters.
    static void setDefaultSize(std::int32_t count);
    [[nodiscard]] static std::int32_t defaultSize();

    TaskPool(const TaskPool&) = delete;
    TaskPool& operator=(const TaskPool&) = delete;

    // Workers at work; 0 while it is stopped.
    [[nodiscard]] std::int32_t size() const;
    // With `count` workers, at least 1 and at most mostWorkers, or as many as the system has
    // threads for; isRunning() tells whether there was any. Does nothing while it runs.
    void start(std::int32_t count);
    // Ends each worker after the task that it runs. Tasks left in the queues are run by their
    // waiters, or never. Nothing happens on a worker's own thread.
    void stop();
    [[nodiscard]] bool isRunning() const noexcept {
        return running_.load(std::memory_order_acquire);
    }

    // Hands a task to a worker, first of all to the preferred one if it is idle (an index below
    // size(), else any). The callable is called once without arguments, its result dropped; what it
    // throws stays in the task. It must not outlive what it refers to: who refers to locals waits.
    // If the pool doesn't run the task is in no queue, and wait() runs it. Any thread; one
    // allocation if the callable fits TaskCallable::room.
    template <class F>
    npc::TaskHandle submit(F&& callable, TaskPriority priority = TaskPriority::Normal,
                           std::int32_t preferredWorker = -1) {
        auto task = makeRef<npc::AssociatedState>(std::forward<F>(callable));
        place(task, priority, preferredWorker);
        return npc::TaskHandle(std::move(task));
    }

    // The index of the worker whose thread it is, or -1.
    [[nodiscard]] std::int32_t workerIndex(std::thread::id thread) const;
    // Of the calling thread, without a search.
    [[nodiscard]] static std::int32_t callingWorkerIndex() noexcept;

    // Hands over a task that exists; for spawnChild.
    void place(const Ref<npc::AssociatedState>& task, TaskPriority priority,
               std::int32_t preferredWorker);

  private:
    using Workers = std::vector<std::unique_ptr<npc::Thread>>;

    TaskPool() = default;
    [[nodiscard]] static std::size_t launch(Workers& workers, std::size_t count);
    static void end(Workers& workers);
    bool tryEach(const Ref<npc::AssociatedState>& task, TaskPriority priority,
                 npc::Thread::Accept accept);
    bool pushToFirst(const Ref<npc::AssociatedState>& task, TaskPriority priority);

    std::atomic<bool> running_{false};
    std::atomic<std::uint32_t> roundRobin_{0};
    Workers workers_;                         // guarded by workersMutex_
    mutable std::shared_mutex workersMutex_;  // a worker's lock may be taken under it
    std::mutex startMutex_;                   // one start or stop at a time; the first lock
};

namespace npc {

// From inside a task: a part of that task, begun as soon as may be, which a wait for the task
// includes. Outside of one it is an urgent task like any other.
template <class F>
TaskHandle spawnChild(F&& callable) {
    auto child = makeRef<AssociatedState>(std::forward<F>(callable));
    if (AssociatedState* parent = AssociatedState::running()) parent->addChild(child);
    TaskPool::instance().place(child, TaskPriority::Urgent, TaskPool::callingWorkerIndex());
    return TaskHandle(std::move(child));
}

}  // namespace npc

}  // namespace brushwork
