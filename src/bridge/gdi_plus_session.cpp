#include "bridge/gdi_plus_session.h"

#include <atomic>
#include <cstdint>

#include "platform/imaging.h"

namespace brushwork {

namespace {

std::atomic<std::int32_t> sessions{0};
std::uintptr_t platformToken = 0;

}  // namespace

bool GdiPlusSession::start() {
    if (sessions.load() == 0 &&
        platform::imagingService().start(platformToken) != platform::ImagingStatus::Ok)
        return false;
    sessions.fetch_add(1);
    return true;
}

void GdiPlusSession::stop() {
    if (sessions.fetch_sub(1) != 1) return;
    platform::imagingService().stop(platformToken);
    platformToken = 0;
}

}  // namespace brushwork
