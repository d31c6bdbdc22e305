#include "image/memory/image_lock.h"

#include <memory>

namespace brushwork {

std::recursive_mutex& imageLock() {
    // Never destroyed: pages go back while the process ends.
    static std::recursive_mutex& lock = *std::make_unique<std::recursive_mutex>().release();
    return lock;
}

}  // namespace brushwork
