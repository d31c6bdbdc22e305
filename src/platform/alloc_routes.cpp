#include "platform/alloc_routes.h"

#include <atomic>
#include <cstdlib>

namespace brushwork::platform {
namespace {

void* runtimeAllocate(std::size_t bytes) {
    return std::malloc(bytes);
}
void* runtimeReallocate(void* pointer, std::size_t bytes) {
    return std::realloc(pointer, bytes);
}
void runtimeRelease(void* pointer) {
    std::free(pointer);
}

std::atomic<void* (*)(std::size_t)> allocateRoute{&runtimeAllocate};
std::atomic<void* (*)(void*, std::size_t)> reallocateRoute{&runtimeReallocate};
std::atomic<void (*)(void*)> releaseRoute{&runtimeRelease};

}  // namespace

AllocRoutes runtimeRoutes() noexcept {
    return {&runtimeAllocate, &runtimeReallocate, &runtimeRelease};
}

AllocRoutes allocRoutes() noexcept {
    return {allocateRoute, reallocateRoute, releaseRoute};
}

void setAllocRoutes(const AllocRoutes& routes) noexcept {
    // The release route first: whoever gets memory by the new route can already give it back.
    releaseRoute = routes.release;
    reallocateRoute = routes.reallocate;
    allocateRoute = routes.allocate;
}

void* routedAllocate(std::size_t bytes) {
    return allocateRoute.load()(bytes);
}

void* routedReallocate(void* pointer, std::size_t bytes) {
    return reallocateRoute.load()(pointer, bytes);
}

void routedRelease(void* pointer) {
    releaseRoute.load()(pointer);
}

}  // namespace brushwork::platform
