#include "foundation/tasks/worker.h"

#include <string>
#include <system_error>
#include <utility>

#include "platform/thread_name.h"

namespace brushwork::npc {

namespace {

// A worker sleeps after more rounds than this without a task.
constexpr std::int32_t fruitlessRounds = 0;

thread_local Thread* callingWorker = nullptr;

std::string nextName() {
    static std::atomic<std::int32_t> counter{0};
    return "NPC Worker Thread " + std::to_string(counter.fetch_add(1));
}

}  // namespace

Thread* Thread::calling() noexcept {
    return callingWorker;
}

bool Thread::start() {
    try {
        handle_ = std::thread([this] { loop(); });
        id_ = handle_.get_id();
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void Thread::askToStop() {
    const std::lock_guard lock(mutex_);
    stop_ = true;
    wake_.notify_one();
}

void Thread::join() {
    if (handle_.joinable()) handle_.join();
}

void Thread::loop() {
    callingWorker = this;
    platform::nameCallingThread(nextName());
    while (takeOwn()) {
        if (current_ || steal())
            runCurrent();
        else
            sleepUnlessWork();
    }
}

// The start of a round; false when the worker is to end. The last task goes before the lock is
// taken, since with it may go things of any kind.
bool Thread::takeOwn() {
    current_.reset();
    const std::lock_guard lock(mutex_);
    idle_ = stop_;
    if (stop_) return false;
    current_ = mainQueue_.popFront();
    if (!current_) current_ = lowQueue_.popFront();
    return true;
}

bool Thread::steal() {
    for (Thread* one = next_; one != this; one = one->next_) {
        current_ = one->trySteal();
        if (current_) return true;
    }
    return false;
}

TaskQueue::Task Thread::trySteal() {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock) return nullptr;
    TaskQueue::Task task = mainQueue_.popBack();
    return task ? task : lowQueue_.popBack();
}

void Thread::runCurrent() {
    current_->runIfPending();
    idleCount_ = 0;
}

void Thread::sleepUnlessWork() {
    std::unique_lock lock(mutex_);
    if (stop_ || !mainQueue_.empty() || !lowQueue_.empty()) return;
    if (++idleCount_ <= fruitlessRounds) return;
    idle_ = true;
    wake_.wait(lock);  // woken for nothing it goes round once more
    idleCount_ = 0;
}

void Thread::enqueue(const TaskQueue::Task& task, TaskPriority priority) {
    switch (priority) {
        case TaskPriority::Normal: mainQueue_.pushBack(task); break;
        case TaskPriority::Low: lowQueue_.pushBack(task); break;
        case TaskPriority::Urgent: mainQueue_.pushFront(task); break;
    }
    wake_.notify_one();
}

bool Thread::push(const TaskQueue::Task& task, TaskPriority priority) {
    const std::lock_guard lock(mutex_);
    if (stop_) return false;
    enqueue(task, priority);
    return true;
}

bool Thread::tryPush(const TaskQueue::Task& task, TaskPriority priority, Accept accept) {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock || stop_ || (accept == Accept::Idle && !idle_)) return false;
    enqueue(task, priority);
    return true;
}

}  // namespace brushwork::npc
