#include "fill/flood_fill.h"

#include <algorithm>
#include <new>
#include <utility>

namespace brushwork {

void FloodBox::grow(std::int32_t fromX, std::int32_t toX, std::int32_t y) {
    if (isEmpty()) {
        *this = {fromX, y, toX, y};
        return;
    }
    left = std::min(left, fromX);
    right = std::max(right, toX);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
}

void FloodFill::begin(const FloodBox& clip) {
    clip_ = clip;
    dirty_ = {};
}

void FloodFill::fill(std::int32_t x, std::int32_t y, std::int32_t left, std::int32_t top,
                     std::int32_t right, std::int32_t bottom, bool flag) {
    static_cast<void>(flag);
    begin({left, top, right, bottom});
    if (!clip_.holds(x, y)) return;
    push(x, x, y, y);
    while (pending_) {
        takeNextRow();
        while (active_) {
            shadow_ = std::exchange(active_, active_->next);
            if (shadow_->valid) fillShadow(*shadow_);
            release(*shadow_);
        }
    }
    shadow_ = active_ = pending_ = free_ = nullptr;
    shadows_.clear();
}

// Moves the shadows of one row to the active list, sorted.
void FloodFill::takeNextRow() {
    const Shadow* first = pending_;
    while (first && !first->valid) first = first->next;
    if (first) row_ = first->row;
    Shadow* rest = std::exchange(pending_, nullptr);
    Shadow** kept = &pending_;
    while (rest) {
        Shadow& shadow = *std::exchange(rest, rest->next);
        shadow.next = nullptr;
        if (!shadow.valid) {
            release(shadow);
        } else if (shadow.row != row_) {
            *kept = &shadow;
            kept = &shadow.next;
        } else {
            Shadow** place = &active_;
            while (*place && (*place)->left < shadow.left) place = &(*place)->next;
            shadow.next = *place;
            *place = &shadow;
        }
    }
}

// Only at its first pixel a shadow can be part of a span that begins before it.
void FloodFill::fillShadow(Shadow& shadow) {
    const std::int32_t y = shadow.row;
    for (std::int32_t x = skipToInside(shadow.left, y, shadow.right); x <= shadow.right;) {
        const std::int32_t left = x == shadow.left ? expandLeft(x, y) : x;
        const std::int32_t right = expandRight(x, y);
        setSpan(left, right, y);
        noteSpan(left, right, y);
        castShadows(shadow, left, right);
        if (right >= shadow.right) break;
        x = skipToInside(right + 1, y, shadow.right);
    }
}

void FloodFill::castShadows(Shadow& shadow, std::int32_t left, std::int32_t right) {
    castBeside(left, right, shadow.row + 1, shadow.row, shadow);
    castBeside(left, right, shadow.row - 1, shadow.row, shadow);
    cutActive(right);
}

// On its parent's side a shadow has its parent: only what sticks out of it is new there. The same
// goes for every active shadow that begins within the span.
void FloodFill::castBeside(std::int32_t left, std::int32_t right, std::int32_t row,
                           std::int32_t parentRow, const Shadow& first) {
    std::int32_t begin = left;
    for (const Shadow* shadow = &first; shadow && shadow->left <= right;
         shadow = shadow == &first ? active_ : shadow->next) {
        if (!shadow->valid || shadow->parentRow != row) continue;
        push(begin, std::min(shadow->left - 2, right), row, parentRow);
        begin = std::max(begin, shadow->right + 2);
    }
    push(begin, right, row, parentRow);
}

// What the span has filled of the shadows after it needs no second look.
void FloodFill::cutActive(std::int32_t right) {
    for (Shadow* other = active_; other && other->left <= right; other = other->next) {
        if (other->right <= right + 1)
            other->valid = false;
        else
            other->left = right + 2;
    }
}

void FloodFill::push(std::int32_t left, std::int32_t right, std::int32_t row,
                     std::int32_t parentRow) {
    if (left > right || row < clip_.top || row > clip_.bottom) return;
    Shadow* shadow = free_;
    if (shadow) {
        free_ = shadow->next;
    } else {
        try {
            shadow = &shadows_.emplace_back();
        } catch (const std::bad_alloc&) {
            return;  // that part of the flood isn't filled
        }
    }
    *shadow = {pending_, left, right, row, parentRow, true};
    pending_ = shadow;
}

void FloodFill::release(Shadow& shadow) {
    shadow.valid = false;
    shadow.next = free_;
    free_ = &shadow;
}

std::int32_t FloodFill::expandRight(std::int32_t x, std::int32_t y) {
    while (x < clip_.right && inside(x + 1, y)) ++x;
    return x;
}

std::int32_t FloodFill::expandLeft(std::int32_t x, std::int32_t y) {
    while (x > clip_.left && inside(x - 1, y)) --x;
    return x;
}

std::int32_t FloodFill::skipToInside(std::int32_t x, std::int32_t y, std::int32_t limit) {
    while (x <= limit && !inside(x, y)) ++x;
    return x;
}

void FloodFill::setSpan(std::int32_t left, std::int32_t right, std::int32_t y) {
    for (std::int32_t x = left; x <= right; ++x) setPixel(x, y);
}

}  // namespace brushwork
