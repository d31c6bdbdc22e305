#include "image/memory/image_buffer.h"

#include <limits>
#include <new>

namespace brushwork {
namespace {

constexpr std::align_val_t alignment{64};
// Beyond it pointers into the buffer could not be subtracted.
constexpr std::size_t mostBytes = std::numeric_limits<std::size_t>::max() / 2;

}  // namespace

std::uint8_t* imageAllocate(std::size_t bytes) {
    if (bytes == 0 || bytes > mostBytes) return nullptr;
    return static_cast<std::uint8_t*>(::operator new(bytes, alignment, std::nothrow));
}

void imageFree(std::uint8_t* buffer, [[maybe_unused]] std::size_t bytes) {
    if (buffer) ::operator delete(buffer, alignment);
}

}  // namespace brushwork
