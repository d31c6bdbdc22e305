// Resample4Thread: a share of the cells of one triangle, on a thread of its own or on the caller's.
//
//     Resample4Thread worker(owner, a, b, c, cells, share, nullptr, "");
//     if (!worker.launch()) worker.run();
//     worker.wait();
#pragma once

#include <latch>
#include <span>
#include <string>

#include "brushwork/ref.h"
#include "foundation/base/callable.h"
#include "foundation/tasks/thread.h"
#include "tiled/cell_shares.h"
#include "tiled/triangle_walker.h"

namespace brushwork {

// All that is handed over is borrowed until wait() has returned. No other thread writes its cells.
class Resample4Thread final : public znThread::Thread {
  public:
    // `owner` is a filter that has begun. Without a filter of its own it takes a clone of the
    // owner's as it runs, and lets go of that at the end; one that is given has begun, too.
    Resample4Thread(const ResampleFilter& owner, const TriangleVertex& a, const TriangleVertex& b,
                    const TriangleVertex& c, std::span<const CellPlace> cells,
                    const CellShare& share, ResampleFilter* filter, std::string label);
    // Waits for a thread that was launched.
    ~Resample4Thread() override;

    // Starts the thread, which calls run(); false if the system has none to give.
    [[nodiscard]] bool launch();
    // The work itself, once; completes what wait() waits for.
    void run();
    // Until run() is through, on whichever thread.
    void wait();

  private:
    void resampleShare(ResampleFilter& filter);

    const ResampleFilter& owner_;
    TriangleVertex a_, b_, c_;
    std::span<const CellPlace> cells_;
    CellShare share_;
    ResampleFilter* filter_;
    std::string label_;
    std::latch finished_{1};
};

}  // namespace brushwork
