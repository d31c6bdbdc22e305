#include "foundation/tasks/task.h"

#include <thread>

namespace brushwork::npc {

namespace {

thread_local AssociatedState* innermost = nullptr;

}  // namespace

// Chains of children may be long: they are taken apart in a loop, not by destructors within
// destructors.
AssociatedState::~AssociatedState() {
    std::vector<Ref<AssociatedState>> rest = std::move(children_);
    while (!rest.empty()) {
        const Ref<AssociatedState> last = std::move(rest.back());
        rest.pop_back();
        if (last->refCount() != 1) continue;
        // Nobody else holds it, so it is done or will never run; the lock is for what its last
        // runner wrote.
        const std::lock_guard lock(last->mutex_);
        for (auto& child : last->children_) rest.push_back(std::move(child));
        last->children_.clear();
    }
}

AssociatedState* AssociatedState::running() noexcept {
    return innermost;
}

std::exception_ptr AssociatedState::error() const noexcept {
    return state() == Done ? error_ : nullptr;
}

// Makes a pending task this thread's own. The lock is held for a few instructions at a time, since
// who waits for a running task lets go of it, so it is worth trying again.
bool AssociatedState::begin(bool waits) {
    if (state() == Done) return false;
    std::unique_lock lock(mutex_, std::try_to_lock);
    while (!lock) {
        std::this_thread::yield();
        static_cast<void>(lock.try_lock());
    }
    if (state() == Pending) {
        state_.store(Running, std::memory_order_release);
        return true;
    }
    if (waits) done_.wait(lock, [this] { return state() == Done; });
    return false;
}

// What the callable holds is given back before anybody learns that the task is done.
void AssociatedState::call() noexcept {
    AssociatedState* const outer = std::exchange(innermost, this);
    try {
        call_();
    } catch (...) {
        error_ = std::current_exception();
    }
    call_.destroy();
    innermost = outer;
    const std::lock_guard lock(mutex_);
    state_.store(Done, std::memory_order_release);
    done_.notify_all();
}

void AssociatedState::runOrWait() {
    if (begin(true)) call();
}

void AssociatedState::runIfPending() {
    if (begin(false)) call();
}

void AssociatedState::waitWithChildren() {
    runOrWait();
    if (children_.empty()) return;
    std::vector<Ref<AssociatedState>> waiting(children_.rbegin(), children_.rend());
    while (!waiting.empty()) {
        const Ref<AssociatedState> next = std::move(waiting.back());
        waiting.pop_back();
        next->runOrWait();
        waiting.insert(waiting.end(), next->children_.rbegin(), next->children_.rend());
    }
}

}  // namespace brushwork::npc
