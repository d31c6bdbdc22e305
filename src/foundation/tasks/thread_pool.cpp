#include "foundation/tasks/thread_pool.h"

namespace brushwork {

znUtil::ThreadPool::~ThreadPool() = default;

SimpleThreadPool& SimpleThreadPool::instance() {
    static SimpleThreadPool pool(1);
    return pool;
}

bool SimpleThreadPool::run(znUtil::ThreadedChunkAlg& algorithm) {
    algorithm.threadCount = 1;
    if (!algorithm.begin(1)) return false;
    for (std::int32_t chunk = 0; chunk < algorithm.chunkCount; ++chunk) algorithm.run(chunk, 0, 1);
    algorithm.end();
    return true;
}

bool SimpleThreadPool::run(znUtil::ThreadedAlg& algorithm) {
    algorithm.threadCount = 1;
    if (!algorithm.begin(1)) return false;
    algorithm.run(0, 1);
    algorithm.end();
    return true;
}

}  // namespace brushwork
