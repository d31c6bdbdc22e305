// Work in pieces, shared between the calling thread and the workers of the TaskPool.
#pragma once

#include <cstddef>
#include <functional>

#include "blending/core/work_sharing_crew.h"

namespace brushwork::npc {

// Calls work(0) to work(count - 1), each once, in no order, and returns when all have ended. Pieces
// are taken off one counter: a worker that is busy elsewhere holds nobody up, and the caller does
// by itself what no worker comes for. Workers that came stay awake for a moment, so that the next
// job finds them. `work` must not throw.
void shareWork(std::size_t count, const std::function<void(std::size_t)>& work,
               SharedWork amount = SharedWork::Much);

}  // namespace brushwork::npc
