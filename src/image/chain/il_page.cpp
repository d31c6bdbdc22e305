#include "image/chain/il_page.h"

#include "image/memory/image_buffer.h"

namespace brushwork {
namespace {

// Through volatile: what is written to a dying object must reach the memory, since it is there for
// those who look at the page after its end.
template <class T>
void overwrite(T& field, T value) {
    *static_cast<volatile T*>(&field) = value;
}

}  // namespace

ilPage::ilPage(std::int32_t pageX, std::int32_t pageY, std::int32_t pageZ, std::int32_t channel,
               std::uint8_t* data)
    : ilXYZCstruct{pageX, pageY, pageZ, channel}, data_(data) {}

ilPage::~ilPage() {
    invalidate();
}

void ilPage::invalidate() {
    const auto dead = static_cast<std::int32_t>(deadSignature);
    overwrite(x, dead);
    overwrite(y, dead);
    overwrite(z, dead);
    overwrite(c, dead);
    overwrite(signature_, std::uint32_t{deadSignature});
    overwrite(data_, reinterpret_cast<std::uint8_t*>(std::uintptr_t{deadSignature}));
}

ilImagePage::ilImagePage(std::int32_t pageX, std::int32_t pageY, std::int32_t pageZ,
                         std::int32_t channel, std::size_t bytes)
    : ilPage(pageX, pageY, pageZ, channel, nullptr), buffer_(imageAllocate(bytes)), bytes_(bytes) {
    setData(buffer_);
}

ilImagePage::~ilImagePage() {
    imageFree(buffer_, bytes_);
}

}  // namespace brushwork
