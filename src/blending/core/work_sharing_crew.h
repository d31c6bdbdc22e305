// WorkCrew: workers of the TaskPool that wait for the next job awake, for a moment, before they go
// back to their pool.
//
// To wake a sleeping worker takes longer than to blend a large stamp, and a stroke lays one stamp
// after the other. One crew serves the process, one job at a time.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "foundation/tasks/task.h"

namespace brushwork::npc {

// How much there is to do.
enum class SharedWork {
    Much,  // wakes workers: it takes them longer to come than a few ten thousand pixels take
    // Worth sharing with workers that are awake. None is woken for a single such job, but for the
    // second within a moment: a row of stamps.
    Some,
};

class WorkCrew {
  public:
    [[nodiscard]] static WorkCrew& instance();
    WorkCrew(const WorkCrew&) = delete;
    WorkCrew& operator=(const WorkCrew&) = delete;

    enum class Answer {
        Done,
        Busy,        // with another job, perhaps the one that this call is a part of
        NotWorthIt,  // nobody is awake, and nobody was woken
    };
    // Calls work(0) to work(count - 1) here and on up to `helpers` workers; nothing unless Done.
    // The caller takes pieces from the front and the helpers from the back, so that in a row of
    // jobs on the same memory each finds most of it in its own processor's cache.
    Answer share(std::size_t count, std::size_t helpers,
                 const std::function<void(std::size_t)>& work, SharedWork amount);

  private:
    using Clock = std::chrono::steady_clock;

    WorkCrew() = default;
    void invite(std::size_t helpers);
    void help();
    enum class End { First, Last };
    void takePieces(End from);
    [[nodiscard]] bool takePiece(End from, std::size_t& piece);
    bool mayWake(SharedWork amount);

    std::atomic_flag owned_;  // by the thread that shares; guards what isn't atomic
    std::vector<TaskHandle> helpers_;
    Clock::time_point invited_{};    // when the last helper was asked to come
    Clock::time_point lastAsked_{};  // when there was some work and nobody awake
    // The job. Helpers read it between their entry and their leaving, while `turn_` is odd.
    const std::function<void(std::size_t)>* work_ = nullptr;
    // Those that aren't taken yet: the first in the lower half, one past the last in the upper.
    alignas(64) std::atomic<std::uint64_t> pieces_{0};
    alignas(64) std::atomic<std::uint32_t> turn_{0};  // odd: a job is open
    alignas(64) std::atomic<std::int32_t> inside_{0};
    std::atomic<std::int32_t> awake_{0};
};

}  // namespace brushwork::npc
