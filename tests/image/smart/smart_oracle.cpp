#include "image/smart/smart_oracle.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "image/cache/smart_image_cache.h"

namespace brushwork::test {

SmartOracle::SmartOracle(std::uint64_t seed) : seed_(seed), random_(seed) {
    constexpr std::int32_t edge = coordinateLimit;
    const std::array<ModelWindow, 4> places{{{-2 * side, -2 * side, 5},
                                             {edge - 3 * side, -2 * side, 5},
                                             {-edge - 2 * side, edge - 3 * side, 5},
                                             {2048 - 3 * side, -2048 - 2 * side, 5}}};
    if (const char* const often = std::getenv("BRUSHWORK_ORACLE_CHECK"))
        checkEvery_ = std::max<std::uint64_t>(1, std::strtoull(often, nullptr, 10));
    window_ = places[static_cast<std::size_t>(chance(60) ? 0 : pick(0, 3))];
    SmartImageCache::instance().setCeiling(static_cast<std::uint64_t>(pick(2, 14)) * 65536);
}

SmartOracle::~SmartOracle() {
    nodes_.clear();
    memories_.clear();
    SmartImageCache::instance().setCeiling(0);
}

std::string SmartOracle::run(std::uint64_t operations) {
    for (std::uint64_t n = 0; n < operations && failure_.empty(); ++n) {
        last_.clear();
        step();
        if (n % checkEvery_ == checkEvery_ - 1) checkAll();
        if (!failure_.empty()) {
            std::ostringstream text;
            text << "seed " << seed_ << ", operation " << n << ": " << last_ << ": " << failure_;
            failure_ = text.str();
        }
    }
    if (failure_.empty()) checkAll();
    while (!nodes_.empty()) nodes_.pop_back();
    return failure_;
}

std::string SmartOracle::textOf(const ilTile& box) {
    std::ostringstream text;
    text << '(' << box.x << ' ' << box.y << ' ' << box.nx << ' ' << box.ny << ')';
    return text.str();
}

void SmartOracle::expect(bool holds, const std::string& what) {
    if (!holds && failure_.empty()) failure_ = what;
}

// A counter, mixed.
std::uint64_t SmartOracle::random() {
    std::uint64_t z = random_ += 0x9E3779B97F4A7C15;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
}

std::int32_t SmartOracle::pick(std::int32_t least, std::int32_t most) {
    return least +
           static_cast<std::int32_t>(random() % static_cast<std::uint64_t>(most - least + 1));
}

// Few values, so that pages become uniform and sums meet by chance.
std::uint32_t SmartOracle::colour() {
    constexpr std::array<std::uint32_t, 8> few{0,          0,          0x02020202, 0xFFFFFFFF,
                                               0xFF000000, 0x80402010, 0x00FFFFFF, 0x01010101};
    return chance(85) ? few[static_cast<std::size_t>(pick(0, 7))]
                      : static_cast<std::uint32_t>(random());
}

ilTile SmartOracle::box() {
    const std::int32_t all = window_.side * side;
    if (chance(25)) {
        // Whole pages.
        const std::int32_t x = pick(0, window_.side - 1), y = pick(0, window_.side - 1);
        return flatTile(window_.x + x * side, window_.y + y * side,
                        side * pick(1, std::min(chance(80) ? 1 : 3, window_.side - x)),
                        side * pick(1, std::min(chance(80) ? 1 : 3, window_.side - y)));
    }
    const std::int32_t most = chance(4) ? all : chance(25) ? 150 : 20;
    const std::int32_t nx = pick(1, most), ny = pick(1, most);
    return flatTile(window_.x + pick(0, all - nx), window_.y + pick(0, all - ny), nx, ny);
}

ilTile SmartOracle::smallBox() {
    const std::int32_t nx = pick(1, 40), ny = pick(1, 40);
    const std::int32_t all = window_.side * side;
    return flatTile(window_.x + pick(0, all - nx), window_.y + pick(0, all - ny), nx, ny);
}

SmartOracle::Bytes SmartOracle::pixels(const ilTile& area, std::int32_t channels,
                                       std::uint32_t fill) {
    const auto count = static_cast<std::size_t>(area.nx) * static_cast<std::size_t>(area.ny);
    Bytes bytes(count * static_cast<std::size_t>(channels));
    const int kind = pick(0, 3);
    const std::uint32_t base = kind == 0 ? colour() : fill;
    if (kind == 0 && channels == 1) {
        std::fill(bytes.begin(), bytes.end(), static_cast<std::uint8_t>(base));
        return bytes;
    }
    for (std::size_t n = 0; n < count; ++n) {
        std::uint32_t value = base;
        if (kind == 1) value = static_cast<std::uint32_t>(random());
        // Near the fill, so that sums of four meet it.
        if (kind == 2) value = fill + static_cast<std::uint32_t>(random() % 3) - 1;
        if (kind == 3 && random() % 64 == 0) value = colour();
        std::memcpy(bytes.data() + n * static_cast<std::size_t>(channels), &value,
                    static_cast<std::size_t>(channels));
    }
    return bytes;
}

SmartOracle::Config SmartOracle::config(std::int32_t channels) {
    constexpr std::array<std::int32_t, 3> types{TypeUChar, TypeUShort, TypeAny};
    constexpr std::array<std::int32_t, 4> orders{OrderInterleaved, OrderSequential, OrderSeparate,
                                                 OrderAny};
    Config made;
    made.given = true;
    made.real.dataType = types[static_cast<std::size_t>(pick(0, 2))];
    made.real.order = orders[static_cast<std::size_t>(pick(0, 3))];
    made.real.channels = pick(0, channels);
    if (made.real.channels > 0 && made.real.channels < channels)
        made.real.channelOffset = pick(0, channels - made.real.channels);
    return made;
}

// A due shrink happens when an image is next asked for anything; then the model hears how far it
// went.
void SmartOracle::settle() {
    for (Node& each : nodes_) adopt(each);
}

void SmartOracle::adopt(Node& each) {
    // Parents first, also those that only heirs keep.
    std::vector<std::pair<ilSmartImage*, ModelImage*>> chain;
    ilSmartImage* real = each.real.get();
    ModelImage* model = each.model.get();
    for (; model; model = model->parent().get(), real = real ? real->smartSource() : nullptr)
        chain.emplace_back(real, model);
    for (auto link = chain.rbegin(); link != chain.rend(); ++link) {
        if (!link->second->shrinkIsDue()) continue;
        ilTile actual;
        if (!link->first) return expect(false, "a parent is missing");
        link->first->bounds(actual);
        const ilTile before = link->second->bounds();
        expect(link->second->adoptShrink(actual),
               "bounds " + textOf(before) + " shrank to " + textOf(actual));
    }
}

void SmartOracle::add(const Ref<ilSmartImage>& real, const std::shared_ptr<ModelImage>& model) {
    nodes_.push_back({real, model});
    all_.push_back(model);
    all_.erase(std::remove_if(all_.begin(), all_.end(),
                              [](const std::weak_ptr<ModelImage>& each) { return each.expired(); }),
               all_.end());
}

void SmartOracle::step() {
    if (nodes_.empty()) return make();
    const int kind = pick(1, 1000);
    if (kind > 700 && kind <= 800) return pixel();
    settle();
    if (!failure_.empty()) return;
    if (kind <= 200) return write();
    if (kind <= 250) return writeConverted();
    if (kind <= 320) return readConverted();
    if (kind <= 430) return fill();
    if (kind <= 530) return copy();
    if (kind <= 560) return copyChannels();
    if (kind <= 590) return copyMemory();
    if (kind <= 640) return lock();
    if (kind <= 700) return ask();
    if (kind <= 830) return nodes_.size() < 9 ? makeChild() : destroy();
    if (kind <= 840) return nodes_.size() < 9 ? make() : destroy();
    if (kind <= 850) return nodes_.size() < 9 ? makeOverMemory() : destroy();
    if (kind <= 860) return nodes_.size() < 9 ? cloneImage() : destroy();
    if (kind <= 890) return push();
    if (kind <= 915) return collapse();
    if (kind <= 930) return materialize();
    if (kind <= 945) return destroy();
    if (kind <= 955) return setFill();
    if (kind <= 970) return bounds();
    if (kind <= 990) return shrink();
    if (kind <= 995) return sanitize();
    SmartImageCache::instance().idleStep();
    expect(SmartImageCache::instance().isConsistent(), "lists of the cache");
}

void SmartOracle::make() {
    const std::int32_t channels = chance(60) ? 1 : 4;
    const std::uint32_t value = chance(60) ? 0 : colour();
    told("make");
    add(Ref<ilSmartImage>(new ilSmartImage(ilPixel(TypeUChar, channels, &value))),
        std::make_shared<ModelImage>(window_, channels, value));
}

void SmartOracle::makeChild() {
    const Node parent = node();
    told("child of " + parent.model->describe());
    add(Ref<ilSmartImage>(new ilSmartImage(parent.real.get())),
        std::make_shared<ModelImage>(parent.model));
    checkBounds(nodes_.back());
}

void SmartOracle::makeOverMemory() {
    if (window_.x != -2 * side || window_.y != -2 * side) return make();
    Memory memory;
    auto model = std::make_shared<ModelMemory>();
    model->width = pick(1, 300);
    model->height = pick(1, 300);
    model->channels = chance(50) ? 1 : 4;
    const ilTile area = flatTile(0, 0, model->width, model->height);
    model->bytes = pixels(area, model->channels, 0);
    memory.model = model;
    memory.isParent = chance(60);
    memory.real =
        Ref<ilSPMemoryImg>(new ilSPMemoryImg(model->width, model->height, model->channels));
    std::memcpy(memory.real->data(), model->bytes.data(), model->bytes.size());
    told("memory " + textOf(area));
    if (memory.isParent)
        add(Ref<ilSmartImage>(new ilSmartImage(memory.real.get())),
            std::make_shared<ModelImage>(window_, model));
    memories_.push_back(memory);
    if (memories_.size() > 4) memories_.erase(memories_.begin());
}

void SmartOracle::setFill() {
    Node& of = node();
    const std::uint32_t value = colour();
    told("set fill of " + of.model->describe());
    expect(of.real->setFill(ilPixel(TypeUChar, of.model->channels(), &value)) == ImageOk,
           "refused");
    of.model->setFill(value);
    checkBounds(of);
}

// A second image over the same memory would have a picture of its own of what lies there.
bool SmartOracle::canPush(const ModelImage& model) const {
    return model.parent() || (model.memoryParent() && model.memoryParent().use_count() <= 2);
}

void SmartOracle::push() {
    Node& of = node();
    told("push of " + of.model->describe());
    if (!of.model->parent() && !of.model->memoryParent()) {
        expect(of.real->pushToSource() == ImageNotOneParent, "pushed without a parent");
        return;
    }
    if (!canPush(*of.model)) return;
    expect(of.real->pushToSource() == ImageOk, "refused");
    of.model->push();
    checkBounds(of);
    settle();
    for (const Memory& memory : memories_)
        if (memory.model == of.model->memoryParent()) checkMemory(memory);
    for (Node& each : nodes_)
        if (each.model == of.model->parent()) checkPlain(each, box());
}

void SmartOracle::collapse() {
    Node& of = node();
    told("collapse of " + of.model->describe());
    if (of.model->parent() && !of.model->parent()->parent() && of.model->parent()->memoryParent() &&
        !canPush(*of.model->parent()))
        return;
    const bool done = of.real->collapse();
    expect(done == of.model->collapse(), "collapsed or not");
    settle();
    checkPlain(of, box());
}

void SmartOracle::materialize() {
    Node& of = node();
    const ilTile area = box();
    const bool whole = chance(50);
    told("materialize " + of.model->describe());
    of.real->materialize(whole ? nullptr : &area, chance(50));
    of.model->materialize(whole ? nullptr : &area);
    checkBounds(of);
}

void SmartOracle::destroy() {
    const auto index = static_cast<std::size_t>(pick(0, static_cast<int>(nodes_.size()) - 1));
    told("destroy " + nodes_[index].model->describe());
    if (chance(60)) {
        nodes_[index] = nodes_.back();
        nodes_.pop_back();
        return;
    }
    told("destroy for good " + nodes_[index].model->describe());
    forget(index);
}

// All holders let go at once, heirs too: they keep what they saw.
void SmartOracle::forget(std::size_t index) {
    const std::shared_ptr<ModelImage> model = nodes_[index].model;
    ilSmartImage* const real = nodes_[index].real.detach();
    nodes_[index] = nodes_.back();
    nodes_.pop_back();
    for (std::uint32_t holders = real->refCount(); holders > 0; --holders) real->release();
    for (const auto& each : all_) {
        const std::shared_ptr<ModelImage> child = each.lock();
        if (!child || child->parent() != model) continue;
        child->materialize(nullptr);
        child->setSource(model->parent(), model->memoryParent());
    }
}

void SmartOracle::bounds() {
    Node& of = node();
    const ilTile area = box();
    told("bounds " + textOf(area) + " of " + of.model->describe());
    switch (pick(0, 4)) {
        case 0: {
            const bool force = chance(50);
            of.real->setBounds(area, force);
            of.model->setBounds(of.model->hasFixedBounds() ? of.model->fixedBounds() : area, force);
            break;
        }
        case 1:
            of.real->setFixedBounds(area);
            of.model->setFixedBounds(area);
            break;
        case 2:
            of.real->growToPages(0);
            of.model->growToPages(0);
            break;
        case 3:
            of.real->prefetch(area);
            of.model->lookUp(ModelImage::clipped(area));
            break;
        default:
            of.real->clearFixedBounds();
            of.model->clearFixedBounds();
            break;
    }
    checkBounds(of);
    checkPlain(of, area);
}

void SmartOracle::shrink() {
    Node& of = node();
    told("shrink " + of.model->describe());
    if (chance(40)) {
        of.real->shrinkToPages();
        of.model->noteShrink();
        adopt(of);
    } else {
        const bool force = chance(30);
        of.real->shrinkBounds(force);
        of.model->shrinkToPixels(force);
    }
    checkBounds(of);
    checkPlain(of, box());
}

void SmartOracle::ask() {
    Node& of = node();
    const ilTile area = chance(50) ? box() : smallBox();
    std::uint32_t got = 0, wanted = 0;
    told("ask about " + textOf(area) + " of " + of.model->describe());
    if (of.model->channels() == 4 && chance(30)) return lookAtPage(of, area.x, area.y);
    if (chance(50)) {
        const bool solid = of.real->isSolid(area, got, true);
        expect(solid == of.model->isSolid(area, wanted) && (!solid || got == wanted), "solid");
        return;
    }
    const auto known = static_cast<std::int32_t>(of.real->alphaClassOf(area, true));
    const std::int32_t right = of.model->alphaClass(area);
    // Each page has a class; a box of two mixed pages is mixed.
    expect(known == right, "alpha class " + std::to_string(known));
}

// What it calls empty has no alpha.
void SmartOracle::lookAtPage(Node& of, std::int32_t x, std::int32_t y) {
    KeptPages kept;
    ilSmartImage::PageSight look;
    if (chance(50)) {
        look = of.real->keepPage(x, y, chance(50), kept);
        // What scans find uniform turns solid, but nothing that is kept.
        while (SmartImageCache::instance().idleStep()) continue;
    } else {
        static_cast<ilSmartImage::PageLook&>(look) = of.real->lookAtPage(x, y);
    }
    bool right = (look.data != nullptr) == (kept.count() != 0);
    for (std::int32_t row = 0; row < pageSide; ++row)
        for (std::int32_t column = 0; column < pageSide; ++column) {
            const std::uint32_t pixel =
                of.model->pixel((x & pageMask) + column, (y & pageMask) + row);
            const bool filled = (look.filledCells >> (column / 16 + row / 16 * 8) & 1) != 0;
            right = right && (filled || pixel >> 24 == 0) && (!look.isSolid || pixel == look.solid);
            if (!look.data) continue;
            std::uint32_t seen = 0;
            std::memcpy(&seen, look.data + 4 * (row * pageSide + column), sizeof seen);
            right = right && seen == pixel;
        }
    expect(right, "cells " + std::to_string(look.filledCells));
}

void SmartOracle::sanitize() {
    Node& of = node();
    told("sanitize " + of.model->describe());
    of.real->sanitizeAlpha();
    if (of.model->channels() == 4) {
        of.model->noteShrink();
        adopt(of);
        of.model->sanitize();
    }
    checkBounds(of);
    checkPlain(of, box());
}

void SmartOracle::cloneImage() {
    const Node of = node();
    told("clone " + of.model->describe());
    const Ref<ilSmartImage> copy = of.real->clone();
    if (!copy) return expect(false, "no clone");
    add(copy, of.model->clone());
    checkPlain(nodes_.back(), box());
}

void SmartOracle::checkPlain(Node& of, const ilTile& area) {
    adopt(of);
    checkBounds(of);
    const ilTile wider = flatTile(area.x - pick(0, 3), area.y - pick(0, 3), area.nx + 4, area.ny);
    const auto count = static_cast<std::size_t>(wider.nx * wider.ny * of.model->channels());
    Bytes got(count, sentinel), wanted(count);
    expect(of.real->readRegion(wider, got.data(), wider) == ImageOk, "read refused");
    of.model->read(wider, wanted.data());
    if (got == wanted) return;
    const std::int32_t channels = of.model->channels();
    ilTile differing{0, 0, 0, 0, 0, 1};
    std::size_t bytesWrong = 0;
    std::ostringstream text;
    for (std::size_t n = 0; n < count; ++n) {
        if (got[n] == wanted[n]) continue;
        const auto pixel = static_cast<std::int32_t>(n) / channels;
        const std::int32_t x = wider.x + pixel % wider.nx, y = wider.y + pixel / wider.nx;
        if (bytesWrong++ == 0)
            text << "byte at " << x << ' ' << y << " is " << int{got[n]} << ", not "
                 << int{wanted[n]};
        differing = unionOf(differing, flatTile(x, y, 1, 1));
    }
    text << "; " << bytesWrong << " bytes differ in " << textOf(differing);
    expect(false, text.str());
}

void SmartOracle::checkBounds(Node& of) {
    if (of.model->shrinkIsDue()) return;
    for (const ModelImage* step = of.model->parent().get(); step; step = step->parent().get())
        if (step->shrinkIsDue()) return;
    ilTile actual;
    of.real->bounds(actual);
    expect(actual == of.model->bounds(),
           "bounds are " + textOf(actual) + ", not " + textOf(of.model->bounds()));
}

void SmartOracle::checkMemory(const Memory& memory) {
    expect(std::memcmp(memory.real->data(), memory.model->bytes.data(),
                       memory.model->bytes.size()) == 0,
           "memory image differs");
}

void SmartOracle::checkAll() {
    settle();
    const ilTile window = flatTile(window_.x, window_.y, window_.side * side, window_.side * side);
    for (Node& each : nodes_) {
        checkPlain(each, window);
        if (!failure_.empty()) last_ += ", seen later in " + each.model->describe();
    }
    for (const Memory& memory : memories_) checkMemory(memory);
}

}  // namespace brushwork::test
