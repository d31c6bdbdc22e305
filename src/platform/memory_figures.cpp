#include "platform/memory_figures.h"

#include <atomic>

namespace brushwork::platform {
namespace {

std::atomic<MemoryFiguresSource> figuresSource{nullptr};

}  // namespace

MemoryFigures memoryFigures() noexcept {
    const MemoryFiguresSource source = figuresSource.load();
    return source ? source() : systemMemoryFigures();
}

void setMemoryFiguresSource(MemoryFiguresSource source) noexcept {
    figuresSource = source;
}

}  // namespace brushwork::platform
