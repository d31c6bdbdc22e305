#include "foundation/host/host_calls.h"

namespace brushwork {

std::int32_t hostDebugLevel() noexcept {
    const auto call = hostCallTable().debugLevel;
    return call ? call() : 0;
}

std::optional<HostTimerId> hostStartTimer(std::int32_t milliseconds, HostTimerCallback callback,
                                          void* argument) {
    const auto call = hostCallTable().startTimer;
    if (!call) return std::nullopt;
    return call(milliseconds, callback, argument);
}

void hostStopTimer(HostTimerId timer) {
    if (const auto call = hostCallTable().stopTimer) call(timer);
}

bool hostCurveIsClosed(HostCurve curve) {
    const auto call = hostCallTable().curveIsClosed;
    return curve && call && call(curve);
}

double hostCurveLength(HostCurve curve) {
    const auto call = hostCallTable().curveLength;
    return curve && call ? call(curve) : 0.0;
}

double hostCurveNearest(HostCurve curve, double x, double y) {
    const auto call = hostCallTable().curveNearest;
    return curve && call ? call(curve, x, y) : 0.0;
}

bool hostCurvePoint(HostCurve curve, double arc, double* x, double* y) {
    const auto call = hostCallTable().curvePoint;
    return curve && call && call(curve, arc, x, y);
}

bool hostCurveDirection(HostCurve curve, double arc, double* x, double* y) {
    const auto call = hostCallTable().curveDirection;
    return curve && call && call(curve, arc, x, y);
}

void hostMapCurve(HostCurve curve, const double* sixFactors) {
    const auto call = hostCallTable().mapCurve;
    if (curve && call) call(curve, sixFactors);
}

void hostReleaseCurve(HostCurve curve) {
    const auto call = hostCallTable().releaseCurve;
    if (curve && call) call(curve);
}

bool hostCurveBounds(HostCurve curve, double* low2, double* high2) {
    const auto call = hostCallTable().curveBounds;
    return curve && call && call(curve, low2, high2);
}

std::vector<HostSegment> hostTessellateCurve(HostCurve curve, double tolerance) {
    const auto call = hostCallTable().tessellateCurve;
    if (!curve || !call) return {};
    std::int32_t count = 0;
    HostSegment* const segments = call(curve, tolerance, &count);
    if (!segments) return {};
    std::vector<HostSegment> copy(segments, segments + (count > 0 ? count : 0));
    if (const auto give = hostCallTable().freeSegments) give(segments);
    return copy;
}

HostCurve hostShapeCurve(HostShape shape, std::int32_t index) {
    const auto call = hostCallTable().shapeCurve;
    return shape && call ? call(shape, index) : nullptr;
}

void* hostShapeDataCreated(void* hostData) {
    const auto call = hostCallTable().shapeDataCreated;
    return hostData && call ? call(hostData, 0) : nullptr;
}

const std::uint8_t* hostShapeStamp(HostShape shape, std::int32_t* width, std::int32_t* height) {
    *width = *height = 0;
    const auto call = hostCallTable().shapeStamp;
    const std::uint8_t* const tip = shape && call ? call(shape, width, height) : nullptr;
    if (!tip || *width < 1 || *height < 1) *width = *height = 0;
    return *width > 0 ? tip : nullptr;
}

}  // namespace brushwork
