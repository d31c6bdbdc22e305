// znUtil::ThreadPool: what runs the pieces of a threaded algorithm.
//
//     if (!SimpleThreadPool::instance().run(algorithm)) giveUp();
#pragma once

#include <cstdint>

#include "foundation/tasks/threaded_alg.h"

namespace brushwork::znUtil {

class ThreadPool {
  public:
    explicit ThreadPool(std::int32_t threadCount) noexcept : threadCount_(threadCount) {}
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;
    virtual ~ThreadPool();

    // Each returns when all pieces and end have run; false if begin refused. An algorithm is in one
    // pool at a time.
    virtual bool run(ThreadedChunkAlg& algorithm) = 0;
    virtual bool run(ThreadedAlg& algorithm) = 0;

    [[nodiscard]] std::int32_t threadCount() const noexcept { return threadCount_; }

  private:
    const std::int32_t threadCount_;
};

}  // namespace brushwork::znUtil

namespace brushwork {

// Runs every piece on the caller's thread, in order. It holds nothing, so any thread may use it.
class SimpleThreadPool final : public znUtil::ThreadPool {
  public:
    using ThreadPool::ThreadPool;
    // The pool of the process, for one thread.
    [[nodiscard]] static SimpleThreadPool& instance();

    // begin(1), run(chunk, 0, 1) for each chunk, end().
    bool run(znUtil::ThreadedChunkAlg& algorithm) override;
    // begin(1), run(0, 1), end(): the one piece is given thread index 1.
    bool run(znUtil::ThreadedAlg& algorithm) override;
};

}  // namespace brushwork
