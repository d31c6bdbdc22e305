#include "image/chain/il_link.h"

#include <algorithm>

namespace brushwork {

const ClassDescriptor ilLink::descriptor = {"Link", nullptr};

ilLink::ilLink() : registration_(*this) {}

ilLink::~ilLink() {
    while (LinkRecord* const record = children_.first()) {
        ilLink* const heir = record->target;
        children_.remove(record);
        heir->forgetParent(this);
    }
    while (LinkRecord* const record = parents_.first()) {
        ilLink* const parent = record->target;
        parents_.remove(record);
        leaveParent(parent);
    }
    if (traceFlags() & TraceDestruction) reportLink(this, 'd');
}

std::int32_t ilLink::isKindOf(const ClassDescriptor& wanted) const {
    std::int32_t depth = 1;
    for (auto* step = &classDescriptor(); step; step = step->base, ++depth) {
        if (step == &wanted) return depth;
    }
    return 0;
}

const ClassDescriptor* ilLink::classAt(std::int32_t index) const {
    return index <= 0 ? &classDescriptor() : nullptr;
}

void ilLink::update() {}

void ilLink::onFirstAltered() {}

const char* ilLink::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilLink::classDescriptor() const {
    return descriptor;
}

void ilLink::release() const {
    if (refCount_ > 1) {
        --refCount_;
    } else {
        refCount_ = dying;
        delete this;
    }
}

std::int32_t ilLink::reset() {
    if ((altered_ & AttributeBits) == 0 || (altered_ & Resetting) != 0) return status_;
    altered_ |= Resetting;
    std::int32_t height = 0;
    for (std::int32_t i = 0; i < parents_.count(); ++i) {
        ilLink* const seen = resolve(parents_.at(i)->target);
        if (!seen) continue;
        seen->reset();
        height = std::max(height, seen->height_ + 1);
    }
    height_ = height;
    update();
    altered_ = 0;
    if (traced_ && (allowedFlags_ & TraceMark) != 0) {
        reportLink(this, 'i');
    } else if (isTracingChanges()) {
        reportLink(this, 'a');
    }
    allowedFlags_ &= ~static_cast<std::uint32_t>(TraceMark);
    return status_;
}

std::int32_t ilLink::setAltered(std::uint32_t mask) {
    if (mask == 0) return ImageOk;
    const bool keepFromChildren = (mask & KeepFromChildren) != 0;
    const bool notifyOnly = (mask & NotifyOnly) != 0;
    std::uint32_t changed = mask & ~std::uint32_t{KeepFromChildren | NotifyOnly};
    if (changed == 0) changed = AlteredPixels;
    if ((changed & AttributeBits & ~allowedFlags_) != 0 || (changed & ~AttributeBits) != 0) {
        return ImageNotAllowed;
    }
    setFlags_ |= changed;
    if (!notifyOnly) {
        if (altered_ == 0) onFirstAltered();
        altered_ |= changed;
    } else if (altered_ == 0 && isTracingChanges()) {
        reportLink(this, 'a');
    }
    // A disabled link always passes changes on: its children may look through it at what changed.
    if (keepFromChildren || (altered_ & Resetting) != 0) return ImageOk;
    if ((altered_ & ToldChildren) != 0 && enabled_) return ImageOk;
    if (altered_ != 0) altered_ |= ToldChildren;
    for (std::int32_t i = 0; i < children_.count(); ++i) {
        ilLink* const heir = children_.at(i)->target;
        if (changed == AlteredEnabled && heir->noBypass_) continue;
        heir->setAltered(AlteredPixels);
    }
    return ImageOk;
}

std::int32_t ilLink::addParent(ilLink* parent) {
    parents_.append(parent, noSlot);
    adoptChild(parent, noSlot);
    return setAltered(AlteredPixels);
}

std::int32_t ilLink::setParent(ilLink* parent, std::int32_t slot) {
    if (slot < 0) return ImageNoSuchParent;
    const auto place = static_cast<std::uint32_t>(slot);
    LinkRecord* const record = parents_.findSlot(place);
    if (record && record->target == parent) return ImageOk;
    adoptChild(parent, place);
    if (record) {
        ilLink* const old = record->target;
        record->target = parent;
        leaveParent(old);
    } else {
        parents_.append(parent, place);
    }
    return setAltered(AlteredPixels);
}

std::int32_t ilLink::removeParent(ilLink* parent) {
    return dropParent(parents_.findTarget(parent));
}

std::int32_t ilLink::removeParentSlot(std::int32_t slot) {
    return dropParent(slot < 0 ? nullptr : parents_.findSlot(static_cast<std::uint32_t>(slot)));
}

ilLink* ilLink::parent(std::int32_t slot) const {
    return resolve(unresolvedParent(slot));
}

std::int32_t ilLink::maxParentSlot() const {
    std::int32_t largest = -1;
    for (auto* record = parents_.first(); record; record = parents_.after(record)) {
        largest = std::max(largest, static_cast<std::int32_t>(record->slot));
    }
    return largest;
}

ilLink* ilLink::child(std::int32_t index) {
    LinkRecord* const record = children_.at(index);
    return record ? record->target : nullptr;
}

std::int32_t ilLink::chainHeight() {
    reset();
    return height_;
}

std::int32_t ilLink::setEnabled(bool enabled) {
    if ((allowedFlags_ & AlteredEnabled) == 0) return ImageNotAllowed;
    if (enabled == enabled_) {
        setFlags_ |= AlteredEnabled;
        return ImageOk;
    }
    enabled_ = enabled;
    if (enabled) reset();
    return setAltered(AlteredEnabled | NotifyOnly);
}

void ilLink::setBypassParent(std::uint32_t slot) {
    bypassParent_ = slot;
    if (!enabled_) setAltered(NotifyOnly);
}

ilLink* ilLink::resolve(ilLink* parent) const {
    if (noBypass_ || !parent || parent->enabled_) return parent;
    const LinkRecord* const record = parent->parents_.findSlot(parent->bypassParent_);
    return record ? parent->resolve(record->target) : nullptr;
}

ilLink* ilLink::unresolvedParent(std::int32_t slot) const {
    if (slot < 0) return nullptr;
    const LinkRecord* const record = parents_.findSlot(static_cast<std::uint32_t>(slot));
    return record ? record->target : nullptr;
}

void ilLink::adoptChild(ilLink* parent, std::uint32_t slot) {
    if (!parent) return;
    parent->addRef();
    parent->children_.append(this, slot);
}

// Undoes adoptChild; the parent may be gone afterwards.
void ilLink::leaveParent(ilLink* parent) {
    if (!parent) return;
    if (LinkRecord* const record = parent->children_.findTarget(this)) {
        parent->children_.remove(record);
        parent->release();
    }
}

void ilLink::forgetParent(const ilLink* parent) {
    while (LinkRecord* const record = parents_.findTarget(parent)) record->target = nullptr;
}

std::int32_t ilLink::dropParent(LinkRecord* record) {
    if (!record) return ImageNoSuchParent;
    ilLink* const parent = record->target;
    parents_.remove(record);
    leaveParent(parent);
    return setAltered(AlteredPixels);
}

}  // namespace brushwork
