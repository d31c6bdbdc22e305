#include "fill/page_queue.h"

#include <bit>
#include <new>

namespace brushwork {
namespace {

constexpr std::uint64_t bitOf(std::size_t index) {
    return std::uint64_t{1} << (index % 64);
}

// The first set bit from `from` on, or a value behind the last.
std::size_t firstBit(const std::vector<std::uint64_t>& words, std::size_t from) {
    for (std::size_t i = from / 64; i < words.size(); ++i) {
        std::uint64_t word = words[i];
        if (i == from / 64) word &= ~(bitOf(from) - 1);
        if (word != 0) return i * 64 + static_cast<std::size_t>(std::countr_zero(word));
    }
    return words.size() * 64;
}

}  // namespace

bool PageQueue::reset(std::int32_t count) {
    held_ = 0;
    const auto pages = static_cast<std::size_t>(count);
    try {
        pages_.assign((pages + 63) / 64, 0);
        words_.assign((pages_.size() + 63) / 64, 0);
    } catch (const std::bad_alloc&) {
        pages_.clear();
        words_.clear();
        return false;
    }
    return true;
}

void PageQueue::insert(std::int32_t page) {
    const auto index = static_cast<std::size_t>(page);
    std::uint64_t& word = pages_[index / 64];
    if ((word & bitOf(index)) != 0) return;
    word |= bitOf(index);
    words_[index / 4096] |= bitOf(index / 64);
    ++held_;
}

void PageQueue::remove(std::int32_t page) {
    const auto index = static_cast<std::size_t>(page);
    std::uint64_t& word = pages_[index / 64];
    if ((word & bitOf(index)) == 0) return;
    word &= ~bitOf(index);
    if (word == 0) words_[index / 4096] &= ~bitOf(index / 64);
    --held_;
}

std::int32_t PageQueue::first() const {
    return firstFrom(0);
}

std::int32_t PageQueue::firstFrom(std::int32_t page) const {
    const auto index = static_cast<std::size_t>(page);
    std::size_t word = index / 64;
    if (word >= pages_.size()) return -1;
    std::uint64_t bits = pages_[word] & ~(bitOf(index) - 1);
    if (bits == 0) {
        word = firstBit(words_, word + 1);
        if (word >= pages_.size()) return -1;
        bits = pages_[word];
    }
    return static_cast<std::int32_t>(word * 64) + std::countr_zero(bits);
}

}  // namespace brushwork
