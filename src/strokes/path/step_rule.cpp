#include "strokes/path/step_rule.h"

#include <algorithm>

#include "strokes/path/random_part.h"

namespace brushwork {

namespace {

constexpr float smallReach = 1.05f;
constexpr float largeReach = 20.0f;

float percentOf(float reach) {
    if (reach <= smallReach) return 75.0f;
    if (reach >= largeReach) return 30.0f;
    return 75.0f - (reach - smallReach) * 2.37467f;
}

}  // namespace

float nextStep(float step, float reach, float spacingScale, float spacingJitter) {
    if (spacingJitter > 0.0f && step != 0.0f) return step;
    float percent = spacingScale * percentOf(reach);
    const float base = std::max(reach, smallReach);
    if (base < 4.0f)
        percent = percent * 0.5f;
    else if (base < largeReach)
        percent = percent * ((base - 4.0f) * 0.03125f + 0.5f);
    step = percent * base * 0.01f;
    if (spacingJitter > 0.0f) step -= randomBothWays() * (step * spacingJitter);
    // Also where it isn't a number.
    return step >= shortestStep ? step : shortestStep;
}

}  // namespace brushwork
