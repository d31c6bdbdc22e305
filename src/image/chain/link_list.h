// LinkList: the parents or the children of an image, in order, with a cursor for quick look-up.
#pragma once

#include <cstdint>

namespace brushwork {

class ilLink;

// One entry. Records are owned by the list that they stand in.
struct LinkRecord {
    LinkRecord* next = nullptr;
    LinkRecord* previous = nullptr;
    ilLink* target = nullptr;  // borrowed; may be null
    std::uint32_t slot = 0;    // for a parent: the parent slot that it fills
};

// A circular list whose head record is the list itself. Looking an index up walks the shortest of
// four ways (from either end, or from the cursor in either direction) and leaves the cursor on the
// result; the first and the last entry answer at once and leave the cursor alone.
class LinkList {
  public:
    LinkList();
    LinkList(const LinkList&) = delete;
    LinkList& operator=(const LinkList&) = delete;
    ~LinkList();

    [[nodiscard]] std::int32_t count() const { return count_; }
    // Null outside 0 to count - 1.
    [[nodiscard]] LinkRecord* at(std::int32_t index);
    [[nodiscard]] LinkRecord* first() const;  // null if empty
    [[nodiscard]] LinkRecord* last() const;
    // The entry behind `record`; null at the end.
    [[nodiscard]] LinkRecord* after(const LinkRecord* record) const;
    // The first entry with that target or that slot; null if there is none.
    [[nodiscard]] LinkRecord* findTarget(const ilLink* target) const;
    [[nodiscard]] LinkRecord* findSlot(std::uint32_t slot) const;

    LinkRecord* append(ilLink* target, std::uint32_t slot);
    // Shifts the cursor by one.
    LinkRecord* insertFront(ilLink* target, std::uint32_t slot);
    // Deletes the record and forgets the cursor.
    void remove(LinkRecord* record);

    [[nodiscard]] std::int32_t cursorIndex() const { return cursorIndex_; }  // -1: unset

  private:
    LinkRecord* insertBefore(LinkRecord* place, ilLink* target, std::uint32_t slot);

    LinkRecord head_;
    LinkRecord* cursor_ = nullptr;
    std::int32_t cursorIndex_ = -1;
    std::int32_t count_ = 0;
};

}  // namespace brushwork
