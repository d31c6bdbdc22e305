#include "blending/core/work_sharing_crew.h"

#include <memory>
#include <thread>

#include "foundation/tasks/processor_count.h"
#include "foundation/tasks/task_pool.h"

namespace brushwork::npc {
namespace {

using namespace std::chrono_literals;

// How long a helper stays awake.
constexpr auto moment = 50us;
// How soon a second job counts as one of a row: the first was done alone meanwhile.
constexpr auto nextInARow = 200us;
// An invitation that no worker took up for so long stands in the queue of an ended pool.
constexpr auto lostAfter = 20ms;

}  // namespace

// Not destroyed, as the pool isn't: helpers may look at it as the process ends.
WorkCrew& WorkCrew::instance() {
    static WorkCrew& crew = *std::unique_ptr<WorkCrew>(new WorkCrew).release();
    return crew;
}

WorkCrew::Answer WorkCrew::share(std::size_t count, std::size_t helpers,
                                 const std::function<void(std::size_t)>& work, SharedWork amount) {
    if (count > 0xFFFFFFFF) return Answer::Busy;
    if (owned_.test_and_set(std::memory_order_acquire)) return Answer::Busy;
    if (awake_.load(std::memory_order_relaxed) < static_cast<std::int32_t>(helpers)) {
        if (mayWake(amount)) {
            invite(helpers);
        } else if (awake_.load(std::memory_order_relaxed) == 0) {
            owned_.clear(std::memory_order_release);
            return Answer::NotWorthIt;
        }
    }
    work_ = &work;
    pieces_.store(std::uint64_t{count} << 32, std::memory_order_relaxed);
    turn_.fetch_add(1);
    takePieces(End::First);
    turn_.fetch_add(1);
    // Whoever enters from now on finds no job; whoever is inside ends a last piece.
    while (inside_.load() != 0) std::this_thread::yield();
    owned_.clear(std::memory_order_release);
    return Answer::Done;
}

bool WorkCrew::mayWake(SharedWork amount) {
    if (amount == SharedWork::Much) return true;
    const auto now = Clock::now();
    const bool inARow = now - lastAsked_ < nextInARow;
    lastAsked_ = now;
    return inARow;
}

void WorkCrew::invite(std::size_t helpers) {
    const auto now = Clock::now();
    const bool lost = now - invited_ > lostAfter;
    try {
        if (helpers_.size() < helpers) helpers_.resize(helpers);
        for (std::size_t n = 0; n < helpers; ++n) {
            TaskHandle& helper = helpers_[n];
            const bool waits = helper.isValid() && !helper.isDone();
            // One that has begun works for this job, or is just about to leave.
            if (waits && (!lost || helper.state()->state() != AssociatedState::Pending)) continue;
            helper = TaskPool::instance().submit([this] { help(); });
            invited_ = now;
        }
    } catch (...) {
        // Fewer helpers then.
    }
}

bool WorkCrew::takePiece(End from, std::size_t& piece) {
    std::uint64_t left = pieces_.load(std::memory_order_relaxed);
    for (;;) {
        const std::uint64_t first = left & 0xFFFFFFFF, end = left >> 32;
        if (first >= end) return false;
        const bool isFirst = from == End::First;
        const std::uint64_t rest = isFirst ? left + 1 : left - (std::uint64_t{1} << 32);
        piece = static_cast<std::size_t>(isFirst ? first : end - 1);
        if (pieces_.compare_exchange_weak(left, rest, std::memory_order_relaxed)) return true;
    }
}

void WorkCrew::takePieces(End from) {
    for (std::size_t n = 0; takePiece(from, n);) (*work_)(n);
}

void WorkCrew::help() {
    awake_.fetch_add(1, std::memory_order_relaxed);
    // On a single processor it would be in the way of the one who has the work.
    const auto stay = processorCount() > 1 ? Clock::duration(moment) : Clock::duration::zero();
    std::uint32_t done = 0;  // the job that this helper saw last
    for (auto since = Clock::now();;) {
        const std::uint32_t turn = turn_.load();
        if (turn % 2 != 0 && turn != done) {
            inside_.fetch_add(1);
            if (turn_.load() == turn) takePieces(End::Last);
            inside_.fetch_sub(1);
            done = turn;
            since = Clock::now();
        } else if (Clock::now() - since >= stay) {
            break;
        } else {
            std::this_thread::yield();
        }
    }
    awake_.fetch_sub(1, std::memory_order_relaxed);
}

}  // namespace brushwork::npc
