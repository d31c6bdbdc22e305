// Lists of pages, linked through the pages: one pair of links for the list that a page lies on by
// what holds its pixels, another for the list of written pages that wait to be looked at.
#pragma once

#include <cstdint>
#include <utility>

#include "image/cache/smart_page.h"

namespace brushwork {

template <SmartPage* SmartPage::*Next, SmartPage* SmartPage::*Previous>
class PageChain {
  public:
    PageChain() = default;
    PageChain(const PageChain&) = delete;
    PageChain& operator=(const PageChain&) = delete;

    // The page is on no list of these links.
    void pushFront(SmartPage& page) {
        page.*Previous = nullptr;
        page.*Next = head_;
        (head_ ? head_->*Previous : tail_) = &page;
        head_ = &page;
        ++count_;
    }
    // The page is on this list.
    void remove(SmartPage& page) {
        SmartPage* const next = std::exchange(page.*Next, nullptr);
        SmartPage* const previous = std::exchange(page.*Previous, nullptr);
        (previous ? previous->*Next : head_) = next;
        (next ? next->*Previous : tail_) = previous;
        --count_;
    }
    void moveToFront(SmartPage& page) {
        if (head_ == &page) return;
        remove(page);
        pushFront(page);
    }

    // True also for a page on another list of these links.
    [[nodiscard]] bool mayHold(const SmartPage& page) const {
        return head_ == &page || page.*Previous != nullptr;
    }
    [[nodiscard]] SmartPage* head() const { return head_; }
    [[nodiscard]] SmartPage* tail() const { return tail_; }  // pushed or moved longest ago
    [[nodiscard]] static SmartPage* next(const SmartPage& page) { return page.*Next; }
    [[nodiscard]] static SmartPage* previous(const SmartPage& page) { return page.*Previous; }
    [[nodiscard]] std::int32_t count() const { return count_; }

    // Whether links and count are whole and each page is live and passes `belongs(page)`.
    template <class Belongs>
    [[nodiscard]] bool isSound(Belongs&& belongs) const {
        std::int32_t left = count_;
        const SmartPage* before = nullptr;
        for (const SmartPage* page = head_; page; page = page->*Next) {
            if (left-- <= 0 || !page->isLive() || page->*Previous != before) return false;
            if (!belongs(*page)) return false;
            before = page;
        }
        return left == 0 && tail_ == before;
    }

  private:
    SmartPage* head_ = nullptr;
    SmartPage* tail_ = nullptr;
    std::int32_t count_ = 0;
};

using PageList = PageChain<&SmartPage::lruNext, &SmartPage::lruPrev>;
using ScanList = PageChain<&SmartPage::scanNext, &SmartPage::scanPrev>;

}  // namespace brushwork
