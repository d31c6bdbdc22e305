#include "fill/smart_image_flood_fill_alg.h"

#include <new>
#include <utility>

#include "fill/page_coverage.h"
#include "image/cache/page_tests.h"
#include "image/smart/page_accessor.h"
#include "image/smart/page_hold.h"
#include "image/smart/page_realize.h"

namespace brushwork {

// A page of the source, held in memory for a scope.
class SmartImageFloodFillAlg::PageInput {
  public:
    PageInput(ilSmartImage& image, std::int32_t x, std::int32_t y) {
        SmartPageRef* const slot = image.pages().pageRef(x, y, false);
        if (!slot || !realizePage(*slot, RealizeMode::Read)) return;
        page_ = *slot;
        hold_.emplace(*page_);
    }
    [[nodiscard]] explicit operator bool() const { return static_cast<bool>(page_); }
    [[nodiscard]] const std::uint8_t* pixels() const {
        return page_->isSolid() ? nullptr : page_->data;
    }
    [[nodiscard]] std::uint32_t solid() const { return page_->solid; }
    // Whether all pixels are `value`. Pixels of a page in memory are looked at on demand.
    [[nodiscard]] bool isUniform(bool look, std::uint32_t& value) const {
        value = page_->solid;
        return page_->isSolid() || (look && isUniformPage(*page_, value));
    }

  private:
    SmartPageRef page_;
    std::optional<PageHold> hold_;  // goes before the page
};

namespace {

// A page of the mask, locked for writing for a scope.
class MaskLock {
  public:
    MaskLock(ilSmartImage& mask, const ilTile& tile) : mask_(mask) {
        request_.x = tile.x;
        request_.y = tile.y;
        if (mask_.lockPages({&request_, 1}, LockWrite) != ImageOk) request_.page = nullptr;
    }
    MaskLock(const MaskLock&) = delete;
    MaskLock& operator=(const MaskLock&) = delete;
    ~MaskLock() {
        if (request_.page) mask_.unlockPages({&request_, 1});
    }
    [[nodiscard]] std::uint8_t* coverage() const {
        return request_.page ? request_.page->data() : nullptr;
    }

