#include <windows.h>

#include "platform/memory_figures.h"

namespace brushwork::platform {

MemoryFigures systemMemoryFigures() noexcept {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (!::GlobalMemoryStatusEx(&status)) return {};
    return {status.ullTotalPhys >> 10, status.ullAvailPhys >> 10};
}

}  // namespace brushwork::platform
