// Sorting an array of indices by keys, in two phases of two pieces each.
//
//     using Less = znUtil::Ordering::IndexedLessThan<int>;
//     znUtil::SMPSortPiecewise<int, Less> halves(order, Less(keys));
//     znUtil::SMPSortMerge<int, Less> merge(order, Less(keys));
//     pool.run(halves) && pool.run(merge);
//
// The two together are a stable sort, so equal keys give the same order with every pool and every
// library. A begin that finds no memory says so, and nothing has been moved then.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include "foundation/tasks/thread_pool.h"

namespace brushwork::znUtil {

namespace Ordering {

// Compares indices by the keys that they stand for; each must be a place in `keys`, which is
// borrowed.
template <class Key>
class IndexedLessThan {
  public:
    explicit IndexedLessThan(std::span<const Key> keys) noexcept : keys_(keys) {}
    template <class Index>
    [[nodiscard]] bool operator()(Index a, Index b) const noexcept {
        return keys_[static_cast<std::size_t>(a)] < keys_[static_cast<std::size_t>(b)];
    }

  private:
    std::span<const Key> keys_;
};

}  // namespace Ordering

// Sorts each half of the array for itself. Of an odd number the first half has one more.
template <class Index, class Less>
class SMPSortPiecewise final : public ThreadedChunkAlg {
  public:
    // Borrows the entries.
    SMPSortPiecewise(std::span<Index> entries, Less less)
        : entries_(entries), less_(std::move(less)) {
        chunkCount = 2;
    }
    void run(std::int32_t chunk, std::int32_t, std::int32_t) override {
        const std::size_t cut = entries_.size() - entries_.size() / 2;
        const auto half = chunk == 0 ? entries_.first(cut) : entries_.subspan(cut);
        std::stable_sort(half.begin(), half.end(), less_);
    }

  private:
    std::span<Index> entries_;
    Less less_;
};

// Merges two sorted halves, the front of the result and its back each by a piece of its own, into a
// scratch array that `end` copies back. Of equal keys those of the first half come first.
template <class Index, class Less>
class SMPSortMerge final : public ThreadedChunkAlg {
  public:
    // Borrows the entries, sorted by SMPSortPiecewise.
    SMPSortMerge(std::span<Index> entries, Less less) : entries_(entries), less_(std::move(less)) {
        chunkCount = 2;
    }
    [[nodiscard]] bool begin(std::int32_t) override {
        try {
            scratch_.resize(entries_.size());
        } catch (const std::bad_alloc&) {
            return false;
        }
        return true;
    }
    void run(std::int32_t chunk, std::int32_t, std::int32_t) override {
        chunk == 0 ? mergeFront() : mergeBack();
    }
    void end() override { std::copy(scratch_.begin(), scratch_.end(), entries_.begin()); }

  private:
    // Where the second half begins, and how much of the result the first piece makes.
    [[nodiscard]] std::size_t cut() const { return entries_.size() - entries_.size() / 2; }

    void mergeFront() {
        std::size_t first = 0, second = cut();
        for (std::size_t place = 0; place < cut(); ++place) {
            const bool takesSecond =
                second < entries_.size() && less_(entries_[second], entries_[first]);
            scratch_[place] = entries_[takesSecond ? second++ : first++];
        }
    }
    // `first` and `second` are one past what is left of each half.
    void mergeBack() {
        std::size_t first = cut(), second = entries_.size();
        for (std::size_t place = entries_.size(); place-- > cut();) {
            const bool takesFirst =
                second == cut() || (first > 0 && less_(entries_[second - 1], entries_[first - 1]));
            scratch_[place] = entries_[takesFirst ? --first : --second];
        }
    }

    std::span<Index> entries_;
    Less less_;
    std::vector<Index> scratch_;
};

// Both phases; false if there was no memory, the entries then being in some order.
template <class Index, class Less>
[[nodiscard]] bool smpSort(ThreadPool& pool, std::span<Index> entries, const Less& less) {
    SMPSortPiecewise<Index, Less> halves(entries, less);
    SMPSortMerge<Index, Less> merge(entries, less);
    return pool.run(halves) && pool.run(merge);
}

}  // namespace brushwork::znUtil
