// The registry of live image links and the process-wide trace of their changes and ends.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace brushwork {

class ilLink;

enum LinkTraceFlag : std::uint32_t {
    TraceDestruction = 0x1,
    TraceChanges = 0x2,
};

// Codes: 'a' altered, 'i' first update of a marked link, 'd' destroyed.
using LinkTraceCallback = void (*)(ilLink* link, char code, std::intptr_t context);

// With no callback nothing is reported. The callback runs on the thread of the change; at 'd' the
// link has lost its parents and children and all that its derived class held.
void setLinkTraceCallback(LinkTraceCallback callback, std::intptr_t context);
void reportLink(ilLink* link, char code);

// The trace flags that a new link starts with; on request every live link takes them too.
enum class TraceScope { NewLinks, AllLinks };
void setLinkTraceMask(std::uint32_t mask, TraceScope scope = TraceScope::NewLinks);
[[nodiscard]] std::uint32_t linkTraceMask();

// A link's place in the registry, held by the link for as long as it lives. Links may be made and
// ended on any thread.
class LinkRegistration {
  public:
    explicit LinkRegistration(ilLink& link);
    LinkRegistration(const LinkRegistration&) = delete;
    LinkRegistration& operator=(const LinkRegistration&) = delete;
    ~LinkRegistration();

    // LinkTraceFlag bits; at first the process-wide mask.
    [[nodiscard]] std::uint32_t traceFlags() const {
        return traceFlags_.load(std::memory_order_relaxed);
    }
    void setTraceFlags(std::uint32_t flags) { traceFlags_.store(flags, std::memory_order_relaxed); }

  private:
    friend struct LinkRegistry;

    ilLink* link_;
    LinkRegistration* previous_ = nullptr;
    LinkRegistration* next_ = nullptr;
    std::atomic<std::uint32_t> traceFlags_{0};
};

// Every link that exists, in no particular order; for leak checks and dumps.
[[nodiscard]] std::vector<ilLink*> liveLinks();
[[nodiscard]] std::size_t liveLinkCount();

}  // namespace brushwork
