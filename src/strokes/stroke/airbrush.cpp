#include "strokes/stroke/airbrush.h"

#include <utility>

#include "foundation/host/host_calls.h"
#include "strokes/path/random_part.h"

namespace brushwork::npc {
namespace {

constexpr float swellPerTick = 0.005f;  // pixels

}  // namespace

Airbrush::Airbrush(std::function<void()> tick) : tick_(std::move(tick)) {}

Airbrush::~Airbrush() {
    stop();
}

void Airbrush::restart() {
    if (holdDelay < 1) return;
    stop();
    timer_ = hostStartTimer(holdDelay, fired, this);
}

void Airbrush::stop() {
    if (timer_) hostStopTimer(*timer_);
    timer_.reset();
    repeating_ = false;
}

StampPoint Airbrush::scattered(const StampPoint& last) {
    StampPoint point = last;
    point.x += randomPart() - 0.5f;
    point.y += randomPart() - 0.5f;
    point.radius += static_cast<float>(repeatCount_) * swellPerTick;
    ++repeatCount_;
    return point;
}

void Airbrush::fired(void* self) {
    static_cast<Airbrush*>(self)->onTimer();
}

// The host's timers fire once. The next one is started before the tick, which may be the last thing
// this object sees.
void Airbrush::onTimer() {
    if (!timer_) return;
    const bool ticks = std::exchange(repeating_, true);
    timer_.reset();
    if (repeatInterval > 0) timer_ = hostStartTimer(repeatInterval, fired, this);
    if (ticks) tick_();
}

}  // namespace brushwork::npc
