#include "image/work/il_pattern_img.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "image/work/il_memory_img.h"

namespace brushwork {
namespace {

std::int32_t pagesFor(std::int32_t size) {
    return static_cast<std::int32_t>((std::int64_t{size} + ilPatternPage::side - 1) /
                                     ilPatternPage::side);
}

std::int32_t wrapped(std::int32_t value, std::int32_t size) {
    const std::int32_t rest = value % size;
    return rest < 0 ? rest + size : rest;
}

// Repeats the first `period` bytes of a row behind them.
void repeatRow(std::vector<std::uint8_t>& row, std::size_t period) {
    for (std::size_t have = period; have < row.size();) {
        const std::size_t count = std::min(period, row.size() - have);
        std::memcpy(row.data() + have, row.data(), count);
        have += count;
    }
}

}  // namespace

ilPatternPage::ilPatternPage() = default;

ilPatternPage::ilPatternPage(std::int32_t x, std::int32_t y)
    : x_(x), y_(y), data_(std::make_unique<std::uint8_t[]>(bytes)) {}

ilPatternPage::~ilPatternPage() = default;

// Spelt with three t's since it was first written; it stays so.
const ClassDescriptor ilPatternImg::descriptor = {"PattternImg", &ilImage::descriptor};

ilPatternImg::ilPatternImg() {
    fill_ = ilPixel(TypeUChar, 1);
    sizeX_ = sizeY_ = 0;
    sizeZ_ = 1;
    channels_ = fill_.channels();
    dataType_ = TypeUChar;
    order_ = OrderInterleaved;
    coordSpace_ = SpaceLowerLeft;
    imageKind_ = KindPattern;
    setDefaultPageSize(ilPatternPage::side, ilPatternPage::side, 1, 1);
}

ilPatternImg::ilPatternImg(ilImage* source) : ilPatternImg() {
    setStatus(setPattern(source));
}

ilPatternImg::~ilPatternImg() = default;

const char* ilPatternImg::className() const {
    return descriptor.name;
}

const ClassDescriptor& ilPatternImg::classDescriptor() const {
    return descriptor;
}

std::int32_t ilPatternImg::readRegion(const ilTile&, void*, const ilTile&, const ilImageConfig*) {
    return ImageOk;
}

std::int32_t ilPatternImg::writeRegion(const ilTile&, const void*, const ilTile&,
                                       const ilImageConfig*) {
    return ImageOk;
}

std::int32_t ilPatternImg::copyRegion(const ilTile&, ilImage&, std::int32_t, std::int32_t,
                                      std::int32_t, const ilImageConfig*, CopyDirection) {
    return ImageOk;
}

std::int32_t ilPatternImg::fillRegion(const ilTile&, const ilPixel&, const ilImageConfig*,
                                      const ilTile*) {
    return ImageOk;
}

std::int32_t ilPatternImg::setPattern(ilImage* source) {
    auto* const memory = dynamic_cast<ilMemoryImg*>(source);
    if (memory) memory->reset();
    if (!memory || !memory->data()) return ImageUnusable;
    const std::int32_t width = memory->sizeX();
    const std::int32_t height = memory->sizeY();
    const std::int32_t across = pagesFor(width);
    const std::int32_t down = pagesFor(height);
    std::vector<Ref<ilPatternPage>> pages;
    pages.reserve(static_cast<std::size_t>(across) * static_cast<std::size_t>(down));
    const ilImageConfig grey(TypeUChar, OrderInterleaved, 1);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(across) * ilPatternPage::side);
    for (std::int32_t pageRow = 0; pageRow < down; ++pageRow) {
        const std::size_t first = pages.size();
        const std::int32_t bottom = pageRow * ilPatternPage::side;
        for (std::int32_t column = 0; column < across; ++column)
            pages.push_back(makeRef<ilPatternPage>(column * ilPatternPage::side, bottom));
        for (std::int32_t i = 0; i < ilPatternPage::side; ++i) {
            const ilTile line = flatTile(
                0, static_cast<std::int32_t>((std::int64_t{bottom} + i) % height), width, 1);
            if (const auto result = memory->readRegion(line, row.data(), line, &grey))
                return result;
            repeatRow(row, static_cast<std::size_t>(width));
            for (std::size_t column = 0; column < pages.size() - first; ++column)
                std::memcpy(pages[first + column]->data() + i * ilPatternPage::side,
                            row.data() + column * ilPatternPage::side, ilPatternPage::side);
        }
    }
    pages_ = std::move(pages);
    pagesAcross_ = across;
    pagesDown_ = down;
    patternX_ = width;
    patternY_ = height;
    patternZ_ = memory->sizeZ();
    patternC_ = memory->channels();
    return ImageOk;
}

const ilPatternPage& ilPatternImg::pageAt(std::int32_t px, std::int32_t py) const {
    const auto row = static_cast<std::size_t>(py / ilPatternPage::side);
    const auto column = static_cast<std::size_t>(px / ilPatternPage::side);
    return *pages_[static_cast<std::size_t>(pagesAcross_) * row + column];
}

std::int32_t ilPatternImg::lockPages(std::span<PageLockRequest> requests, std::uint32_t) {
    if (requests.empty()) return ImageOk;
    for (PageLockRequest& request : requests) {
        request.status = pages_.empty() ? ImageUnusable : ImageOk;
        request.page = nullptr;
        if (pages_.empty()) continue;
        const std::int32_t px = wrapped(request.x, patternX_);
        const std::int32_t py = wrapped(request.y, patternY_);
        request.page = std::make_unique<ilPage>(request.x - px % ilPatternPage::side,
                                                request.y - py % ilPatternPage::side, 0, patternC_,
                                                pageAt(px, py).data())
                           .release();
    }
    return pages_.empty() ? ImageUnusable : ImageOk;
}

void ilPatternImg::unlockPages(std::span<PageLockRequest> requests) {
    for (PageLockRequest& request : requests)
        std::unique_ptr<ilPage>(std::exchange(request.page, nullptr)).reset();
}

}  // namespace brushwork
