// ilLink: a node of the dependency graph that every image is.
//
// A link has parents, which it reads from, and children, which read from it. A change marks the
// link and everything below it as stale; each stale link brings itself up to date in reset(), which
// every getter of a derived class calls first. So a change costs one walk down the graph, and
// recomputing happens once, when somebody asks.
//
// To add a class: give it a ClassDescriptor with its base's, override className() and
// classDescriptor(), list the attributes that a client may set in allowedFlags_, and recompute in
// update(), which ends by calling the base's.
//
// A graph must stay free of cycles. Links are not locked: a graph belongs to the document's thread.
#pragma once

#include <cstdint>

#include "image/chain/class_descriptor.h"
#include "image/chain/link_list.h"
#include "image/chain/link_trace.h"

namespace brushwork {

// Attributes, as bits of the three masks. setAltered takes the two modifiers beside them.
enum LinkFlag : std::uint32_t {
    AlteredPixels = 0x1,  // or parents
    AlteredEnabled = 0x2,
    AlteredDataType = 0x4,
    AlteredOrder = 0x8,
    AlteredPageSize = 0x10,
    AlteredSizeX = 0x20,
    AlteredSizeY = 0x40,
    AlteredChannels = 0x80,
    AlteredSizeZ = 0x100,
    AlteredSize = 0x1E0,  // all four sizes
    AlteredCoordSpace = 0x200,
    AlteredColorModel = 0x400,
    AlteredMinValue = 0x800,
    AlteredMaxValue = 0x1000,
    AlteredScale = 0x2000,
    AlteredFill = 0x4000,
    AlteredStorageMode = 0x8000,
    AlteredBorder = 0x20000,

    KeepFromChildren = 0x20000000,  // modifier: children are not told
    NotifyOnly = 0x40000000,        // modifier: recorded, but the link doesn't become stale

    // What altered() and allowedFlags() hold beside attributes.
    AttributeBits = 0x3FFFFFFF,
    ToldChildren = 0x40000000,  // of altered: the change has travelled on
    Resetting = 0x80000000,     // of altered: reset is running
    TraceMark = 0x80000000,     // of allowedFlags: see markForTrace
};

// Results of operations; also kept in status().
enum ImageStatus : std::int32_t {
    ImageOk = 0,
    ImageNotOneParent = 14,
    ImageUnusable = 18,       // a buffer or parent is missing or can't be used
    ImageColorMismatch = 19,  // colour model and explicitly set channel count disagree
    ImageNoFill = 20,
    ImageClipped = 24,
    ImageNoSuchParent = 25,
    ImageNotAllowed = 29,
};

class ilLink {
  public:
    static const ClassDescriptor descriptor;

    ilLink(const ilLink&) = delete;
    ilLink& operator=(const ilLink&) = delete;

    // Slots, in this order in every class.
    // 1-based depth of that class above this one's (1: the class itself), 0 if it isn't among them.
    [[nodiscard]] virtual std::int32_t isKindOf(const ClassDescriptor& wanted) const;
    // For an index of 0 or below the class's own descriptor, otherwise null.
    [[nodiscard]] virtual const ClassDescriptor* classAt(std::int32_t index) const;

  protected:
    virtual ~ilLink();
    virtual void update();          // recompute from the parents; ilLink's does nothing
    virtual void onFirstAltered();  // an up-to-date link has become stale

  public:
    [[nodiscard]] virtual const char* className() const;
    [[nodiscard]] virtual const ClassDescriptor& classDescriptor() const;

    // Holders, as Ref counts them. The last release destroys the link; a link that is being
    // destroyed may be borrowed by code that it calls.
    void addRef() const { ++refCount_; }
    void release() const;
    [[nodiscard]] std::uint32_t refCount() const { return refCount_; }

    // Brings the link up to date, parents first, and answers status().
    std::int32_t reset();
    [[nodiscard]] std::int32_t status() const { return status_; }
    void clearStatus() { status_ = ImageOk; }

