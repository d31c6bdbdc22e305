// Plain structures in the place of what this system doesn't have.

#include <algorithm>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include "platform/memory_blocks.h"

namespace brushwork::platform {

namespace {

using Bytes = std::unique_ptr<std::uint8_t[]>;

struct PlainBlock {
    Bytes bytes;
    std::size_t size = 0;
};

struct PlainBitmap {
    Bytes bits;
    BitmapLayout layout;
};

struct Resource {
    void* module;
    std::u16string name;
    std::u16string type;
    std::span<const std::uint8_t> bytes;
    [[nodiscard]] bool is(const ResourceName& wanted) const {
        return module == wanted.module && name == wanted.name && type == wanted.type;
    }
};

struct ResourceTable {
    std::mutex mutex;
    std::vector<Resource> rows;
};

ResourceTable& resourceTable() {
    static ResourceTable table;
    return table;
}

// No system has a block of more: such sizes are the wrap of a sum.
constexpr std::uint64_t mostBytes = std::uint64_t{1} << 38;

Bytes zeroedBytes(std::size_t size) {
    if (std::uint64_t{size} > mostBytes) return nullptr;
    return Bytes(new (std::nothrow) std::uint8_t[size]());
}

PlainBlock* blockOf(void* handle) {
    return static_cast<PlainBlock*>(handle);
}
PlainBitmap* bitmapOf(void* handle) {
    return static_cast<PlainBitmap*>(handle);
}

}  // namespace

GlobalBlock GlobalBlock::allocate(std::size_t bytes) {
    if (bytes == 0) return {};
    std::unique_ptr<PlainBlock> block(new (std::nothrow) PlainBlock);
    if (!block) return {};
    block->bytes = zeroedBytes(bytes);
    block->size = bytes;
    return block->bytes ? GlobalBlock(block.release()) : GlobalBlock();
}

GlobalBlock::~GlobalBlock() {
    const std::unique_ptr<PlainBlock> block(blockOf(handle_));
}

LockedBlock::LockedBlock(const GlobalBlock& block) : handle_(block.handle()) {
    if (handle_) bytes_ = {blockOf(handle_)->bytes.get(), blockOf(handle_)->size};
}

LockedBlock::~LockedBlock() = default;

bool addResource(const ResourceName& resource, std::span<const std::uint8_t> bytes) {
    ResourceTable& table = resourceTable();
    const std::lock_guard lock(table.mutex);
    const auto found = std::find_if(table.rows.begin(), table.rows.end(),
                                    [&](const Resource& row) { return row.is(resource); });
    if (found != table.rows.end())
        found->bytes = bytes;
    else
        table.rows.push_back(
            {resource.module, std::u16string(resource.name), std::u16string(resource.type), bytes});
    return true;
}

GlobalBlock copyResource(const ResourceName& resource) {
    ResourceTable& table = resourceTable();
    const std::lock_guard lock(table.mutex);
    for (const Resource& row : table.rows)
        if (row.is(resource)) return GlobalBlock::holding(row.bytes);
    return {};
}

BitmapHandle BitmapHandle::create(std::int32_t width, std::int32_t height,
                                  std::int32_t bitsPerPixel) {
    const std::size_t bytes = paddedBitmapBytes(width, height, bitsPerPixel);
    if (bytes == 0 || (bitsPerPixel != 24 && bitsPerPixel != 32)) return {};
    std::unique_ptr<PlainBitmap> bitmap(new (std::nothrow) PlainBitmap);
    if (!bitmap) return {};
    bitmap->bits = zeroedBytes(bytes);
    if (!bitmap->bits) return {};
    bitmap->layout = {width, height, bitsPerPixel, bytes / static_cast<std::size_t>(height),
                      bitmap->bits.get()};
    return BitmapHandle(bitmap.release());
}

BitmapHandle::~BitmapHandle() {
    const std::unique_ptr<PlainBitmap> bitmap(bitmapOf(handle_));
}

BitmapLayout BitmapHandle::layout() const {
    return handle_ ? bitmapOf(handle_)->layout : BitmapLayout();
}

}  // namespace brushwork::platform
