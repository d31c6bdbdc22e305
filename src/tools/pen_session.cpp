#include "tools/pen_session.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <string_view>
#include <utility>

namespace brushwork::tools {
namespace {

constexpr std::size_t mostEvents = 10'000'000;
constexpr double farthest = 1e6;  // pixels

// The next number of a line; false at its end and for anything else.
bool takeNumber(std::string_view& line, double& number) {
    const auto start = line.find_first_not_of(" \t\r");
    if (start == std::string_view::npos) return false;
    line.remove_prefix(start);
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (error != std::errc() || !std::isfinite(number)) return false;
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    return true;
}

const char* problemWith(std::string_view line, double lastTime, PenEvent& event) {
    double x = 0.0, y = 0.0, pressure = 0.0;
    if (!takeNumber(line, event.seconds) || !takeNumber(line, x) || !takeNumber(line, y) ||
        !takeNumber(line, pressure))
        return "four numbers are wanted: seconds, x, y, pressure";
    if (line.find_first_not_of(" \t\r") != std::string_view::npos)
        return "there is more than four numbers";
    if (event.seconds < lastTime) return "time goes backward";
    if (std::abs(x) > farthest || std::abs(y) > farthest) return "the place is too far out";
    if (pressure < 0.0 || pressure > 1.0) return "a pressure lies between 0 and 1";
    event.x = static_cast<float>(x);
    event.y = static_cast<float>(y);
    event.pressure = static_cast<float>(pressure);
    return nullptr;
}

}  // namespace

std::vector<std::vector<PenEvent>> PenSession::strokes() const {
    std::vector<std::vector<PenEvent>> all;
    bool down = false;
    for (const PenEvent& event : events) {
        if (event.pressure > 0.0f && !down) all.emplace_back();
        down = event.pressure > 0.0f;
        if (down) all.back().push_back(event);
    }
    return all;
}

float PenSession::hardestPress() const {
    float hardest = 0.0f;
    for (const PenEvent& event : events) hardest = std::max(hardest, event.pressure);
    return hardest;
}

bool readPenSession(const std::string& path, PenSession& session, PenFault& fault) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        fault = {0, "can't be read"};
        return false;
    }
    PenSession read;
    std::string line;
    std::int32_t number = 0;
    while (std::getline(file, line)) {
        ++number;
        if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
        PenEvent event;
        const double lastTime = read.events.empty() ? -1e300 : read.events.back().seconds;
        if (const char* const cause = problemWith(line, lastTime, event)) {
            fault = {number, cause};
            return false;
        }
        read.events.push_back(event);
        if (read.events.size() > mostEvents) {
            fault = {number, "there are more than ten million events"};
            return false;
        }
    }
    if (file.bad() || read.events.empty()) {
        fault = {0, file.bad() ? "can't be read" : "holds no events"};
        return false;
    }
    session = std::move(read);
    return true;
}

}  // namespace brushwork::tools
