// npc::Thread: one worker of the pool, with its queues.
//
// The workers form a ring. Each runs what stands in its own queues, main before low, and when they
// are empty takes from the far end of a neighbour's, and when there is nothing sleeps until
// something is put before it. Used by TaskPool alone.
//
// A push and the decision to sleep are made under the same lock, as are the order to stop and that
// decision, so no worker sleeps over a task of its own or over its end. What it may miss is a task
// that goes to a busy neighbour in the moment in which it lies down; that one waits for its owner,
// the next worker that wakes, or a waiter.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "foundation/tasks/task.h"
#include "foundation/tasks/task_queue.h"

namespace brushwork {

// In which order tasks of one worker are begun.
enum class TaskPriority : std::int32_t {
    Normal = 0,  // after what stands in the main queue
    Low = 1,     // when the main queue is empty
    Urgent = 2,  // before all that stands in the main queue
};

}  // namespace brushwork

namespace brushwork::npc {

class Thread {
  public:
    // Which workers take a task.
    enum class Accept { Idle, Any };

    explicit Thread(std::int32_t index) noexcept : index_(index) {}
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    // The neighbour behind this one, before the start.
    void linkTo(Thread& next) noexcept {
        next_ = &next;
        next.previous_ = this;
    }
    // False if the system has no thread to give.
    [[nodiscard]] bool start();
    // Asks the worker to end after the task that it runs; its queues stay as they are.
    void askToStop();
    // After askToStop, from outside.
    void join();

    // Puts the task into a queue and wakes the worker; false if the worker stops or isn't as asked.
    [[nodiscard]] bool push(const TaskQueue::Task& task, TaskPriority priority);
    // The same, and false too if the lock isn't free.
    [[nodiscard]] bool tryPush(const TaskQueue::Task& task, TaskPriority priority, Accept accept);

    // In the pool's vector.
    [[nodiscard]] std::int32_t index() const noexcept { return index_; }
    [[nodiscard]] std::thread::id id() const noexcept { return id_; }
    [[nodiscard]] const Thread* next() const noexcept { return next_; }
    [[nodiscard]] const Thread* previous() const noexcept { return previous_; }
    // The worker whose thread this is, or null; borrowed.
    [[nodiscard]] static Thread* calling() noexcept;

  private:
    void loop();
    bool takeOwn();
    bool steal();
    void sleepUnlessWork();
    void runCurrent();
    TaskQueue::Task trySteal();
    void enqueue(const TaskQueue::Task& task, TaskPriority priority);

    std::thread handle_;
    std::thread::id id_;  // of handle_, from the start on and after the end
    Thread* previous_ = nullptr;
    Thread* next_ = nullptr;
    std::int32_t idleCount_ = 0;  // fruitless rounds since the last sleep or task
    bool stop_ = false;
    bool idle_ = true;         // asleep, not yet begun, or ended
    TaskQueue::Task current_;  // of its own thread alone
    TaskQueue mainQueue_;
    TaskQueue lowQueue_;
    // Guards stop_, idle_ and both queues. Taken while no other worker's is held; nothing is run or
    // destroyed under it.
    std::mutex mutex_;
    std::condition_variable wake_;
    const std::int32_t index_;
};

}  // namespace brushwork::npc
