// One function for each host role that the engine uses: it bears the empty slot.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "brushwork/host_call_table.h"

namespace brushwork {

// What the host asks to have logged; 0 when it doesn't say. Any thread.
[[nodiscard]] std::int32_t hostDebugLevel() noexcept;

// Calls back once, after so many milliseconds, on the stroke's thread. Empty: no timer runs.
[[nodiscard]] std::optional<HostTimerId> hostStartTimer(std::int32_t milliseconds,
                                                        HostTimerCallback callback, void* argument);
void hostStopTimer(HostTimerId timer);

// About a curve, which may be null: then, as with an empty slot, the answer is empty and nothing
// happens. Numbers are handed on as the host gave them.
[[nodiscard]] bool hostCurveIsClosed(HostCurve curve);
[[nodiscard]] double hostCurveLength(HostCurve curve);
[[nodiscard]] double hostCurveNearest(HostCurve curve, double x, double y);
[[nodiscard]] bool hostCurvePoint(HostCurve curve, double arc, double* x, double* y);
[[nodiscard]] bool hostCurveDirection(HostCurve curve, double arc, double* x, double* y);
void hostMapCurve(HostCurve curve, const double* sixFactors);
void hostReleaseCurve(HostCurve curve);
[[nodiscard]] bool hostCurveBounds(HostCurve curve, double* low2, double* high2);
[[nodiscard]] std::vector<HostSegment> hostTessellateCurve(HostCurve curve, double tolerance);

// About a shape, which may be null.
[[nodiscard]] HostCurve hostShapeCurve(HostShape shape, std::int32_t index);
// What the host keeps with a new shape; null for data of null.
[[nodiscard]] void* hostShapeDataCreated(void* hostData);
// The host's memory; null, and sizes of 0, without a tip.
[[nodiscard]] const std::uint8_t* hostShapeStamp(HostShape shape, std::int32_t* width,
                                                 std::int32_t* height);

}  // namespace brushwork
