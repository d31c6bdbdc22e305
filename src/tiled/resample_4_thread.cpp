#include "tiled/resample_4_thread.h"

#include <utility>

namespace brushwork {
namespace {

using Entry = znRTB::FunctionVoidMember<Resample4Thread>;

}  // namespace

Resample4Thread::Resample4Thread(const ResampleFilter& owner, const TriangleVertex& a,
                                 const TriangleVertex& b, const TriangleVertex& c,
                                 std::span<const CellPlace> cells, const CellShare& share,
                                 ResampleFilter* filter, std::string label)
    : Thread([](const Ref<Entry>& entry) { (*entry)(); },
             makeRef<Entry>(*this, &Resample4Thread::run)),
      owner_(owner),
      a_(a),
      b_(b),
      c_(c),
      cells_(cells),
      share_(share),
      filter_(filter),
      label_(std::move(label)) {}

// Joined here, while the members that the thread uses are alive.
Resample4Thread::~Resample4Thread() {
    join();
}

bool Resample4Thread::launch() {
    return start();
}

void Resample4Thread::run() {
    if (filter_) {
        resampleShare(*filter_);
    } else {
        const Ref<ResampleFilter> own = owner_.clone();
        if (own->beginLike(owner_)) {
            resampleShare(*own);
            own->end();
        }
    }
    finished_.count_down();
}

void Resample4Thread::resampleShare(ResampleFilter& filter) {
    const TriangleSetup setup(a_, b_, c_);
    for (const CellPlace& cell : cells_.subspan(share_.first, share_.count))
        resampleCell4(setup, cell, filter);
}

void Resample4Thread::wait() {
    finished_.wait();
}

}  // namespace brushwork
