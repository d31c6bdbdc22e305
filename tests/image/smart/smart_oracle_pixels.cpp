// Operations on pixels: each done on a smart image and its model.
#include <algorithm>
#include <array>
#include <cstring>

#include "image/smart/smart_oracle.h"

namespace brushwork::test {
namespace {

ilTile moved(ilTile box, std::int32_t dx, std::int32_t dy) {
    box.x += dx;
    box.y += dy;
    return box;
}

// Place of a value in a buffer of `frame` with `channels` channels in an order.
std::size_t valueIndex(const ilTile& frame, std::int32_t order, std::int32_t channels,
                       std::int32_t x, std::int32_t y, std::int32_t c) {
    const std::int32_t column = x - frame.x;
    const std::int32_t row = y - frame.y;
    std::int32_t index = (row * frame.nx + column) * channels + c;
    if (order == OrderSequential) index = (row * channels + c) * frame.nx + column;
    if (order == OrderSeparate) index = (c * frame.ny + row) * frame.nx + column;
    return static_cast<std::size_t>(index);
}

}  // namespace

void SmartOracle::write() {
    Node& to = node();
    const ilTile area = box();
    const Bytes bytes = pixels(area, to.model->channels(), to.model->fill());
    told("write " + textOf(area) + " to " + to.model->describe());
    expect(to.real->writeRegion(area, bytes.data(), area) == ImageOk, "refused");
    to.model->write(area, bytes.data());
    checkPlain(to, area);
}

void SmartOracle::writeConverted() {
    Node& to = node();
    const ilTile area = smallBox();
    const std::int32_t own = to.model->channels();
    const Config asked = config(own);
    const ilImageConfig full = to.real->completed(&asked.real);
    const ilTile frame = flatTile(area.x - pick(0, 5), area.y, area.nx + 9, area.ny + pick(0, 3));
    const auto count = static_cast<std::size_t>(frame.nx * frame.ny * full.channels);
    std::vector<std::uint16_t> values(count);
    for (std::uint16_t& value : values) value = static_cast<std::uint16_t>(random() % 400);
    if (full.dataType == TypeUChar)
        for (std::uint16_t& value : values) value = static_cast<std::uint16_t>(value & 0xFF);
    Bytes narrow(values.begin(), values.end());
    const void* const data = full.dataType == TypeUChar ? static_cast<const void*>(narrow.data())
                                                        : static_cast<const void*>(values.data());
    told("converted write " + textOf(area) + " to " + to.model->describe());
    expect(to.real->writeRegion(area, data, frame, &asked.real) == ImageOk, "refused");
    to.model->writeValues(area, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        const std::int32_t channel = c - full.channelOffset;
        if (channel < 0 || channel >= full.channels) return -1;
        const int value = values[valueIndex(frame, full.order, full.channels, x, y, channel)];
        return std::min(value, 255);
    });
    checkPlain(to, area);
}

void SmartOracle::readConverted() {
    Node& of = node();
    const ilTile area = smallBox();
    const std::int32_t own = of.model->channels();
    const Config asked = config(own);
    const ilImageConfig full = of.real->completed(&asked.real);
    const ilTile frame = flatTile(area.x - pick(0, 5), area.y, area.nx + 9, area.ny + pick(0, 3));
    const std::size_t size = full.dataType == TypeUChar ? 1 : 2;
    const auto count = static_cast<std::size_t>(frame.nx * frame.ny * full.channels);
    Bytes got(count * size, sentinel);
    Bytes wanted = got;
    told("converted read " + textOf(area) + " of " + of.model->describe());
    expect(of.real->readRegion(area, got.data(), frame, &asked.real) == ImageOk, "refused");
    for (std::int32_t y = area.y; y < area.endY(); ++y)
        for (std::int32_t x = area.x; x < area.endX(); ++x)
            for (std::int32_t c = 0; c < full.channels; ++c) {
                const std::uint16_t value = of.model->value(x, y, c + full.channelOffset);
                std::memcpy(
                    wanted.data() + size * valueIndex(frame, full.order, full.channels, x, y, c),
                    &value, size);
            }
    expect(got == wanted, "bytes differ");
}