    // Marks attributes (LinkFlag bits, modifiers too) as changed and as set by the client; answers
    // 0, or ImageNotAllowed with nothing changed if one of them isn't the client's to set. Children
    // learn of any change as AlteredPixels, once until the next reset.
    std::int32_t setAltered(std::uint32_t mask);
    // Pending attributes, and the bits ToldChildren and Resetting.
    [[nodiscard]] std::uint32_t altered() const { return altered_; }
    [[nodiscard]] std::uint32_t setFlags() const { return setFlags_; }
    [[nodiscard]] std::uint32_t allowedFlags() const { return allowedFlags_; }
    // Has the next reset of a traced link report code 'i'.
    void markForTrace() { allowedFlags_ |= TraceMark; }
    void setTraced(bool traced) { traced_ = traced; }
    [[nodiscard]] bool isTraced() const { return traced_; }

    // Parents. The link holds one reference on each. Null is a parent too: it keeps a slot.
    // An added parent fills no slot: it counts for height and staleness only.
    std::int32_t addParent(ilLink* parent);
    // Replaces what fills the slot. ImageNoSuchParent for a negative one.
    std::int32_t setParent(ilLink* parent, std::int32_t slot);
    // ImageNoSuchParent if there is none.
    std::int32_t removeParent(ilLink* parent);
    std::int32_t removeParentSlot(std::int32_t slot);
    // The parent in that slot as this link sees it: looked up through disabled parents. Null if
    // there is none.
    [[nodiscard]] ilLink* parent(std::int32_t slot = 0) const;
    [[nodiscard]] std::int32_t maxParentSlot() const;  // -1 if none
    [[nodiscard]] std::int32_t parentCount() const { return maxParentSlot() + 1; }
    [[nodiscard]] std::int32_t childCount() const { return children_.count(); }
    [[nodiscard]] ilLink* child(std::int32_t index);  // null outside 0 to childCount() - 1
    // 0 without parents, else one more than the tallest parent.
    [[nodiscard]] std::int32_t chainHeight();

    // While disabled a link is transparent: its children see its own parent in the bypass slot.
    std::int32_t setEnabled(bool enabled);
    [[nodiscard]] bool isEnabled() const { return enabled_; }
    void setBypassParent(std::uint32_t slot);
    [[nodiscard]] std::uint32_t bypassParent() const { return bypassParent_; }
    // A link without bypass looks at its parents even while they are disabled, and isn't told when
    // one of them is enabled or disabled.
    void setNoBypass(bool noBypass) { noBypass_ = noBypass; }
    [[nodiscard]] bool noBypass() const { return noBypass_; }

    void setLinkId(std::int32_t id) { linkId_ = id; }
    [[nodiscard]] std::int32_t linkId() const { return linkId_; }
    void setTraceFlags(std::uint32_t flags) { registration_.setTraceFlags(flags); }
    [[nodiscard]] std::uint32_t traceFlags() const { return registration_.traceFlags(); }

  protected:
    ilLink();

    void setStatus(std::int32_t status) { status_ = status; }
    [[nodiscard]] bool isSetByClient(std::uint32_t flag) const { return (setFlags_ & flag) != 0; }
    [[nodiscard]] ilLink* resolve(ilLink* parent) const;
    [[nodiscard]] ilLink* unresolvedParent(std::int32_t slot) const;

    std::uint32_t altered_ = 0;
    std::uint32_t setFlags_ = 0;
    std::uint32_t allowedFlags_ = AlteredPixels | AlteredEnabled;

  private:
    static constexpr std::uint32_t noSlot = 0xFFFFFFFF;
    static constexpr std::uint32_t dying = 0x40000000;

    void adoptChild(ilLink* parent, std::uint32_t slot);
    void leaveParent(ilLink* parent);
    void forgetParent(const ilLink* parent);
    std::int32_t dropParent(LinkRecord* record);
    [[nodiscard]] bool isTracingChanges() const {
        return traced_ && (traceFlags() & TraceChanges) != 0;
    }

    LinkRegistration registration_;
    std::int32_t status_ = ImageOk;
    std::int32_t height_ = 0;
    LinkList parents_;
    LinkList children_;
    std::uint32_t bypassParent_ = 0;
    bool enabled_ = true;
    bool noBypass_ = false;
    bool traced_ = false;
    std::int32_t linkId_ = -1;
    mutable std::uint32_t refCount_ = 0;
};

}  // namespace brushwork
