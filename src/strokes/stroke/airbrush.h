// Airbrush: paint that goes on flowing while the pen rests.
//
//     Airbrush airbrush([&] { renderer.addPointNoSmoothing(airbrush.scattered(lastPoint)); });
//     airbrush.restart();      // after each point of the pen
//     airbrush.stop();         // at the end of the stroke
//
// The timers are the host's, which calls back on the stroke's thread.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "brushwork/host_call_table.h"
#include "brushwork/stamp_point.h"

namespace brushwork::npc {

class Airbrush {
  public:
    // Called for each tick; may stop or destroy the airbrush.
    explicit Airbrush(std::function<void()> tick);
    Airbrush(const Airbrush&) = delete;
    Airbrush& operator=(const Airbrush&) = delete;
    ~Airbrush();

    // Waits anew for the pen to rest. Nothing starts with a delay below 1.
    void restart();
    void stop();
    [[nodiscard]] bool isRunning() const { return timer_.has_value(); }

    // A real point came: the next stamps swell from its size.
    void resetCount() { repeatCount_ = 0; }
    [[nodiscard]] std::uint32_t repeatCount() const { return repeatCount_; }
    // The point of the next tick: up to half a pixel beside the last one, and a trace larger with
    // every tick.
    [[nodiscard]] StampPoint scattered(const StampPoint& last);

    // Milliseconds, until the first tick and between two; no ticks without an interval.
    std::int32_t holdDelay = 40;
    std::int32_t repeatInterval = 10;

  private:
    static void fired(void* self);
    void onTimer();

    std::function<void()> tick_;
    std::optional<HostTimerId> timer_;
    bool repeating_ = false;
    std::uint32_t repeatCount_ = 0;
};

}  // namespace brushwork::npc