void SmartOracle::fill() {
    Node& to = node();
    const ilTile area = box();
    const ilTile kept = chance(50) ? box() : flatTile(0, 0, 0, 0);
    const bool keeps = chance(40);
    const std::uint32_t value = chance(50) ? to.model->fill() : colour();
    const std::int32_t own = to.model->channels();
    told("fill " + textOf(area) + (keeps ? " but not " + textOf(kept) : "") + " of " +
         to.model->describe());
    const ilTile* const keepOut = keeps ? &kept : nullptr;
    if (own == 4 && chance(25)) {
        const std::int32_t count = pick(1, 3), first = pick(0, 4 - count);
        const ilImageConfig some(TypeUChar, OrderInterleaved, count, first);
        expect(
            to.real->fillRegion(area, ilPixel(TypeUChar, count, &value), &some, keepOut) == ImageOk,
            "refused");
        to.model->fillChannels(area, value, first, count, keepOut);
    } else {
        const ilImageConfig whole(TypeUShort, OrderSequential, own);
        expect(to.real->fillRegion(area, ilPixel(TypeUChar, own, &value),
                                   chance(30) ? &whole : nullptr, keepOut) == ImageOk,
               "refused");
        to.model->fillBox(area, value, keepOut);
    }
    checkPlain(to, area);
}

void SmartOracle::copy() {
    Node& to = node();
    Node& source = node();
    const ilTile area = box();
    std::int32_t dx = pick(-200, 200), dy = pick(-200, 200);
    if (chance(50)) dx = pick(-2, 2) * side, dy = pick(-2, 2) * side;
    if (to.model->channels() != source.model->channels()) return;
    told("copy " + textOf(area) + " by " + textOf(flatTile(dx, dy, 0, 0)) + " from " +
         source.model->describe() + " to " + to.model->describe());
    if (chance(50)) {
        expect(to.real->copyRegion(area, *source.real, area.x + dx, area.y + dy, 0, nullptr,
                                   CopyDirection::FromOther) == ImageOk,
               "refused");
        to.model->copyIn(area, *source.model, dx, dy);
        checkPlain(to, area);
        return;
    }
    // The other way the box is the source's; its window must hold the target's box.
    const ilTile window = flatTile(window_.x, window_.y, window_.side * side, window_.side * side);
    const ilTile there = intersection(moved(area, dx, dy), window);
    if (there.isEmpty()) return;
    const ilTile here = ModelImage::clipped(moved(there, -dx, -dy));
    if (here.isEmpty() || ModelImage::clipped(moved(here, dx, dy)).isEmpty()) return;
    expect(source.real->copyRegion(here, *to.real, here.x + dx, here.y + dy, 0, nullptr,
                                   CopyDirection::ToOther) == ImageOk,
           "refused");
    to.model->copyIn(moved(here, dx, dy), *source.model, -dx, -dy);
    checkPlain(to, moved(here, dx, dy));
}

void SmartOracle::copyChannels() {
    Node& to = node();
    Node& source = node();
    if (to.real.get() == source.real.get()) return;
    const ilTile area = smallBox();
    const std::int32_t dx = pick(-100, 100), dy = pick(-100, 100);
    const std::int32_t mine = to.model->channels(), theirs = source.model->channels();
    ilImageConfig some;
    some.channels = pick(1, std::min(mine, theirs));
    some.channelOffset = pick(0, theirs - some.channels);
    const bool given = chance(70) || mine == theirs;
    const std::int32_t offset = given ? some.channelOffset : 0;
    const std::int32_t count = given ? some.channels : std::min(mine, theirs);
    told("copy channels " + textOf(area) + " from " + source.model->describe() + " to " +
         to.model->describe());
    if (offset + count > theirs) return;
    const ilTile inside = ModelImage::clipped(area);
    if (source.model->descendsFrom(*to.model))
        source.model->lookUp(ModelImage::clipped(moved(inside, dx, dy)));
    expect(to.real->copyRegion(area, *source.real, area.x + dx, area.y + dy, 0,
                               given ? &some : nullptr, CopyDirection::FromOther) == ImageOk,
           "refused");
    // What is read is looked up, page by page, before it is written.
    to.model->writeValues(inside, [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        return c < count ? int{source.model->value(x + dx, y + dy, c + offset)} : -1;
    });
    checkPlain(to, area);
}

