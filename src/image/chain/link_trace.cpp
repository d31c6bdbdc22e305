#include "image/chain/link_trace.h"

#include <mutex>

namespace brushwork {

struct LinkRegistry {
    std::mutex mutex;  // guards all below; nothing is called under it
    LinkRegistration* newest = nullptr;
    std::size_t count = 0;
    std::uint32_t mask = 0;
    LinkTraceCallback callback = nullptr;
    std::intptr_t context = 0;

    static LinkRegistry& instance() {
        static LinkRegistry registry;
        return registry;
    }

    void enter(LinkRegistration& entry) {
        const std::lock_guard guard(mutex);
        entry.setTraceFlags(mask);
        entry.next_ = newest;
        if (newest) newest->previous_ = &entry;
        newest = &entry;
        ++count;
    }

    void leave(LinkRegistration& entry) {
        const std::lock_guard guard(mutex);
        (entry.previous_ ? entry.previous_->next_ : newest) = entry.next_;
        if (entry.next_) entry.next_->previous_ = entry.previous_;
        --count;
    }

    void setMask(std::uint32_t flags, TraceScope scope) {
        const std::lock_guard guard(mutex);
        mask = flags;
        if (scope == TraceScope::NewLinks) return;
        for (auto* entry = newest; entry; entry = entry->next_) entry->setTraceFlags(flags);
    }

    std::vector<ilLink*> links() {
        const std::lock_guard guard(mutex);
        std::vector<ilLink*> result;
        result.reserve(count);
        for (auto* entry = newest; entry; entry = entry->next_) result.push_back(entry->link_);
        return result;
    }
};

LinkRegistration::LinkRegistration(ilLink& link) : link_(&link) {
    LinkRegistry::instance().enter(*this);
}

LinkRegistration::~LinkRegistration() {
    LinkRegistry::instance().leave(*this);
}

void setLinkTraceCallback(LinkTraceCallback callback, std::intptr_t context) {
    LinkRegistry& registry = LinkRegistry::instance();
    const std::lock_guard guard(registry.mutex);
    registry.callback = callback;
    registry.context = context;
}

void reportLink(ilLink* link, char code) {
    LinkRegistry& registry = LinkRegistry::instance();
    std::unique_lock lock(registry.mutex);
    const LinkTraceCallback callback = registry.callback;
    const std::intptr_t context = registry.context;
    lock.unlock();
    if (callback) callback(link, code, context);
}

void setLinkTraceMask(std::uint32_t mask, TraceScope scope) {
    LinkRegistry::instance().setMask(mask, scope);
}

std::uint32_t linkTraceMask() {
    LinkRegistry& registry = LinkRegistry::instance();
    const std::lock_guard guard(registry.mutex);
    return registry.mask;
}

std::vector<ilLink*> liveLinks() {
    return LinkRegistry::instance().links();
}

std::size_t liveLinkCount() {
    LinkRegistry& registry = LinkRegistry::instance();
    const std::lock_guard guard(registry.mutex);
    return registry.count;
}

}  // namespace brushwork
