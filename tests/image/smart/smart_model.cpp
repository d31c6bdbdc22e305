#include "image/smart/smart_model.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <sstream>

namespace brushwork::test {
namespace {

constexpr std::int32_t limit = 102400;
constexpr ilTile noTile{0, 0, 0, 0, 0, 1};

ilTile grown(const ilTile& box, std::int32_t side) {
    ilTile whole = box;
    whole.x = box.x & ~(side - 1);
    whole.y = box.y & ~(side - 1);
    whole.nx = ((box.endX() + side - 1) & ~(side - 1)) - whole.x;
    whole.ny = ((box.endY() + side - 1) & ~(side - 1)) - whole.y;
    return whole;
}

bool holds(const ilTile& box, std::int32_t x, std::int32_t y) {
    return x >= box.x && x < box.endX() && y >= box.y && y < box.endY();
}

}  // namespace

std::uint8_t ModelMemory::value(std::int32_t x, std::int32_t y, std::int32_t c) const {
    if (x < 0 || y < 0 || x >= width || y >= height)
        return static_cast<std::uint8_t>(fill >> 8 * c);
    return bytes[static_cast<std::size_t>((y * width + x) * channels + c)];
}

void ModelMemory::setValue(std::int32_t x, std::int32_t y, std::int32_t c, std::uint8_t value) {
    if (x < 0 || y < 0 || x >= width || y >= height) return;
    bytes[static_cast<std::size_t>((y * width + x) * channels + c)] = value;
}

ModelImage::ModelImage(const ModelWindow& window, std::int32_t channels, std::uint32_t fill)
    : window_(window),
      channels_(channels),
      fill_(channels == 1 ? fill & 0xFF : fill),
      slots_(static_cast<std::size_t>(window.side * window.side)),
      inherited_(flatTile(-limit, -limit, 2 * limit, 2 * limit)) {
    default_ = uniformPage(fill_);
}

ModelImage::ModelImage(const std::shared_ptr<ModelImage>& parent)
    : ModelImage(parent->window_, parent->channels_, parent->fill_) {
    parent_ = parent;
    hasFixed_ = parent->hasFixed_;
    fixed_ = parent->fixed_;
    bounds_ = initial_ = parent->bounds_;
}

ModelImage::ModelImage(const ModelWindow& window, const std::shared_ptr<ModelMemory>& parent)
    : ModelImage(window, parent->channels, parent->fill) {
    memory_ = parent;
    bounds_ = initial_ = flatTile(0, 0, parent->width, parent->height);
}

bool ModelImage::descendsFrom(const ModelImage& image) const {
    for (const ModelImage* step = parent_.get(); step; step = step->parent_.get())
        if (step == &image) return true;
    return false;
}

ilTile ModelImage::clipped(const ilTile& box) {
    const std::int32_t x = std::clamp(box.x, -limit, limit);
    const std::int32_t y = std::clamp(box.y, -limit, limit);
    return flatTile(x, y, std::clamp(box.endX(), x, limit) - x,
                    std::clamp(box.endY(), y, limit) - y);
}

ModelPageRef ModelImage::uniformPage(std::uint32_t value) const {
    auto page = std::make_shared<ModelPage>();
    page->bytes.resize(static_cast<std::size_t>(side * side * channels_),
                       static_cast<std::uint8_t>(value));
    for (std::size_t n = 0; channels_ > 1 && n < page->bytes.size();
         n += static_cast<std::size_t>(channels_))
        store(page->bytes.data() + n, value);
    return page;
}

std::uint32_t ModelImage::load(const std::uint8_t* at) const {
    std::uint32_t value = 0;
    std::memcpy(&value, at, static_cast<std::size_t>(channels_));
    return value;
}

void ModelImage::store(std::uint8_t* at, std::uint32_t value) const {
    std::memcpy(at, &value, static_cast<std::size_t>(channels_));
}

ModelPageRef* ModelImage::slot(std::int32_t x, std::int32_t y) {
    const std::int32_t column = (x - window_.x) / side;
    const std::int32_t row = (y - window_.y) / side;
    if (x < window_.x || y < window_.y || column >= window_.side || row >= window_.side)
        return nullptr;
    return &slots_[static_cast<std::size_t>(row * window_.side + column)];
}

bool ModelImage::asksParent(std::int32_t x, std::int32_t y) const {
    const ilTile tile = flatTile(x, y, side, side);
    return (parent_ || memory_) && !intersection(tile, bounds_).isEmpty() &&
           !intersection(tile, initial_).isEmpty() && !intersection(tile, inherited_).isEmpty();
}

ModelPageRef ModelImage::parentPage(std::int32_t x, std::int32_t y) {
    if (parent_) {
        const ModelPageRef shown = parent_->page(x, y, false);
        const ilTile grownTo = intersection(flatTile(x, y, side, side), parent_->bounds_);
        if (!grownTo.isEmpty()) grow(grownTo);
        return shown;
    }
    ModelPageRef read = uniformPage(0);
    for (std::int32_t py = y; py < y + side; ++py)
        for (std::int32_t px = x; px < x + side; ++px)
            for (std::int32_t c = 0; c < channels_; ++c)
                place(*read, px, py)[c] = memory_->value(px, py, c);
    return read;
}

ModelPageRef ModelImage::page(std::int32_t x, std::int32_t y, bool create) {
    if (x < -limit || y < -limit || x >= limit || y >= limit) return default_;
    const bool inside = !intersection(flatTile(x, y, side, side), bounds_).isEmpty();
    ModelPageRef* const found = slot(x, y);
    if (!found || (!create && !inside)) return default_;
    if (!*found) *found = asksParent(x, y) ? parentPage(x, y) : default_;
    return *found;
}

ModelPage& ModelImage::ownPage(std::int32_t x, std::int32_t y) {
    page(x, y, true);
    ModelPageRef& found = *slot(x, y);
    if (found.use_count() > 1) found = std::make_shared<ModelPage>(*found);
    return *found;
}

std::uint8_t* ModelImage::place(ModelPage& page, std::int32_t x, std::int32_t y) const {
    const std::int32_t index = (y & (side - 1)) * side + (x & (side - 1));
    return page.bytes.data() + static_cast<std::ptrdiff_t>(index) * channels_;
}

void ModelImage::lookUp(const ilTile& box, bool create) {
    eachPage(box, [&](std::int32_t x, std::int32_t y) { page(x, y, create); });
}

std::uint32_t ModelImage::pixel(std::int32_t x, std::int32_t y) {
    return load(place(*page(x & ~(side - 1), y & ~(side - 1), false), x, y));
}

std::uint8_t ModelImage::value(std::int32_t x, std::int32_t y, std::int32_t c) {
    return static_cast<std::uint8_t>(pixel(x, y) >> 8 * c);
}

void ModelImage::read(const ilTile& box, std::uint8_t* bytes) {
    eachPage(box, [&](std::int32_t px, std::int32_t py) {
        const ModelPageRef from = page(px, py, false);
        const ilTile part = intersection(flatTile(px, py, side, side), box);
        for (std::int32_t y = part.y; y < part.endY(); ++y)
            std::memcpy(bytes + ((y - box.y) * box.nx + part.x - box.x) * channels_,
                        place(*from, part.x, y), static_cast<std::size_t>(part.nx * channels_));
    });
}

void ModelImage::grow(const ilTile& box) {
    if (hasFixed_)
        bounds_ = fixed_;
    else if (!box.isEmpty())
        bounds_ = bounds_.isEmpty() ? box : unionOf(bounds_, box);
}

void ModelImage::setPixel(std::int32_t x, std::int32_t y, std::uint32_t value) {
    const ilTile inside = clipped(flatTile(x, y, 1, 1));
    if (inside.isEmpty()) return;
    store(place(ownPage(x & ~(side - 1), y & ~(side - 1)), x, y), value);
    modified_ = unionOf(modified_, inside);
    grow(inside);
}

void ModelImage::write(const ilTile& box, const std::uint8_t* bytes) {
    const ilTile inside = clipped(box);
    if (inside.isEmpty()) return;
    modified_ = unionOf(modified_, inside);
    lookUp(inside, true);
    eachPage(inside, [&](std::int32_t px, std::int32_t py) {
        ModelPage& own = ownPage(px, py);
        const ilTile part = intersection(flatTile(px, py, side, side), inside);
        for (std::int32_t y = part.y; y < part.endY(); ++y)
            std::memcpy(place(own, part.x, y),
                        bytes + ((y - box.y) * box.nx + part.x - box.x) * channels_,
                        static_cast<std::size_t>(part.nx * channels_));
    });
    grow(inside);
}

void ModelImage::fillBox(const ilTile& box, std::uint32_t value, const ilTile* keepOut) {
    if (keepOut && keepOut->contains(box)) return;
    if (channels_ == 1) value &= 0xFF;
    const ilTile inside = clipped(box);
    const bool hasKeep = keepOut && !keepOut->isEmpty();
    bool touched = false;
    if (!inside.isEmpty()) modified_ = unionOf(modified_, inside);
    lookUp(inside, true);
    eachPage(inside, [&](std::int32_t px, std::int32_t py) {
        const ilTile tile = flatTile(px, py, side, side);
        const ilTile part = intersection(tile, inside);
        if (keepOut && keepOut->contains(part)) return;
        touched = true;
        const bool whole = part == tile && (!hasKeep || intersection(tile, *keepOut).isEmpty());
        if (whole && value == fill_) needsShrink_ = true;
        if (!whole && *slot(px, py) == default_ && value == fill_) return;
        ModelPage& own = ownPage(px, py);
        for (std::int32_t y = part.y; y < part.endY(); ++y)
            for (std::int32_t x = part.x; x < part.endX(); ++x)
                if (!hasKeep || !holds(*keepOut, x, y)) store(place(own, x, y), value);
    });
    if (touched)
        grow(inside);
    else if (keepOut && box.contains(bounds_))
        setBounds(intersection(bounds_, clipped(*keepOut)), false);
}

void ModelImage::fillChannels(const ilTile& box, std::uint32_t value, std::int32_t first,
                              std::int32_t count, const ilTile* keepOut) {
    if (keepOut && keepOut->contains(box)) return;
    const bool hasKeep = keepOut && !keepOut->isEmpty();
    const ilTile inside = clipped(box);
    if (inside.isEmpty()) return;
    modified_ = unionOf(modified_, inside);
    lookUp(inside, true);
    bool touched = false;
    eachPage(inside, [&](std::int32_t px, std::int32_t py) {
        const ilTile part = intersection(flatTile(px, py, side, side), inside);
        if (keepOut && keepOut->contains(part)) return;
        touched = true;
        ModelPage& own = ownPage(px, py);
        for (std::int32_t y = part.y; y < part.endY(); ++y)
            for (std::int32_t x = part.x; x < part.endX(); ++x)
                for (std::int32_t c = first; c < first + count; ++c)
                    if (!hasKeep || !holds(*keepOut, x, y))
                        place(own, x, y)[c] = static_cast<std::uint8_t>(value >> 8 * (c - first));
    });
    if (touched) grow(inside);
}

// A source of the same channels. Aligned whole pages are the very pages of the source.
void ModelImage::copyIn(const ilTile& box, ModelImage& source, std::int32_t dx, std::int32_t dy) {
    const ilTile inside = clipped(box);
    if (inside.isEmpty()) return;
    if (&source == this) {
        const std::shared_ptr<ModelImage> before = clone();
        copyIn(box, *before, dx, dy);
        return;
    }
    ilTile there = inside;
    there.x += dx;
    there.y += dy;
    if (source.descendsFrom(*this)) source.lookUp(clipped(there));
    const bool aligned = dx % side == 0 && dy % side == 0;
    modified_ = unionOf(modified_, inside);
    lookUp(inside, true);
    std::vector<std::uint8_t> bytes;
    eachPage(inside, [&](std::int32_t px, std::int32_t py) {
        const ilTile tile = flatTile(px, py, side, side);
        ilTile part = intersection(tile, inside);
        if (aligned && part == tile) {
            *slot(px, py) = source.page(px + dx, py + dy, false);
            return;
        }
        ModelPage& own = ownPage(px, py);
        bytes.resize(static_cast<std::size_t>(part.nx * part.ny * channels_));
        source.read(flatTile(part.x + dx, part.y + dy, part.nx, part.ny), bytes.data());
        for (std::int32_t y = 0; y < part.ny; ++y)
            std::memcpy(place(own, part.x, part.y + y), bytes.data() + y * part.nx * channels_,
                        static_cast<std::size_t>(part.nx * channels_));
    });
    grow(inside);
}

void ModelImage::lockPage(std::int32_t x, std::int32_t y, bool write) {
    x &= ~(side - 1);
    y &= ~(side - 1);
    const ilTile tile = clipped(flatTile(x, y, side, side));
    if (tile.isEmpty()) return;
    page(x, y, true);
    if (write) {
        ownPage(x, y);
        modified_ = unionOf(modified_, tile);
    }
    grow(tile);
}

void ModelImage::setFill(std::uint32_t value) {
    if (channels_ == 1) value &= 0xFF;
    if (value != fill_) {
        fill_ = value;
        const ModelPageRef former = default_;
        default_ = uniformPage(value);
        for (ModelPageRef& page : slots_)
            if (page == former) page = default_;
    }
    if (bounds_.isEmpty() || grown(bounds_, side) == bounds_) return;
    const ilTile content = bounds_;
    fillBox(grown(bounds_, side), value, &content);
    setBounds(content, false);
}

void ModelImage::push() {
    lookUp(modified_);
    const auto eachModified = [&](auto&& visit) { eachPage(modified_, visit); };
    if (memory_) {
        eachModified([&](std::int32_t px, std::int32_t py) {
            const ModelPageRef from = page(px, py, false);
            for (std::int32_t y = py; y < py + side; ++y)
                for (std::int32_t x = px; x < px + side; ++x)
                    for (std::int32_t c = 0; c < channels_; ++c)
                        memory_->setValue(x, y, c, place(*from, x, y)[c]);
        });
        return;
    }
    ModelImage& to = *parent_;
    to.setFill(fill_);
    if (to.bounds_ != bounds_) {
        to.fillBox(to.bounds_, fill_, &bounds_);
        to.setBounds(to.hasFixed_ ? to.fixed_ : bounds_, false);
    }
    eachModified([&](std::int32_t px, std::int32_t py) {
        const ilTile tile = flatTile(px, py, side, side);
        if (intersection(tile, bounds_).isEmpty()) return;
        ModelPageRef from = page(px, py, false);
        to.page(px, py, true);
        ModelPageRef& slot = *to.slot(px, py);
        if (slot == from) return;
        slot = from == default_ ? to.default_ : from;
        to.modified_ = unionOf(to.modified_, tile);
        to.grow(tile);
    });
}

bool ModelImage::collapse() {
    const std::shared_ptr<ModelImage> middle = parent_;
    if (!middle || (!middle->parent_ && !middle->memory_)) return false;
    middle->push();
    setSource(middle->parent_, middle->memory_);
    return true;
}

void ModelImage::setSource(const std::shared_ptr<ModelImage>& parent,
                           const std::shared_ptr<ModelMemory>& memory) {
    parent_ = parent;
    memory_ = memory;
}

std::shared_ptr<ModelImage> ModelImage::clone() {
    auto copy = std::make_shared<ModelImage>(window_, channels_, fill_);
    lookUp(bounds_);
    copy->bounds_ = copy->modified_ = bounds_;
    eachPage(bounds_, [&](std::int32_t x, std::int32_t y) {
        const ModelPageRef from = page(x, y, false);
        if (from != default_) *copy->slot(x, y) = from;
    });
    return copy;
}

void ModelImage::setBounds(const ilTile& box, bool forceTrim) {
    ilTile next = clipped(box);
    if (box.isEmpty() || next.isEmpty()) next = noTile;
    const bool holdsOld = bounds_.isEmpty() || next.contains(bounds_);
    if (forceTrim || !holdsOld) trim(next);
    bounds_ = next;
}

void ModelImage::trim(const ilTile& box) {
    const ilTile window = flatTile(window_.x, window_.y, window_.side * side, window_.side * side);
    if (!box.isEmpty()) {
        eachPage(box, [&](std::int32_t x, std::int32_t y) {
            if (!box.contains(flatTile(x, y, side, side)) && asksParent(x, y)) page(x, y, false);
        });
    }
    eachPage(window, [&](std::int32_t x, std::int32_t y) {
        const ilTile tile = flatTile(x, y, side, side);
        ModelPageRef& found = *slot(x, y);
        if (!found || box.contains(tile)) return;
        if (intersection(tile, box).isEmpty())
            found.reset();
        else
            cutPage(x, y, box);
    });
    if (!bounds_.isEmpty()) inherited_ = intersection(inherited_, bounds_);
    inherited_ = intersection(inherited_, box);
}

void ModelImage::cutPage(std::int32_t px, std::int32_t py, const ilTile& box) {
    ModelPageRef& found = *slot(px, py);
    const auto each = [&](ModelPage& page, auto&& visit) {
        for (std::int32_t y = py; y < py + side; ++y)
            for (std::int32_t x = px; x < px + side; ++x)
                if (!holds(box, x, y)) visit(place(page, x, y));
    };
    bool differs = false;
    each(*found, [&](const std::uint8_t* at) { differs = differs || load(at) != fill_; });
    if (!differs) return;
    if (found.use_count() > 1) found = std::make_shared<ModelPage>(*found);
    each(*found, [&](std::uint8_t* at) { store(at, fill_); });
}

void ModelImage::setFixedBounds(const ilTile& box) {
    const ilTile inside = clipped(box);
    fixed_ = inside.isEmpty() ? noTile : inside;
    hasFixed_ = true;
    setBounds(fixed_, false);
}

void ModelImage::growToPages(std::int32_t margin) {
    if (bounds_.isEmpty()) return;
    grow(clipped(grown(flatTile(bounds_.x - margin, bounds_.y - margin, bounds_.nx + 2 * margin,
                                bounds_.ny + 2 * margin),
                       side)));
}

bool ModelImage::isFillPart(ModelPage& page, const ilTile& part) const {
    if (load(place(page, part.x, part.y)) != fill_) return false;
    for (std::int32_t y = part.y; y < part.endY(); ++y)
        for (std::int32_t x = part.x; x < part.endX(); ++x)
            if (load(place(page, x, y)) != fill_) return false;
    return true;
}

bool ModelImage::adoptShrink(const ilTile& real) {
    needsShrink_ = false;
    if ((channels_ == 1 && fill_ != 0) || bounds_.isEmpty() || hasFixed_) return real == bounds_;
    lookUp(bounds_);
    ilTile used = noTile;
    eachPage(bounds_, [&](std::int32_t x, std::int32_t y) {
        const ilTile tile = flatTile(x, y, side, side);
        if (!isFillPart(*page(x, y, false), tile)) used = unionOf(used, tile);
    });
    const ilTile least = used.isEmpty() ? noTile : intersection(bounds_, used);
    if (real.isEmpty()) {
        if (!least.isEmpty()) return false;
    } else {
        const auto onEdge = [](std::int32_t place, std::int32_t old) {
            return place == old || place % side == 0;
        };
        if (!bounds_.contains(real) || (!least.isEmpty() && !real.contains(least)) ||
            !onEdge(real.x, bounds_.x) || !onEdge(real.y, bounds_.y) ||
            !onEdge(real.endX(), bounds_.endX()) || !onEdge(real.endY(), bounds_.endY()))
            return false;
    }
    setBounds(real, false);
    return true;
}

bool ModelImage::passes(const std::uint8_t* at, std::int32_t stride, std::int32_t count) const {
    const std::ptrdiff_t step = std::ptrdiff_t{stride} * channels_;
    for (; count >= 4; count -= 4, at += 4 * step) {
        std::uint64_t sum = 0;
        for (int n = 0; n < 4; ++n) sum += load(at + n * step);
        if (sum != std::uint64_t{4} * fill_) return false;
    }
    for (; count > 0; --count, at += step)
        if (load(at) != fill_) return false;
    return true;
}

bool ModelImage::rowIsFill(std::int32_t y, std::int32_t x, std::int32_t endX) {
    for (std::int32_t px = x & ~(side - 1); px < endX; px += side) {
        const std::int32_t from = std::max(x, px);
        const std::int32_t to = std::min(endX, px + side);
        if (!passes(place(*page(px, y & ~(side - 1), false), from, y), 1, to - from)) return false;
    }
    return true;
}

bool ModelImage::columnIsFill(std::int32_t x, std::int32_t y, std::int32_t endY) {
    for (std::int32_t py = y & ~(side - 1); py < endY; py += side)
        if (!passes(place(*page(x & ~(side - 1), py, false), x, py), side, side)) return false;
    return true;
}

// Pages of nothing but fill are left out first, as far as they can be.
void ModelImage::shrinkToPixels(bool force) {
    if (hasFixed_ || (channels_ == 1 && fill_ != 0 && !force)) return;
    for (;;) {
        const ilTile before = bounds_;
        if (before.isEmpty()) break;
        needsShrink_ = false;
        if (channels_ != 1 || fill_ == 0) {
            lookUp(bounds_);
            ilTile used = noTile;
            eachPage(bounds_, [&](std::int32_t x, std::int32_t y) {
                const ilTile tile = flatTile(x, y, side, side);
                if (!isFillPart(*page(x, y, false), tile)) used = unionOf(used, tile);
            });
            setBounds(used.isEmpty() ? noTile : intersection(bounds_, used), false);
        }
        ilTile box = bounds_;
        while (box.ny > 0 && rowIsFill(box.endY() - 1, box.x, box.endX())) --box.ny;
        while (!box.isEmpty() && columnIsFill(box.endX() - 1, box.y, box.endY())) --box.nx;
        for (; !box.isEmpty() && rowIsFill(box.y, box.x, box.endX()); --box.ny) ++box.y;
        for (; !box.isEmpty() && columnIsFill(box.x, box.y, box.endY()); --box.nx) ++box.x;
        setBounds(box, false);
        if (bounds_ == before) break;
    }
    if (!bounds_.isEmpty()) return;
    std::fill(slots_.begin(), slots_.end(), nullptr);
    inherited_ = noTile;
}

void ModelImage::sanitize() {
    std::array<int, 4> counts{};
    const auto faultOf = [&](std::int32_t px, std::int32_t py) {
        const ModelPageRef seen = page(px, py, false);
        const ilTile part = intersection(flatTile(px, py, side, side), bounds_);
        int most = 0;
        bool alpha = false;
        for (std::int32_t y = part.y; y < part.endY(); ++y)
            for (std::int32_t x = part.x; x < part.endX(); ++x) {
                const std::uint8_t* at = place(*seen, x, y);
                for (int c = 0; c < 3; ++c) most = std::max(most, at[c] - at[3]);
                alpha = alpha || at[3] != 0;
            }
        return most == 0 ? 0 : most < 3 ? 1 : alpha ? 2 : 3;
    };
    eachPage(bounds_, [&](std::int32_t x, std::int32_t y) {
        ++counts[static_cast<std::size_t>(faultOf(x, y))];
    });
    const int a = counts[1], b = counts[2], c = counts[3];
    if (a == 0 && b == 0 && c == 0) return;
    int mode = 1;
    if (a != 0 || b == 0)
        mode = 2;
    else if (c == 0)
        mode = 3;
    modified_ = unionOf(modified_, bounds_);
    lookUp(bounds_, true);
    eachPage(bounds_, [&](std::int32_t px, std::int32_t py) {
        const ilTile part = intersection(flatTile(px, py, side, side), bounds_);
        const ModelPageRef seen = page(px, py, false);
        ModelPage changed = *seen;
        for (std::int32_t y = part.y; y < part.endY(); ++y)
            for (std::int32_t x = part.x; x < part.endX(); ++x) {
                std::uint8_t* at = place(changed, x, y);
                if (mode == 1) at[3] = 255;
                if (mode == 2) at[3] = std::max({at[0], at[1], at[2], at[3]});
                for (int n = 0; mode == 3 && n < 3; ++n) {
                    const float factor = static_cast<float>(at[3]) / 255.0f;
                    at[n] = static_cast<std::uint8_t>(static_cast<float>(at[n]) * factor);
                }
            }
        if (changed.bytes != seen->bytes)
            *slot(px, py) = std::make_shared<ModelPage>(std::move(changed));
    });
}

bool ModelImage::isSolid(const ilTile& box, std::uint32_t& value) {
    const ilTile inside = clipped(box);
    if (inside.isEmpty()) return false;
    lookUp(inside);
    value = pixel(inside.x, inside.y);
    for (std::int32_t y = inside.y; y < inside.endY(); ++y)
        for (std::int32_t x = inside.x; x < inside.endX(); ++x)
            if (pixel(x, y) != value) return false;
    return true;
}

std::int32_t ModelImage::alphaClass(const ilTile& box) {
    const ilTile inside = clipped(box);
    if (inside.isEmpty()) return 3;
    lookUp(inside);
    if (channels_ != 4) return 0;
    const std::uint8_t first = value(inside.x, inside.y, 3);
    if (first != 0 && first != 255) return 0;
    for (std::int32_t y = inside.y; y < inside.endY(); ++y)
        for (std::int32_t x = inside.x; x < inside.endX(); ++x)
            if (value(x, y, 3) != first) return 0;
    return first == 0 ? 1 : 2;
}

std::string ModelImage::describe() const {
    std::ostringstream text;
    text << channels_ << " channels, fill " << std::hex << fill_ << std::dec << ", bounds "
         << bounds_.x << ' ' << bounds_.y << ' ' << bounds_.nx << ' ' << bounds_.ny
         << (parent_   ? ", child"
             : memory_ ? ", over memory"
                       : "")
         << (hasFixed_ ? ", fixed" : "");
    return text.str();
}

}  // namespace brushwork::test
