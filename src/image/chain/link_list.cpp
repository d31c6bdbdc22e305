#include "image/chain/link_list.h"

#include <cstdlib>
#include <memory>

namespace brushwork {
namespace {

LinkRecord* walk(LinkRecord* from, std::int32_t steps) {
    for (; steps > 0; --steps) from = from->next;
    for (; steps < 0; ++steps) from = from->previous;
    return from;
}

}  // namespace

LinkList::LinkList() {
    head_.next = &head_;
    head_.previous = &head_;
}

LinkList::~LinkList() {
    while (count_ > 0) remove(head_.next);
}

LinkRecord* LinkList::at(std::int32_t index) {
    if (index < 0 || index >= count_) return nullptr;
    if (index == 0) return head_.next;
    if (index == count_ - 1) return head_.previous;
    const std::int32_t fromHead = index + 1;
    const std::int32_t fromTail = index - count_;
    const std::int32_t nearest = fromHead <= -fromTail ? fromHead : fromTail;
    const std::int32_t fromCursor = index - cursorIndex_;
    if (cursorIndex_ >= 0 && std::abs(fromCursor) < std::abs(nearest)) {
        cursor_ = walk(cursor_, fromCursor);
    } else {
        cursor_ = walk(&head_, nearest);
    }
    cursorIndex_ = index;
    return cursor_;
}

LinkRecord* LinkList::first() const {
    return count_ > 0 ? head_.next : nullptr;
}

LinkRecord* LinkList::last() const {
    return count_ > 0 ? head_.previous : nullptr;
}

LinkRecord* LinkList::after(const LinkRecord* record) const {
    return record->next == &head_ ? nullptr : record->next;
}

LinkRecord* LinkList::findTarget(const ilLink* target) const {
    for (LinkRecord* record = head_.next; record != &head_; record = record->next) {
        if (record->target == target) return record;
    }
    return nullptr;
}

LinkRecord* LinkList::findSlot(std::uint32_t slot) const {
    for (LinkRecord* record = head_.next; record != &head_; record = record->next) {
        if (record->slot == slot) return record;
    }
    return nullptr;
}

LinkRecord* LinkList::append(ilLink* target, std::uint32_t slot) {
    return insertBefore(&head_, target, slot);
}

LinkRecord* LinkList::insertFront(ilLink* target, std::uint32_t slot) {
    if (cursorIndex_ >= 0) ++cursorIndex_;
    return insertBefore(head_.next, target, slot);
}

void LinkList::remove(LinkRecord* record) {
    const std::unique_ptr<LinkRecord> owned(record);
    record->previous->next = record->next;
    record->next->previous = record->previous;
    --count_;
    cursor_ = nullptr;
    cursorIndex_ = -1;
}

LinkRecord* LinkList::insertBefore(LinkRecord* place, ilLink* target, std::uint32_t slot) {
    auto record = std::make_unique<LinkRecord>();
    record->next = place;
    record->previous = place->previous;
    record->target = target;
    record->slot = slot;
    place->previous->next = record.get();
    place->previous = record.get();
    ++count_;
    return record.release();
}

}  // namespace brushwork
