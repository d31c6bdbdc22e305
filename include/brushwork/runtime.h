// What a host sets for the whole process: where diagnostics go, the random seed, the vector width,
// the number of drawing threads.
//
// Set these before the engine works, from one thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "brushwork/export.h"

namespace brushwork::runtime {

// Takes each diagnostic text as it stands (UTF-8, mostly one line with its end), one call at a time
// and from any thread. An empty function takes back the first state: standard error.
BRUSHWORK_API void setLogSink(std::function<void(std::string_view text)> sink);

// Begins the engine's random sequence anew: the same seed and the same events give the same pixels.
BRUSHWORK_API void setRandomSeed(std::uint64_t seed);

// Which form of the pixel kernels runs. All forms give the same bytes.
enum class VectorWidth { Scalar, Bits128, Bits256 };

// At most this width, and never more than the processor has. Answers what runs from now on.
BRUSHWORK_API VectorWidth limitVectorWidth(VectorWidth widest);

// How many worker threads draw; 0, the first state, stands for one a processor. They start when the
// engine first draws. Workers that already run are stopped, after the tasks under way, and started
// in the new number; so not while a stroke or any other work of the engine goes on. Every number
// gives the same pixels. Answers how many there are or will be, at least 1 and at most 256.
BRUSHWORK_API std::int32_t setWorkerCount(std::int32_t count);

}  // namespace brushwork::runtime