void SmartOracle::copyMemory() {
    if (memories_.empty()) return makeOverMemory();
    Memory& memory =
        memories_[static_cast<std::size_t>(pick(0, static_cast<int>(memories_.size()) - 1))];
    Node& image = node();
    if (image.model->channels() != memory.model->channels) return;
    const std::int32_t channels = memory.model->channels;
    const ilTile area = smallBox();
    const std::int32_t dx = pick(-60, 250) - area.x, dy = pick(-60, 250) - area.y;
    told("copy memory " + textOf(area) + ' ' + image.model->describe());
    const auto fromMemory = [&](std::int32_t x, std::int32_t y, std::int32_t c) {
        return int{memory.model->value(x + dx, y + dy, c)};
    };
    if (memory.isParent || chance(50)) {
        const std::int32_t result =
            chance(50) ? image.real->copyRegion(area, *memory.real, area.x + dx, area.y + dy, 0,
                                                nullptr, CopyDirection::FromOther)
                       : memory.real->copyRegion(moved(area, dx, dy), *image.real, area.x, area.y,
                                                 0, nullptr, CopyDirection::ToOther);
        expect(result == ImageOk || result == ImageClipped, "refused");
        // Pages that are wholly covered may come as fill, and a shrink be due.
        image.model->writeValues(area, fromMemory);
        checkPlain(image, area);
        return;
    }
    const ilTile inside = ModelImage::clipped(area);
    const std::int32_t result =
        chance(50) ? image.real->copyRegion(area, *memory.real, area.x + dx, area.y + dy, 0,
                                            nullptr, CopyDirection::ToOther)
                   : memory.real->copyRegion(moved(inside, dx, dy), *image.real, inside.x, inside.y,
                                             0, nullptr, CopyDirection::FromOther);
    expect(result == ImageOk || result == ImageClipped, "refused");
    for (std::int32_t y = inside.y; y < inside.endY(); ++y)
        for (std::int32_t x = inside.x; x < inside.endX(); ++x)
            for (std::int32_t c = 0; c < channels; ++c)
                memory.model->setValue(x + dx, y + dy, c, image.model->value(x, y, c));
    checkMemory(memory);
}

void SmartOracle::lock() {
    Node& of = node();
    const bool writes = chance(60);
    std::array<PageLockRequest, 2> requests{};
    for (PageLockRequest& request : requests) {
        const ilTile place = smallBox();
        request.x = place.x;
        request.y = place.y;
    }
    const bool twice = chance(30);
    const std::span<PageLockRequest> asked(requests.data(), twice ? 2 : 1);
    told(std::string("lock for ") + (writes ? "writing " : "reading ") + of.model->describe());
    expect(of.real->lockPages(asked, writes ? LockWrite : LockRead) == ImageOk, "refused");
    for (const PageLockRequest& request : asked) {
        of.model->lockPage(request.x, request.y, writes);
        if (!request.page || !request.page->data()) return expect(false, "no page");
        const ilTile tile = ModelImage::clipped(
            flatTile(request.x & ~(side - 1), request.y & ~(side - 1), side, side));
        const std::int32_t channels = of.model->channels();
        if (tile.isEmpty()) continue;
        const Bytes& wanted = of.model->pageBytes(request.x, request.y);
        expect(std::memcmp(wanted.data(), request.page->data(), wanted.size()) == 0,
               "locked page differs");
        if (chance(30)) {
            expect(of.real->getPixel(request.x, request.y) == of.model->pixel(request.x, request.y),
                   "pixel of a locked page");
        }
        if (!writes) continue;
        const ilTile part = intersection(tile, moved(smallBox(), 0, 0));
        const ilTile changed = part.isEmpty() ? flatTile(tile.x + 3, tile.y + 5, 7, 2) : part;
        const Bytes bytes = pixels(changed, channels, of.model->fill());
        for (std::int32_t y = 0; y < changed.ny; ++y)
            std::memcpy(request.page->data() +
                            ((changed.y + y - tile.y) * side + changed.x - tile.x) * channels,
                        bytes.data() + y * changed.nx * channels,
                        static_cast<std::size_t>(changed.nx * channels));
        of.model->write(changed, bytes.data());
    }
    of.real->unlockPages(asked);
    for (const PageLockRequest& request : asked)
        checkPlain(of, flatTile(request.x, request.y, 1, 1));
}

void SmartOracle::pixel() {
    Node& of = node();
    const ilTile place = smallBox();
    told("pixels of " + of.model->describe());
    for (std::int32_t x = place.x; x < place.endX(); ++x) {
        if (chance(50)) {
            const std::uint32_t value = colour();
            of.real->setPixel(x, place.y, value);
            of.model->setPixel(x, place.y, value);
        }
        expect(of.real->getPixel(x, place.y) == of.model->pixel(x, place.y), "pixel differs");
    }
}

}  // namespace brushwork::test
