#include <windows.h>

#include "platform/processor.h"

namespace brushwork::platform {

int logicalProcessorCount() noexcept {
    SYSTEM_INFO info{};
    ::GetSystemInfo(&info);
    return info.dwNumberOfProcessors ? static_cast<int>(info.dwNumberOfProcessors) : 1;
}

}  // namespace brushwork::platform
