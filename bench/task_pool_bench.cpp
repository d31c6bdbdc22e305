// What a task costs: handing it over, waiting for it, and many of them, for several sizes of pool.
//
// The bound beside the latency is a switch to another thread and back through a mutex and two
// conditions; beside the batch of work, the same work on one thread.
#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

#include "bench_clock.h"
#include "foundation/tasks/task_pool.h"

namespace brushwork {
namespace {

constexpr int tasksARound = 2000;
constexpr int workSteps = 14000;

// Takes a few processor cycles a step, and no compiler can leave it out.
void work(int steps) {
    std::uint32_t value = 1;
    for (int step = 0; step < steps; ++step) {
        value = value * 1664525U + 1013904223U;
        __asm__ volatile("" : "+r"(value));
    }
}

// The caller waits for each task before the next: whoever is first runs it.
void submitAndWait(TaskPool& pool) {
    for (int task = 0; task < tasksARound; ++task) pool.submit([] {}).wait();
}

// The caller doesn't wait but looks, so that a worker has to wake and run the task.
void submitAndWatch(TaskPool& pool) {
    for (int task = 0; task < tasksARound; ++task) {
        const auto handle = pool.submit([] {});
        while (!handle.isDone()) std::this_thread::yield();
    }
}

enum class Order { FirstToLast, LastToFirst };

void submitThenWaitForAll(TaskPool& pool, int steps, Order order) {
    std::vector<npc::TaskHandle> handles;
    handles.reserve(tasksARound);
    for (int task = 0; task < tasksARound; ++task)
        handles.push_back(pool.submit([steps] { work(steps); }));
    if (order == Order::LastToFirst) std::reverse(handles.begin(), handles.end());
    for (const auto& handle : handles) handle.wait();
}

// Two threads that wake each other, a mutex and a condition each.
void pingPong() {
    std::mutex mutex;
    std::condition_variable changed;
    int turn = 0;
    const auto play = [&](int side) {
        for (int task = 0; task < tasksARound; ++task) {
            std::unique_lock lock(mutex);
            changed.wait(lock, [&] { return turn == side; });
            turn = 1 - side;
            changed.notify_one();
        }
    };
    std::thread other([&] { play(1); });
    play(0);
    other.join();
}

void print(const bench::Job& job) {
    std::printf("  %-44s %9.2f us a task\n", job.name.c_str(), job.median() * 1e6 / tasksARound);
}

void measure(std::int32_t workers) {
    TaskPool& pool = TaskPool::instance();
    pool.stop();
    pool.start(workers);
    bench::Rounds rounds;
    rounds.add("submit and wait, empty", [&] { submitAndWait(pool); });
    rounds.add("submit and watch, empty: a worker runs it", [&] { submitAndWatch(pool); });
    rounds.add("2000 submitted, then waited for, empty",
               [&] { submitThenWaitForAll(pool, 0, Order::LastToFirst); });
    rounds.add("2000 with work, waited for from the first",
               [&] { submitThenWaitForAll(pool, workSteps, Order::FirstToLast); });
    rounds.add("2000 with work, waited for from the last",
               [&] { submitThenWaitForAll(pool, workSteps, Order::LastToFirst); });
    rounds.add("the same work on this thread", [] {
        for (int task = 0; task < tasksARound; ++task) work(workSteps);
    });
    rounds.add("two threads waking each other", [] { pingPong(); });
    rounds.run(5, 20);
    std::printf("%d workers, %u processors\n", workers, std::thread::hardware_concurrency());
    for (const auto& job : rounds.jobs()) print(job);
}

}  // namespace
}  // namespace brushwork

int main() {
    for (const std::int32_t workers : {1, 2, 8}) brushwork::measure(workers);
}
