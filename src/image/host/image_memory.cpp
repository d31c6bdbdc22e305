#include "brushwork/image_memory.h"

#include "image/cache/smart_image_cache.h"
#include "image/memory/image_health.h"
#include "image/memory/memory_manager.h"

namespace brushwork {

ImageMemoryFigures imageMemoryFigures() {
    const SmartImageCache& cache = SmartImageCache::instance();
    const SmartImageCache::Counts counts = cache.counts();
    ImageMemoryFigures figures;
    figures.cachedBytes = counts.usedBytes;
    figures.limitBytes = counts.maxBytes;
    figures.swappedBytes = cache.swapBytes();
    figures.pagesSwappedOut = counts.swapWrites;
    figures.pagesSwappedIn = counts.swapReads;
    figures.images = counts.images;
    figures.failed = imageFailure() != 0;
    return figures;
}

void setImageMemoryLimit(std::uint64_t bytes) {
    SmartImageCache& cache = SmartImageCache::instance();
    cache.setCeiling(bytes);
    if (bytes != 0)
        cache.setMaxBytes(bytes);
    else
        cache.adjustToMemory(false, false, false);
}

bool enableImageMemoryManager() {
    if (SmartImageCache::instance().counts().images != 0) return false;
    BworkMemory::instance().enable(true);
    return BworkMemory::instance().isEnabled();
}

void imageMemoryIdle() {
    SmartImageCache::instance().idleStep();
}

void clearImageFailureFlag() {
    clearImageFailure();
}

}  // namespace brushwork
