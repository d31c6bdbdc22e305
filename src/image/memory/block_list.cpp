#include "image/memory/block_list.h"

namespace brushwork {

void BlockList::pushFront(BworkMemBlockAllocator& block) {
    if (head_ == &block) return;
    leave(block);
    block.list_ = this;
    block.next_ = head_;
    (head_ ? head_->prev_ : tail_) = &block;
    head_ = &block;
}

void BlockList::pushBack(BworkMemBlockAllocator& block) {
    if (tail_ == &block) return;
    leave(block);
    block.list_ = this;
    block.prev_ = tail_;
    (tail_ ? tail_->next_ : head_) = &block;
    tail_ = &block;
}

void BlockList::leave(BworkMemBlockAllocator& block) {
    BlockList* const list = block.list_;
    if (!list) return;
    (block.prev_ ? block.prev_->next_ : list->head_) = block.next_;
    (block.next_ ? block.next_->prev_ : list->tail_) = block.prev_;
    block.prev_ = block.next_ = nullptr;
    block.list_ = nullptr;
}

}  // namespace brushwork
