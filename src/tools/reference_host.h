// ReferenceHost: a host without windows. It fills the host table for as long as it lives.
//
//     ReferenceHost host(ReferenceTimers::Pace::Real);
//     PaintManager manager;
//     manager.newCanvas(1024, 768, 1024, 768);   // on a surface of the host's
//     manager.newCanvas(1024, 768);              // on pixels of the engine's
//
// One at a time; the engine's objects must go before it does.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/reference_surface.h"
#include "tools/reference_timers.h"

namespace brushwork::tools {

// What the engine asked of the host.
struct HostFigures {
    std::uint64_t presents = 0;
    std::uint64_t repaints = 0;
    std::uint64_t flushes = 0;
    std::uint64_t layerListChanges = 0;
    std::uint64_t refreshes = 0;
};

class ReferenceHost {
  public:
    explicit ReferenceHost(ReferenceTimers::Pace pace, std::int32_t debugLevel = 0);
    ReferenceHost(const ReferenceHost&) = delete;
    ReferenceHost& operator=(const ReferenceHost&) = delete;
    ~ReferenceHost();

    [[nodiscard]] ReferenceTimers& timers() { return timers_; }
    [[nodiscard]] const HostFigures& figures() const { return figures_; }
    // What the engine said to the user since the last call, oldest first.
    [[nodiscard]] std::vector<std::string> takeMessages();

  private:
    void serveCanvases();
    void serveDisplay();
    void serveWords();

    ReferenceTimers timers_;
    std::int32_t debugLevel_;
    HostFigures figures_;
    std::vector<std::unique_ptr<ReferenceSurface>> surfaces_;
    std::vector<std::string> messages_;
};

}  // namespace brushwork::tools
