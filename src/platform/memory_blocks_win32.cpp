#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstring>

#include "platform/memory_blocks.h"
#include "platform/wide_text_win32.h"

namespace brushwork::platform {

namespace {

HBITMAP bitmapOf(void* handle) {
    return static_cast<HBITMAP>(handle);
}

}  // namespace

GlobalBlock GlobalBlock::allocate(std::size_t bytes) {
    if (bytes == 0) return {};
    return GlobalBlock(::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes));
}

GlobalBlock::~GlobalBlock() {
    if (handle_) ::GlobalFree(handle_);
}

LockedBlock::LockedBlock(const GlobalBlock& block) : handle_(block.handle()) {
    if (!handle_) return;
    void* const bytes = ::GlobalLock(handle_);
    if (bytes)
        bytes_ = {static_cast<std::uint8_t*>(bytes), ::GlobalSize(handle_)};
    else
        handle_ = nullptr;
}

LockedBlock::~LockedBlock() {
    if (handle_) ::GlobalUnlock(handle_);
}

// Resources stand in the program file.
bool addResource(const ResourceName&, std::span<const std::uint8_t>) {
    return false;
}

GlobalBlock copyResource(const ResourceName& resource) {
    const auto module =
        resource.module ? static_cast<HMODULE>(resource.module) : ::GetModuleHandleW(nullptr);
    const HRSRC found =
        ::FindResourceW(module, toWide(resource.name).c_str(), toWide(resource.type).c_str());
    const DWORD size = found ? ::SizeofResource(module, found) : 0;
    const HGLOBAL loaded = size != 0 ? ::LoadResource(module, found) : nullptr;
    const void* const bytes = loaded ? ::LockResource(loaded) : nullptr;
    if (!bytes) return {};
    return GlobalBlock::holding({static_cast<const std::uint8_t*>(bytes), size});
}

BitmapHandle BitmapHandle::create(std::int32_t width, std::int32_t height,
                                  std::int32_t bitsPerPixel) {
    if (paddedBitmapBytes(width, height, bitsPerPixel) == 0 ||
        (bitsPerPixel != 24 && bitsPerPixel != 32))
        return {};
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;  // top row first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = static_cast<WORD>(bitsPerPixel);
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    return BitmapHandle(::CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
}

BitmapHandle::~BitmapHandle() {
    if (handle_) ::DeleteObject(bitmapOf(handle_));
}

BitmapLayout BitmapHandle::layout() const {
    BITMAP bitmap{};
    if (!handle_ || ::GetObjectW(bitmapOf(handle_), sizeof bitmap, &bitmap) == 0) return {};
    return {bitmap.bmWidth, bitmap.bmHeight, bitmap.bmBitsPixel,
            static_cast<std::size_t>(bitmap.bmWidthBytes),
            static_cast<std::uint8_t*>(bitmap.bmBits)};
}

}  // namespace brushwork::platform
