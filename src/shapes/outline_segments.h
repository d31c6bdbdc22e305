// OutlineSegments: the straight pieces of an outline, ready to be met with lines.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "brushwork/host_call_table.h"

namespace brushwork {

// Pieces, and 1 / dx and 1 / dy of each.
class OutlineSegments {
  public:
    struct Reciprocal {
        float dx = 0.0f;
        float dy = 0.0f;
    };

    OutlineSegments() = default;
    explicit OutlineSegments(std::vector<HostSegment> pieces);

    [[nodiscard]] std::span<const HostSegment> pieces() const { return pieces_; }
    [[nodiscard]] std::span<const Reciprocal> reciprocals() const { return reciprocals_; }
    [[nodiscard]] std::size_t count() const { return pieces_.size(); }

  private:
    std::vector<HostSegment> pieces_;
    std::vector<Reciprocal> reciprocals_;
};

}  // namespace brushwork
