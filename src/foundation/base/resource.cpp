#include "brushwork/resource.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

namespace brushwork {
namespace {

std::int32_t deferring = 0;

using DeferredList = std::vector<Resource*>;

// Made on the first use. Never destroyed: objects are released while the process ends.
DeferredList& deferredList() {
    static DeferredList& list = *std::make_unique<DeferredList>().release();
    return list;
}

std::uint32_t nextObjectId() {
    static std::atomic<std::uint32_t> last{0};
    return ++last;
}

}  // namespace

Resource::Resource() : objectId_(nextObjectId()) {}

Resource::~Resource() {
    // Somebody may have destroyed it while it waited; a flush under way keeps its place.
    DeferredList& list = deferredList();
    std::replace(list.begin(), list.end(), this, static_cast<Resource*>(nullptr));
}

void Resource::ref() {
    ++count_;
}

// True when no holder is left.
bool Resource::dropOne() {
    if (count_ != 0) --count_;
    return count_ == 0;
}

void Resource::unref() {
    if (!dropOne()) return;
    aboutToRelease();
    delete this;
}

std::uint32_t Resource::refCount() const {
    return count_;
}

void Resource::unrefDeferred() {
    if (!dropOne()) return;
    aboutToRelease();
    if (deferring == 0) {
        delete this;
        return;
    }
    DeferredList& list = deferredList();
    if (std::find(list.begin(), list.end(), this) == list.end()) list.push_back(this);
}

void Resource::aboutToRelease() {}

void Resource::refForward() {
    ref();
}

void Resource::unrefForward() {
    unref();
}

std::uint32_t Resource::objectId() const {
    return objectId_;
}

std::int32_t Resource::setDeferredRelease(std::int32_t value) {
    const std::int32_t old = deferring;
    if (value == old) return old;
    flushDeferred();
    deferring = value;
    return old;
}

std::int32_t Resource::deferredRelease() {
    return deferring;
}

void Resource::flushDeferred() {
    const std::int32_t old = deferring;
    deferring = 0;
    DeferredList& list = deferredList();
    for (std::size_t i = 0; i < list.size(); ++i) {
        Resource* const waiting = list[i];
        list[i] = nullptr;
        if (waiting && waiting->count_ == 0) delete waiting;
    }
    list.clear();
    deferring = old;
}

}  // namespace brushwork