  private:
    ilSmartImage& mask_;
    PageLockRequest request_;
};

// Runs of consecutive bits as waves; `firstX` and `firstY` are the place of bit 0.
void pushRuns(FloodFillWaves& waves, FloodFillWaves& spare, BitRow bits, std::int32_t firstX,
              std::int32_t firstY, std::int32_t dx, std::int32_t dy) {
    if (!bits.any()) return;
    const bool alongX = dy != 0;
    // Elements go along (dy, -dx): a wave to the right or upward begins at the last bit of its run.
    const bool fromLast = dx > 0 || dy < 0;
    for (std::int32_t begin = bits.next(0); begin < pageSide;) {
        const std::int32_t end = (~bits).next(begin);
        const std::int32_t origin = fromLast ? end - 1 : begin;
        pushWave(waves, spare,
                 FloodFillWave(firstX + (alongX ? origin : 0), firstY + (alongX ? 0 : origin),
                               end - begin, dx, dy));
        begin = bits.next(end);
    }
}

}  // namespace

SmartImageFloodFillAlg::SmartImageFloodFillAlg() : table_(tolerance_, smoothEdges_) {}
SmartImageFloodFillAlg::~SmartImageFloodFillAlg() = default;

void SmartImageFloodFillAlg::setImages(ilSmartImage& source, ilSmartImage& mask) {
    source_ = Ref<ilSmartImage>(&source);
    mask_ = Ref<ilSmartImage>(&mask);
    source.bounds(bounds_);
    bounds_ = clippedToLimit(bounds_);
    grid_ = PageGrid(bounds_);
}

void SmartImageFloodFillAlg::setSeed(std::int32_t x, std::int32_t y) {
    seedX_ = x;
    seedY_ = y;
}

void SmartImageFloodFillAlg::setTolerance(std::uint8_t tolerance) {
    if (tolerance == tolerance_) return;
    tolerance_ = tolerance;
    table_ = CoverageTable(tolerance_, smoothEdges_);
}

void SmartImageFloodFillAlg::setSmoothEdges(bool smooth) {
    smoothEdges_ = smooth;
    table_ = CoverageTable(tolerance_, smoothEdges_);
}

void SmartImageFloodFillAlg::run() {
    const ImageLockScope lock;
    if (!prepare()) return;
    startAtSeed();
    while (!pending_.empty()) {
        const std::int32_t page = nextPage(pending_);
        pending_.remove(page);
        takeWaves(page, grid_.pageX(page), grid_.pageY(page));
        enterPage(page);
    }
    coverPages();
    forget();
}

bool SmartImageFloodFillAlg::prepare() {
    if (!source_ || !mask_ || source_.get() == mask_.get() || mask_->channels() != 1) return false;
    const bool isInside = intersection(bounds_, flatTile(seedX_, seedY_, 1, 1)).nx == 1 &&
                          intersection(bounds_, flatTile(seedX_, seedY_, 1, 1)).ny == 1;
    if (bounds_.isEmpty() || !isInside) return false;
    try {
        const auto count = static_cast<std::size_t>(grid_.pageCount());
        pageMasks_.resize(count);
        states_.resize(count);
    } catch (const std::bad_alloc&) {
        forget();
        return false;
    }
    if (!pending_.reset(grid_.pageCount())) return false;
    target_ = ColorTarget(source_->getPixel(seedX_, seedY_), source_->channels());
    return true;
}

void SmartImageFloodFillAlg::forget() {
    pageMasks_.clear();
    states_.clear();
    waves_.clear();
    spareWaves_.clear();
    spareMask_.reset();
}

void SmartImageFloodFillAlg::startAtSeed() {
    const std::int32_t page = grid_.indexOf(seedX_, seedY_);
    const std::int32_t x = seedX_ - grid_.pageX(page);
    const std::int32_t y = seedY_ - grid_.pageY(page);
    constexpr std::int32_t directions[4][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
    for (const auto& [dx, dy] : directions)
        pushWave(waves_, spareWaves_, FloodFillWave(x, y, 1, dx, dy));
    enterPage(page);
    if (method_ == Method::Rows || states_[static_cast<std::size_t>(page)].closed) return;
    const MaskLock lock(*mask_, flatTile(grid_.pageX(page), grid_.pageY(page), 1, 1));
    if (lock.coverage()) lock.coverage()[y * pageSide + x] = 255;
}

void SmartImageFloodFillAlg::enterPage(std::int32_t index) {
    MaskPage maskPage = maskPageOf(index);
    floodPage(maskPage, maskPage.tile.x, maskPage.tile.y, waves_);
    dropWaves(waves_, spareWaves_);
    afterPage(index, maskPage.tile.x, maskPage.tile.y);
}

SmartImageFloodFillAlg::MaskPage SmartImageFloodFillAlg::maskPageOf(std::int32_t index) {
    MaskPage page{};
    page.index = index;
    page.tile = flatTile(grid_.pageX(index), grid_.pageY(index), pageSide, pageSide);
    page.inside = intersection(page.tile, bounds_);
    page.inside.x -= page.tile.x;
    page.inside.y -= page.tile.y;
    if (states_[static_cast<std::size_t>(index)].reach) return page;
    std::uint32_t value = 0;
    page.mixed = !mask_->isSolid(page.tile, value, false);
    page.coverage = static_cast<std::uint8_t>(value);
    return page;
}

void SmartImageFloodFillAlg::takeWaves(std::int32_t page, std::int32_t x, std::int32_t y) {
    static_cast<void>(x);
    static_cast<void>(y);
    std::unique_ptr<PageBorderBitMask> mask = std::move(pageMasks_[static_cast<std::size_t>(page)]);
    if (!mask) return;
    pushRuns(waves_, spareWaves_, mask->left, -1, 0, 1, 0);
    pushRuns(waves_, spareWaves_, mask->right, pageSide, 0, -1, 0);
    pushRuns(waves_, spareWaves_, mask->above, 0, -1, 0, 1);
    pushRuns(waves_, spareWaves_, mask->below, 0, pageSide, 0, -1);
    *mask = {};
    spareMask_ = std::move(mask);
}

void SmartImageFloodFillAlg::floodPage(MaskPage& maskPage, std::int32_t x, std::int32_t y,
                                       Waves& waves) {
    PageState& state = states_[static_cast<std::size_t>(maskPage.index)];
    if (state.closed) return;
    if (state.reach) {
        handOn(maskPage, state.reach->run(waves, front_));
        return;
    }
    const PageInput input(*source_, x, y);
    if (!input) {
        state.closed = true;
        return;
    }
    const std::optional<PageBorderBitMask> whole = fillWhole(maskPage, input);
    if (whole)
        handOn(maskPage, *whole);
    else if (method_ == Method::Waves)
        handOn(maskPage, runWaves(maskPage, input, waves));
    else
        handOn(maskPage, runRows(maskPage, input, waves));
}

std::optional<PageBorderBitMask> SmartImageFloodFillAlg::fillWhole(const MaskPage& maskPage,
                                                                   const PageInput& input) {
    std::uint32_t value = 0;
    if (maskPage.mixed || !input.isUniform(method_ == Method::Rows, value)) return std::nullopt;
    const std::uint8_t distance = colorDistance(value, target_);
    const std::uint8_t wanted = table_[distance];
    const bool open = smoothEdges_ ? wanted > maskPage.coverage : maskPage.coverage < 255;
    const bool stops = !open || distance >= table_.stop();
    if (stops && wanted > maskPage.coverage) return std::nullopt;
    states_[static_cast<std::size_t>(maskPage.index)].closed = true;
    if (stops) return PageBorderBitMask{};
    const ilTile& inside = maskPage.inside;
    const ilTile part = intersection(maskPage.tile, bounds_);
    if (mask_->fillRegion(part, pixelOfWord(1, wanted)) != ImageOk) return PageBorderBitMask{};
    PageBorderBitMask out;
    const BitRow rows = BitRow::range(inside.y, inside.endY());
    const BitRow columns = BitRow::range(inside.x, inside.endX());
    if (inside.x == 0) out.left = rows;
    if (inside.endX() == pageSide) out.right = rows;
    if (inside.y == 0) out.above = columns;
    if (inside.endY() == pageSide) out.below = columns;
    return out;
}

FloodedPage SmartImageFloodFillAlg::flooded(const MaskPage& maskPage, const PageInput& input,
                                            std::uint8_t* coverage) const {
    return {input.pixels(), input.solid(), coverage,    maskPage.inside,
            target_,        table_,        smoothEdges_};
}

PageBorderBitMask SmartImageFloodFillAlg::runWaves(const MaskPage& maskPage, const PageInput& input,
                                                   Waves& waves) {
    const MaskLock lock(*mask_, maskPage.tile);
    if (!lock.coverage()) return {};
    const FloodedPage page = flooded(maskPage, input, lock.coverage());
    return WaveLoop(page).run(waves);
}

PageBorderBitMask SmartImageFloodFillAlg::runRows(const MaskPage& maskPage, const PageInput& input,
                                                  Waves& waves) {
    PageState& state = states_[static_cast<std::size_t>(maskPage.index)];
    if (maskPage.mixed || maskPage.coverage != 0) {
        const MaskLock lock(*mask_, maskPage.tile);
        if (lock.coverage()) state.reach = openPixels(flooded(maskPage, input, lock.coverage()));
    } else {
        state.reach = openPixels(flooded(maskPage, input, nullptr));
    }
    if (!state.reach) {
        state.closed = true;
        return {};
    }
    return state.reach->run(waves, front_);
}

void SmartImageFloodFillAlg::handOn(const MaskPage& maskPage, const PageBorderBitMask& sides) {
    const ilTile& tile = maskPage.tile;
    handTo(tile.x - pageSide, tile.y, &PageBorderBitMask::right, sides.left);
    handTo(tile.x + pageSide, tile.y, &PageBorderBitMask::left, sides.right);
    handTo(tile.x, tile.y - pageSide, &PageBorderBitMask::below, sides.above);
    handTo(tile.x, tile.y + pageSide, &PageBorderBitMask::above, sides.below);
}

void SmartImageFloodFillAlg::handTo(std::int32_t x, std::int32_t y, BitRow PageBorderBitMask::*side,
                                    BitRow bits) {
    const std::int32_t page = bits.any() ? grid_.indexOf(x, y) : -1;
    if (page < 0 || states_[static_cast<std::size_t>(page)].closed) return;
    std::unique_ptr<PageBorderBitMask>& mask = pageMasks_[static_cast<std::size_t>(page)];
    if (!mask) mask = std::move(spareMask_);
    if (!mask) mask.reset(new (std::nothrow) PageBorderBitMask);
    if (!mask) return;
    (*mask).*side |= bits;
    pending_.insert(page);
}

void SmartImageFloodFillAlg::coverPages() {
    for (std::int32_t index = 0; index < grid_.pageCount(); ++index)
        if (const auto& reach = states_[static_cast<std::size_t>(index)].reach)
            coverPage(index, *reach);
}

void SmartImageFloodFillAlg::coverPage(std::int32_t index, const PageReach& reach) {
    const MaskPage maskPage = maskPageOf(index);
    const PageInput input(*source_, maskPage.tile.x, maskPage.tile.y);
    if (!input) return;
    const MaskLock lock(*mask_, maskPage.tile);
    if (lock.coverage()) coverReached(reach, flooded(maskPage, input, lock.coverage()));
}

void SmartImageFloodFillAlg::afterPage(std::int32_t, std::int32_t, std::int32_t) {}

std::int32_t SmartImageFloodFillAlg::nextPage(const PageQueue& waiting) {
    return waiting.first();
}

}  // namespace brushwork
