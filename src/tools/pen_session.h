// PenSession: a recorded pen: lines of seconds, x, y and pressure.
//
// Pressure 0 is a pen in the air: strokes run from the first pressure above it to the next 0. The
// recording's y goes downward, as tablets send it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace brushwork::tools {

struct PenEvent {
    double seconds = 0.0;
    float x = 0.0f, y = 0.0f;  // pixels of the recording
    float pressure = 0.0f;     // 0 to 1
};

struct PenSession {
    std::vector<PenEvent> events;

    // Events with pressure, stroke by stroke.
    [[nodiscard]] std::vector<std::vector<PenEvent>> strokes() const;
    [[nodiscard]] float hardestPress() const;
};

// Why a file was refused; line 0 for the file as a whole.
struct PenFault {
    std::int32_t line = 0;
    std::string cause;
};

// False, with the fault, and the session as it was.
[[nodiscard]] bool readPenSession(const std::string& path, PenSession& session, PenFault& fault);

}  // namespace brushwork::tools
