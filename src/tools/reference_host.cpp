#include "tools/reference_host.h"

#include <cstdio>
#include <utility>

#include "brushwork/host_call_table.h"
#include "tools/reference_shape.h"

namespace brushwork::tools {
namespace {

// The table's functions know no object: this is the one they mean.
ReferenceHost* host = nullptr;

ReferenceSurface* surfaceOf(void* handle) {
    return static_cast<ReferenceSurface*>(handle);
}

}  // namespace

ReferenceHost::ReferenceHost(ReferenceTimers::Pace pace, std::int32_t debugLevel)
    : timers_(pace), debugLevel_(debugLevel) {
    host = this;
    clearHostCallTable();
    serveCanvases();
    serveDisplay();
    serveWords();
    serveCurves(hostCallTable());
    serveShapes(hostCallTable());
    HostCallTable& table = hostCallTable();
    table.startTimer = [](std::int32_t milliseconds, HostTimerCallback callback, void* argument) {
        return host->timers_.start(milliseconds, callback, argument);
    };
    table.stopTimer = [](HostTimerId timer) { host->timers_.stop(timer); };
}

ReferenceHost::~ReferenceHost() {
    clearHostCallTable();
    host = nullptr;
}

std::vector<std::string> ReferenceHost::takeMessages() {
    return std::exchange(messages_, {});
}

// The two values are width and height; without them the canvas keeps pixels of the engine's.
void ReferenceHost::serveCanvases() {
    HostCallTable& table = hostCallTable();
    table.createCanvas = [](std::intptr_t width, std::intptr_t height) -> HostCanvas {
        if (width < 1 || height < 1 || width > ReferenceSurface::mostPixels ||
            height > ReferenceSurface::mostPixels)
            return nullptr;
        host->surfaces_.push_back(std::make_unique<ReferenceSurface>(
            static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)));
        return host->surfaces_.back().get();
    };
    table.canvasSurface = [](HostCanvas canvas) -> HostSurface { return canvas; };
    table.surfaceSize = [](HostSurface surface, std::int32_t* width, std::int32_t* height) {
        *width = surfaceOf(surface)->width();
        *height = surfaceOf(surface)->height();
    };
    table.surfacePixels = [](HostSurface surface) -> void* { return surfaceOf(surface)->pixels(); };
    table.surfaceIsTransparent = [](HostSurface) { return false; };
    table.screenSize = [](std::int32_t* width, std::int32_t* height) {
        *width = 1920;
        *height = 1080;
    };
    table.documentValid = [](std::int32_t) { return true; };
}

void ReferenceHost::serveDisplay() {
    HostCallTable& table = hostCallTable();
    table.presentSurface = [](HostSurface surface) {
        ++host->figures_.presents;
        if (surface) surfaceOf(surface)->show();
    };
    table.requestRepaint = [](HostCanvas) { ++host->figures_.repaints; };
    table.flushCanvas = [](HostCanvas) { ++host->figures_.flushes; };
    table.layerListChanged = [](bool) { ++host->figures_.layerListChanges; };
    table.uiRefresh = [] { ++host->figures_.refreshes; };
}

void ReferenceHost::serveWords() {
    HostCallTable& table = hostCallTable();
    table.showMessage = [](const char* text) { host->messages_.emplace_back(text ? text : ""); };
    table.reportError = [](std::int32_t, std::int32_t, std::int32_t, char*,
                           const char* text) -> std::int32_t {
        host->messages_.emplace_back(text ? text : "");
        return 0;
    };
    table.debugLevel = []() -> std::int32_t { return host->debugLevel_; };
}

}  // namespace brushwork::tools
