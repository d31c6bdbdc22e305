// A timeline as a plain list of numbers: what the frame list is held against.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace brushwork::test {

// Frames are named by the canvas that they show.
struct TimelineModel {
    static constexpr std::uint32_t most = 1000;

    std::map<std::uint32_t, std::int32_t> starts;  // a canvas each
    std::uint32_t current = 1, last = 0;
    std::int32_t front = -1;  // the canvas that is shown

    friend bool operator==(const TimelineModel&, const TimelineModel&) = default;

    [[nodiscard]] std::optional<std::uint32_t> startOf(std::uint32_t number) const {
        std::optional<std::uint32_t> found;
        for (const auto& [start, canvas] : starts)
            if (start <= number) found = start;
        return found;
    }
    void show(std::uint32_t number, std::int32_t base) {
        current = number;
        const auto start = startOf(number);
        front = start ? starts.at(*start) : base;
    }
    [[nodiscard]] bool canAdd(std::uint32_t number) const {
        return number >= 1 && number <= most && !starts.contains(number);
    }
    void add(std::uint32_t number, std::int32_t canvas) {
        starts[number] = canvas;
        last = std::max(last, number);
        current = number;
        front = canvas;
    }
    [[nodiscard]] bool canRemove(std::uint32_t number) const {
        return number <= last && startOf(number).has_value();
    }
    // The numbers told to listeners.
    std::vector<std::uint32_t> remove(std::uint32_t number, std::int32_t base) {
        std::vector<std::uint32_t> told{number};
        if (starts.contains(number)) {
            const bool wasLast = starts.rbegin()->first == number;
            starts.erase(number);
            if (wasLast) last = number - 1;
            if (starts.empty()) last = 0;
        } else {
            for (std::uint32_t n = number + 1; n <= last; ++n) told.push_back(n);
            std::map<std::uint32_t, std::int32_t> moved;
            for (const auto& [start, canvas] : starts)
                moved[start > number ? start - 1 : start] = canvas;
            starts = moved;
            --last;
        }
        show(std::max(1u, std::min(current, last)), base);
        return told;
    }
    // Where a copy of what shows at the number would start.
    [[nodiscard]] std::optional<std::uint32_t> placeOfCopy(std::uint32_t number) const {
        const auto start = startOf(number);
        if (!start || number > most) return {};
        const std::uint32_t place = *start == number ? number + 1 : number;
        return firstFree(place) <= most ? std::optional(place) : std::nullopt;
    }
    [[nodiscard]] std::uint32_t firstFree(std::uint32_t number) const {
        while (starts.contains(number)) ++number;
        return number;
    }
    // From the far end on, one after the other.
    void insertPushing(std::uint32_t number, std::int32_t canvas) {
        for (std::uint32_t n = firstFree(number); n > number; --n) starts[n] = starts.at(n - 1);
        starts[number] = canvas;
        last = std::max(last, starts.rbegin()->first);
        current = number;
        front = canvas;
    }
    [[nodiscard]] bool canMove(std::uint32_t from, std::uint32_t to) const {
        const auto start = startOf(from);
        if (!start) return false;
        TimelineModel without = *this;
        without.starts.erase(*start);
        return *start == to || without.firstFree(to) <= most;
    }
    // False: it stands there already.
    bool move(std::uint32_t from, std::uint32_t to) {
        const std::uint32_t start = *startOf(from);
        if (start == to) return false;
        const std::int32_t canvas = starts.at(start);
        starts.erase(start);
        insertPushing(to, canvas);
        return true;
    }
};

}  // namespace brushwork::test
