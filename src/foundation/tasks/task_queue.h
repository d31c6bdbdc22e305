// npc::TaskQueue: the tasks that stand before one worker, a queue with two ends.
//
// A ring that grows by doubling and keeps its memory, so that a queue in use allocates nothing.
// Its owner guards it.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "foundation/tasks/task.h"

namespace brushwork::npc {

class TaskQueue {
  public:
    using Task = Ref<AssociatedState>;

    [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
    void pushBack(const Task& task) {
        makeRoom();
        at(count_++) = task;
    }
    void pushFront(const Task& task) {
        makeRoom();
        start_ = (start_ + ring_.size() - 1) % ring_.size();
        ++count_;
        at(0) = task;
    }
    // Null from an empty queue, as below.
    [[nodiscard]] Task popFront() noexcept {
        if (empty()) return nullptr;
        Task task = std::move(at(0));
        start_ = --count_ == 0 ? 0 : (start_ + 1) % ring_.size();
        return task;
    }
    [[nodiscard]] Task popBack() noexcept {
        if (empty()) return nullptr;
        Task task = std::move(at(--count_));
        if (count_ == 0) start_ = 0;
        return task;
    }

  private:
    [[nodiscard]] Task& at(std::size_t index) noexcept {
        return ring_[(start_ + index) % ring_.size()];
    }
    void makeRoom() {
        if (count_ < ring_.size()) return;
        std::vector<Task> wider(ring_.empty() ? 16 : 2 * ring_.size());
        for (std::size_t index = 0; index < count_; ++index) wider[index] = std::move(at(index));
        ring_ = std::move(wider);
        start_ = 0;
    }

    std::vector<Task> ring_;
    std::size_t start_ = 0;
    std::size_t count_ = 0;
};

}  // namespace brushwork::npc
