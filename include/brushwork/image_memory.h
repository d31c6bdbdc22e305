// What a host sets and reads of the memory that images take.
#pragma once

#include <cstdint>

#include "brushwork/export.h"

namespace brushwork {

struct ImageMemoryFigures {
    std::uint64_t cachedBytes = 0;                          // pages in memory
    std::uint64_t limitBytes = 0;                           // above which pages go to the swap file
    std::uint64_t swappedBytes = 0;                         // on disk
    std::uint64_t pagesSwappedOut = 0, pagesSwappedIn = 0;  // since the start
    std::int32_t images = 0;                                // sparse images that live
    bool failed = false;  // memory or disk failed; nothing is evicted until cleared
};

[[nodiscard]] BRUSHWORK_API ImageMemoryFigures imageMemoryFigures();
// Bytes of pages in memory; 0 lets the engine follow free memory.
BRUSHWORK_API void setImageMemoryLimit(std::uint64_t bytes);
// The engine's own page allocator, for all pages from then on. On before the first image. False: it
// was too late, or there is no memory for it.
BRUSHWORK_API bool enableImageMemoryManager();
// A step of the work that can wait: uniform pages become one value. For a host's idle time.
BRUSHWORK_API void imageMemoryIdle();
BRUSHWORK_API void clearImageFailureFlag();

}  // namespace brushwork
