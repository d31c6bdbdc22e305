// PageQueue: the ordered set of pages that a flood has still to enter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace brushwork {

// Page numbers from 0 up to a count, each at most once; a bit for each and a bit for each 64 of
// these.
class PageQueue {
  public:
    // Empties the set. False without memory; it then takes no numbers.
    [[nodiscard]] bool reset(std::int32_t count);
    // The number lies in the range.
    void insert(std::int32_t page);
    void remove(std::int32_t page);
    // The smallest, or -1.
    [[nodiscard]] std::int32_t first() const;
    // The smallest from `page` on, or -1.
    [[nodiscard]] std::int32_t firstFrom(std::int32_t page) const;
    [[nodiscard]] bool empty() const { return held_ == 0; }

  private:
    std::vector<std::uint64_t> pages_;
    std::vector<std::uint64_t> words_;  // which of pages_ aren't 0
    std::size_t held_ = 0;
};

}  // namespace brushwork
