#include "foundation/tasks/threaded_alg.h"

namespace brushwork::znUtil {

ThreadedAlgBase::~ThreadedAlgBase() = default;
ThreadedAlg::~ThreadedAlg() = default;
ThreadedChunkAlg::~ThreadedChunkAlg() = default;

void ThreadedAlgBase::report(std::int32_t threadIndex, double fraction) const {
    if (progress && (threadIndex == 0 || threadCount == 1)) progress->setFraction(fraction);
}

bool ThreadedAlg::begin(std::int32_t) {
    return true;
}

bool ThreadedChunkAlg::begin(std::int32_t) {
    return true;
}

}  // namespace brushwork::znUtil
