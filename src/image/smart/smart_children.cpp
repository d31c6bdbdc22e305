#include "image/smart/smart_children.h"

#include <algorithm>

namespace brushwork {

void SmartChildren::add(ilSmartImage& child) {
    const auto hole = std::find(entries_.begin(), entries_.end(), nullptr);
    if (hole != entries_.end())
        *hole = &child;
    else
        entries_.push_back(&child);
    ++count_;
}

void SmartChildren::remove(ilSmartImage& child) {
    const auto entry = std::find(entries_.begin(), entries_.end(), &child);
    if (entry == entries_.end()) return;
    *entry = nullptr;
    --count_;
}

}  // namespace brushwork
