#include "geometry/ag_shared.h"

#include <atomic>

namespace brushwork::znAG {
namespace {

std::atomic<std::int32_t> live{0};

}  // namespace

AGShared::AGShared(AgObjectPtr object) : object_(std::move(object)) {
    live.fetch_add(1, std::memory_order_relaxed);
}

AGShared::AGShared(AgCurvePtr curve)
    : AGShared(AgObjectPtr(curve.release(), AgFree{agCurveClass.operations.free})) {}

AGShared::AGShared(AgSplinePtr spline)
    : AGShared(AgObjectPtr(spline.release(), AgFree{agSplineClass.operations.free})) {}

AGShared::~AGShared() {
    live.fetch_sub(1, std::memory_order_relaxed);
}

std::int32_t AGShared::liveCount() {
    return live.load(std::memory_order_relaxed);
}

}  // namespace brushwork::znAG
