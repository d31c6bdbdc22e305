#include "image/chain/il_page_iterator.h"

#include <algorithm>
#include <limits>

namespace brushwork {
namespace {

std::int64_t floorMod(std::int64_t value, std::int64_t step) {
    const std::int64_t rest = value % step;
    return rest < 0 ? rest + step : rest;
}

// Of two counts above 0.
std::int64_t product(std::int64_t a, std::int64_t b) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    return a > most / b ? most : a * b;
}

}  // namespace

ilPageIterator::ilPageIterator(const PageWalk& walk) : walk_(walk) {}

bool ilPageIterator::Axis::advance() {
    current += step;
    if (current < end) return true;
    current = first;
    return false;
}

bool ilPageIterator::next() {
    if (ended_) return false;
    bool found = false;
    if (!started_) {
        started_ = true;
        found = begin() && (groupIsListed() || toListedGroup());
    } else {
        found = x_.advance() || y_.advance() || z_.advance() || toListedGroup();
    }
    ended_ = !found;
    return found;
}

bool ilPageIterator::toListedGroup() {
    while (c_.advance()) {
        if (groupIsListed()) return true;
    }
    return false;
}

bool ilPageIterator::begin() {
    const ilTile& box = walk_.box;
    if (box.isEmpty() || !beginChannels() ||
        !beginAxis(x_, box.x, box.nx, walk_.pageSize.x, walk_.borderX) ||
        !beginAxis(y_, box.y, box.ny, walk_.pageSize.y, walk_.borderY) ||
        !beginAxis(z_, box.z, box.nz, walk_.pageSize.z, walk_.borderZ)) {
        return false;
    }
    total_ = product(product(x_.pages(), y_.pages()), product(z_.pages(), c_.pages()));
    return true;
}

bool ilPageIterator::beginAxis(Axis& axis, std::int32_t start, std::int32_t extent,
                               std::int32_t size, std::int32_t border) const {
    axis.step = std::int64_t{size} - 2 * std::int64_t{border};
    if (axis.step < 1 || border < 0) return false;
    axis.first = start;
    axis.end = axis.first + extent;
    if (walk_.grid == PageGrid::Aligned) {
        const std::int64_t inside = floorMod(start, axis.step);
        axis.first -= border + inside;
        // The first pixels of a page's core lie in the border of the page before, too.
        if (inside < border) axis.first -= axis.step;
    } else {
        axis.end = std::max(axis.end - border, axis.first + 1);
    }
    axis.current = axis.first;
    return true;
}

bool ilPageIterator::beginChannels() {
    std::int64_t first = 0;
    std::int64_t end = walk_.channels;
    if (walk_.channelList) {
        std::swap(first, end);
        for (std::int32_t i = 0; i < walk_.channelListCount; ++i) {
            const std::int64_t channel = walk_.channelList[i];
            if (channel < 0 || channel >= walk_.channels) continue;
            first = std::min(first, channel);
            end = std::max(end, channel + 1);
        }
    }
    c_.step = walk_.pageSize.c > 0 ? walk_.pageSize.c : std::max(walk_.channels, 1);
    c_.first = first - first % c_.step;
    c_.end = end;
    c_.current = c_.first;
    return first < end;
}

bool ilPageIterator::groupIsListed() const {
    if (!walk_.channelList) return true;
    const std::int32_t* const end = walk_.channelList + walk_.channelListCount;
    return std::any_of(walk_.channelList, end, [this](std::int32_t channel) {
        return channel >= c_.current && channel < c_.current + c_.step && channel < c_.end;
    });
}

}  // namespace brushwork
