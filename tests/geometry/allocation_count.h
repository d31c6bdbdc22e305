// How often has this thread allocated? Counted by this program's own operator new.
#pragma once

#include <cstddef>

namespace brushwork::test {

class AllocationCount {
  public:
    AllocationCount() : begin_(total()) {}
    [[nodiscard]] std::size_t sinceBegin() const { return total() - begin_; }

  private:
    [[nodiscard]] static std::size_t total();

    std::size_t begin_;
};

}  // namespace brushwork::test
