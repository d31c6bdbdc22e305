// Strokes to paint in tests: the recorded session, if BRUSHWORK_CORPUS names its directory, and a
// drawn one.
#pragma once

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

#include "brushwork/stamp_point.h"

namespace brushwork::test {

using PenStroke = std::vector<StrokePointData>;

// A loop, a corner and a straight line, swelling and fading; about 200 pixels wide.
inline std::vector<PenStroke> drawnStrokes() {
    PenStroke loop, corner;
    for (int n = 0; n <= 24; ++n) {
        const float turn = 0.3f * static_cast<float>(n);
        loop.emplace_back(130.0f + 60.0f * std::cos(turn) + 2.0f * turn,
                          128.0f + 55.0f * std::sin(turn),
                          0.15f + 0.8f * std::fabs(std::sin(0.4f * turn)));
    }
    for (int n = 0; n <= 8; ++n) {
        const float part = 0.125f * static_cast<float>(n);
        corner.emplace_back(40.0f + 200.0f * part, n < 5 ? 40.0f + 30.0f * part : 200.0f * part,
                            0.9f - 0.5f * part);
    }
    return {loop, corner, {{250.0f, 250.0f, 0.6f}}};
}

// From the first event with pressure to the next without; empty without the corpus. `most` strokes
// at the most.
inline std::vector<PenStroke> recordedStrokes(std::size_t most) {
    std::vector<PenStroke> strokes;
    const char* corpus = std::getenv("BRUSHWORK_CORPUS");
    if (!corpus) return strokes;
    std::ifstream file(std::filesystem::path(corpus) / "pen-events" / "painting30sec.dat");
    float time = 0.0f, x = 0.0f, y = 0.0f, pressure = 0.0f;
    bool down = false;
    while (file >> time >> x >> y >> pressure) {
        if (pressure > 0.0f) {
            if (!down && strokes.size() == most) break;
            if (!down) strokes.emplace_back();
            strokes.back().emplace_back(x, y, pressure);
        }
        down = pressure > 0.0f;
    }
    return strokes;
}

}  // namespace brushwork::test
