// The step rule: how far it is from one stamp to the next.
#pragma once

namespace brushwork {

// The step never gets shorter than this, in pixels.
inline constexpr float shortestStep = 0.125f;

// `reach`: radius * scaleY * scaleY / scaleX of the stamp before. The step is 30 per cent of it
// from 20 pixels up and a bit under 40 per cent of a small one, times `spacingScale`.
//
// With a spacingJitter above 0 the answer is drawn at random, as a part of the step to both sides.
// A `step` other than 0 then stays: what was drawn holds until it was walked, however often the
// pen's points don't reach so far.
[[nodiscard]] float nextStep(float step, float reach, float spacingScale, float spacingJitter);

}  // namespace brushwork
