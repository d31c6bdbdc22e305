// ReferenceTimers: the host's timers, on a time that stands still while the host works.
//
//     const HostTimerId timer = timers.start(40, rest, stroke);
//     timers.wait(100);          // 100 ms pass, and what rings in them is delivered
//
// Time passes in wait alone, so that one run rings like the other however fast the machine is.
// Timers are one-shot; a callback may start and stop others.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <utility>

#include "brushwork/host_call_table.h"

namespace brushwork::tools {

class ReferenceTimers {
  public:
    enum class Pace {
        Real,       // a millisecond of wait takes a millisecond
        Immediate,  // time passes at once
    };
    explicit ReferenceTimers(Pace pace) : pace_(pace) {}

    HostTimerId start(std::int32_t milliseconds, HostTimerCallback callback, void* argument);
    void stop(HostTimerId timer);
    void wait(std::int64_t milliseconds);

    // Milliseconds that have passed.
    [[nodiscard]] std::int64_t now() const { return now_; }
    [[nodiscard]] std::size_t pending() const { return due_.size(); }
    [[nodiscard]] std::uint64_t rung() const { return rung_; }

  private:
    struct Timer {
        HostTimerCallback callback;
        void* argument;
    };
    void passUntil(std::int64_t moment);

    Pace pace_;
    std::int64_t now_ = 0;
    HostTimerId nextId_ = 1;
    std::uint64_t rung_ = 0;
    std::map<std::pair<std::int64_t, HostTimerId>, Timer> due_;  // by moment, then by age
};

}  // namespace brushwork::tools
