// A host with one surface and a view onto it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "brushwork/host_call_table.h"

namespace brushwork::test {

struct ViewHost {
    std::vector<std::uint32_t> pixels;
    std::int32_t width = 0, height = 0;
    float view[5] = {0.0f, 0.0f, 1.0f, 0.0f, 0.0f};
    int presented = 0;

    ViewHost(std::int32_t x, std::int32_t y)
        : pixels(static_cast<std::size_t>(x) * static_cast<std::size_t>(y)),
          width(x),
          height(y),
          former_(hostCallTable()) {
        current = this;
        HostCallTable& table = hostCallTable();
        table.createCanvas = [](std::intptr_t, std::intptr_t) -> HostCanvas { return current; };
        table.canvasSurface = [](HostCanvas canvas) -> HostSurface { return canvas; };
        table.surfaceSize = [](HostSurface, std::int32_t* w, std::int32_t* h) {
            *w = current->width;
            *h = current->height;
        };
        table.surfacePixels = [](HostSurface) -> void* { return current->pixels.data(); };
        table.viewParameters = [](HostSurface, float* outputs) {
            std::copy_n(current->view, 5, outputs);
        };
        table.presentSurface = [](HostSurface) { ++current->presented; };
    }
    ViewHost(const ViewHost&) = delete;
    ViewHost& operator=(const ViewHost&) = delete;
    ~ViewHost() { hostCallTable() = former_; }

    static inline ViewHost* current = nullptr;

  private:
    HostCallTable former_;
};

}  // namespace brushwork::test
