// npc::AssociatedState and npc::TaskHandle: one task of the worker threads, and the hold on it.
//
//     npc::TaskHandle half = TaskPool::instance().submit([&] { drawUpperHalf(); });
//     drawLowerHalf();
//     half.wait();
//
// Whoever waits for a task that nobody has begun runs it himself, so threads never block on work
// that no thread does. It follows that a task may run on any thread that waits for it, and that two
// tasks must not wait for each other, nor a task for itself.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <mutex>
#include <utility>
#include <vector>

#include "brushwork/ref.h"
#include "brushwork/reference_count.h"
#include "foundation/tasks/task_callable.h"

namespace brushwork::npc {

// Shared by the handles and by the queue in which the task stands. Any thread.
class AssociatedState final : public zn::ReferenceCount {
  public:
    enum State : std::int32_t { Pending = 0, Running = 1, Done = 2 };

    template <class F>
    explicit AssociatedState(F&& call) : call_(std::forward<F>(call)) {}

    // Runs a pending task on this thread; waits for one that runs elsewhere. Done afterwards.
    void runOrWait();
    // Runs a pending task and passes over any other. For workers: one that takes a task out of a
    // queue just as a waiter begins it has nothing to wait for, and waiting would hold up the rest
    // of its queue.
    void runIfPending();
    // runOrWait on this task, then on all its children, theirs, and so on.
    void waitWithChildren();

    [[nodiscard]] State state() const noexcept { return state_.load(std::memory_order_acquire); }
    // What the callable threw; null if nothing, and until the task is done.
    [[nodiscard]] std::exception_ptr error() const noexcept;

    // For the thread that runs this task, while it runs.
    void addChild(Ref<AssociatedState> child) { children_.push_back(std::move(child)); }
    // The innermost task that runs on this thread, or null; borrowed.
    [[nodiscard]] static AssociatedState* running() noexcept;

  private:
    ~AssociatedState() override;
    bool begin(bool waits);
    void call() noexcept;

    std::atomic<State> state_{Pending};  // written under mutex_
    TaskCallable call_;                  // destroyed as soon as it has been called
    std::mutex mutex_;                   // the last lock: none other is taken under it
    std::condition_variable done_;
    // Both written by the running thread alone and read once the task is done.
    std::vector<Ref<AssociatedState>> children_;
    std::exception_ptr error_;
};

// A value; copies hold the same task. One handle object belongs to one thread at a time.
class TaskHandle {
  public:
    TaskHandle() noexcept = default;  // holds no task
    explicit TaskHandle(Ref<AssociatedState> state) noexcept : state_(std::move(state)) {}

    // Returns once the task and all that it spawned are done; runs here whatever nobody has begun.
    // Without a task it returns at once. A task's error isn't thrown.
    void wait() const {
        if (state_) state_->waitWithChildren();
    }
    [[nodiscard]] bool isValid() const noexcept { return static_cast<bool>(state_); }
    // The task itself, whatever its children do.
    [[nodiscard]] bool isDone() const noexcept {
        return state_ && state_->state() == AssociatedState::Done;
    }
    // What the callable threw; null if nothing, and until it is done.
    [[nodiscard]] std::exception_ptr error() const noexcept {
        return state_ ? state_->error() : nullptr;
    }
    [[nodiscard]] const Ref<AssociatedState>& state() const noexcept { return state_; }

  private:
    Ref<AssociatedState> state_;
};

}  // namespace brushwork::npc
