#include <fcntl.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "platform/memory_figures.h"

namespace brushwork::platform {
namespace {

// What the system could free for a newcomer, which the older call doesn't tell. 0: not known.
std::uint64_t availableByKernel() noexcept {
    char text[1024] = {};
    const int file = ::open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
    if (file < 0) return 0;
    const ssize_t count = ::read(file, text, sizeof text - 1);
    ::close(file);
    const char name[] = "MemAvailable:";
    const char* const line = count > 0 ? std::strstr(text, name) : nullptr;
    return line ? std::strtoull(line + sizeof name - 1, nullptr, 10) : 0;
}

}  // namespace

MemoryFigures systemMemoryFigures() noexcept {
    struct sysinfo information {};
    if (::sysinfo(&information) != 0) return {};
    const std::uint64_t unit = information.mem_unit;
    MemoryFigures figures;
    figures.physical = std::uint64_t{information.totalram} * unit >> 10;
    figures.available = availableByKernel();
    if (figures.available == 0)
        figures.available =
            (std::uint64_t{information.freeram} + information.bufferram) * unit >> 10;
    return figures;
}

}  // namespace brushwork::platform
