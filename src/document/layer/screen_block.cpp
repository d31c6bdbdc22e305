#include "document/layer/screen_block.h"

#include "foundation/host/host_canvas.h"

namespace brushwork {
namespace {

constexpr std::int32_t mostSide = 32767;

Ref<ilSPMemoryImg>& block() {
    static Ref<ilSPMemoryImg> shared;
    return shared;
}

bool isScreen(std::int32_t width, std::int32_t height) {
    return width > 0 && height > 0 && width <= mostSide && height <= mostSide;
}

}  // namespace

Ref<ilSPMemoryImg> screenBlock(std::int32_t width, std::int32_t height) {
    std::int32_t hostWidth = 0;
    std::int32_t hostHeight = 0;
    if (hostScreenSize(hostWidth, hostHeight) && isScreen(hostWidth, hostHeight)) {
        width = hostWidth;
        height = hostHeight;
    }
    if (!isScreen(width, height)) return {};
    Ref<ilSPMemoryImg>& shared = block();
    if (shared && shared->sizeX() == width && shared->sizeY() == height) return shared;
    shared.reset();  // first, so that both needn't fit
    const Ref<ilSPMemoryImg> made(new ilSPMemoryImg(width, height, 4));
    if (made->data()) shared = made;
    return shared;
}

void dropScreenBlock() {
    block().reset();
}

}  // namespace brushwork
