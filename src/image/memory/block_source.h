// Where a tiny allocator takes a block of 2 MiB from, and gives it back to.
#pragma once

#include <cstdint>

namespace brushwork {

class BlockSource {
  public:
    static constexpr std::uint32_t blockBytes = 2097152;

    virtual ~BlockSource() = default;
    // blockBytes bytes, aligned for any type, now the caller's; null: none to be had.
    virtual void* takeBlock() = 0;
    // Takes back what takeBlock gave.
    virtual void giveBlock(void* block) = 0;
};

}  // namespace brushwork
