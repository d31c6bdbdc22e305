// znThread::Thread: a handle on a thread that runs one callable.
//
//     znThread::Thread thread([](Share& share) { share.run(); }, std::ref(share));
//     thread.start();
//
// For work that is split by hand; drawing goes to TaskPool. A class may derive from it and have the
// thread call its own member: nothing runs before start().
#pragma once

#include <functional>
#include <thread>
#include <type_traits>
#include <utility>

#include "brushwork/ref.h"

namespace brushwork::znThread {

// The handle belongs to one thread at a time.
class Thread {
  public:
    // Wraps the calling thread: there is nothing to start or to join.
    Thread();
    // For a new thread that will call `callable(argument)`, both kept by value, once. The result is
    // dropped; what it throws is logged and goes no further.
    template <class F, class A>
    Thread(F&& callable, A&& argument)
        : Thread(
              std::function<void()>([call = std::forward<F>(callable),
                                     kept = std::decay_t<A>(std::forward<A>(argument))]() mutable {
                  static_cast<void>(std::invoke(call, kept));
              })) {}
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    // Gives the thread up. One that runs goes on by itself if it is detached; else the destructor
    // waits for its end.
    virtual ~Thread();

    // Begins the new thread; false if there is none to begin, a second time, or if the system
    // refuses.
    bool start();
    // Waits for the end of the callable, and says whether there was a started thread, other than
    // the calling one, to wait for. Detached or not.
    bool join();

    // Whether the thread outlives the handle; true at first.
    [[nodiscard]] bool isDetached() const noexcept { return detached_; }
    void setDetached(bool detached) noexcept { detached_ = detached; }
    // None before the start and after join().
    [[nodiscard]] std::thread::id id() const noexcept;
    [[nodiscard]] bool isCalling() const noexcept { return id() == std::this_thread::get_id(); }

  private:
    class Impl;
    explicit Thread(std::function<void()> callable);

    Ref<Impl> impl_;  // shared with the running thread
    bool detached_ = true;
};

}  // namespace brushwork::znThread
