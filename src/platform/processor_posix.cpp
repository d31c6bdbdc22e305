#include <algorithm>
#include <thread>

#include "platform/processor.h"

namespace brushwork::platform {

// Unlike the machine's own count this one knows of a process that is bound to a few processors.
int logicalProcessorCount() noexcept {
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

}  // namespace brushwork::platform
