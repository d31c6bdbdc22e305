// SmartChildren: the child images of a smart image, in an array with holes.
#pragma once

#include <cstddef>
#include <vector>

namespace brushwork {

class ilSmartImage;

class SmartChildren {
  public:
    // Takes the first hole, or one more entry. Not owned.
    void add(ilSmartImage& child);
    void remove(ilSmartImage& child);

    [[nodiscard]] std::size_t count() const { return count_; }  // without the holes
    [[nodiscard]] std::size_t entryCount() const { return entries_.size(); }
    // Null for a hole.
    [[nodiscard]] ilSmartImage* at(std::size_t index) const { return entries_[index]; }

  private:
    std::vector<ilSmartImage*> entries_;
    std::size_t count_ = 0;
};

}  // namespace brushwork
