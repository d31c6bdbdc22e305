#include "image/memory/page_reclaimer.h"

#include <atomic>

namespace brushwork {
namespace {

std::atomic<PageReclaimer*> registered{nullptr};

}  // namespace

PageReclaimer* pageReclaimer() noexcept {
    return registered.load();
}

void setPageReclaimer(PageReclaimer* reclaimer) noexcept {
    registered = reclaimer;
}

}  // namespace brushwork
