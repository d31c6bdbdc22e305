// znUtil::ThreadedAlg and znUtil::ThreadedChunkAlg: work that describes itself as numbered pieces.
//
// A ThreadPool calls begin once, then run for each piece, then end. Pieces may run at once, so each
// writes its own part of the data alone, and nothing rests on their order but what begin and end
// give.
#pragma once

#include <cstdint>

#include "brushwork/progress.h"

namespace brushwork::znUtil {

class ThreadedAlgBase {
  public:
    ThreadedAlgBase() = default;
    ThreadedAlgBase(const ThreadedAlgBase&) = delete;
    ThreadedAlgBase& operator=(const ThreadedAlgBase&) = delete;
    virtual ~ThreadedAlgBase();

    Progress* progress = nullptr;  // borrowed; null for none
    std::int32_t threadCount = 0;  // set by the pool before begin

  protected:
    // Of the whole work, 0 to 1, from within run. Thread 0 speaks for all; where there is but one
    // thread it does, whatever index it was given.
    void report(std::int32_t threadIndex, double fraction) const;
};

// Pieces by thread: one for each.
class ThreadedAlg : public ThreadedAlgBase {
  public:
    ~ThreadedAlg() override;
    // False if the work can't be done: there is then neither run nor end.
    [[nodiscard]] virtual bool begin(std::int32_t threads);
    virtual void run(std::int32_t part, std::int32_t threadIndex) = 0;
    virtual void end() {}
};

// Pieces by chunk: `chunkCount` of them, handed out to however many threads there are.
class ThreadedChunkAlg : public ThreadedAlgBase {
  public:
    ~ThreadedChunkAlg() override;
    // As above. It may still set chunkCount.
    [[nodiscard]] virtual bool begin(std::int32_t threads);
    virtual void run(std::int32_t chunk, std::int32_t threadIndex, std::int32_t threadTotal) = 0;
    virtual void end() {}

    std::int32_t chunkCount = 100;
};

}  // namespace brushwork::znUtil
