// FloodFill: a flood by spans and their shadows, over whatever a derived class calls inside.
//
// A span that was filled casts a shadow on the rows beside it: there the flood goes on. A class
// says which pixels are inside and sets them; a pixel that was set is inside no more, which is what
// ends a flood. It may replace the walks along a row where it knows better.
//
// Fills what connects with the seed in the four directions within the clip. One thread.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

namespace brushwork {

// Edges are inside; a right below the left means empty.
struct FloodBox {
    std::int32_t left = 0, top = 0, right = -1, bottom = -1;

    [[nodiscard]] bool holds(std::int32_t x, std::int32_t y) const {
        return x >= left && x <= right && y >= top && y <= bottom;
    }
    [[nodiscard]] bool isEmpty() const { return right < left || bottom < top; }
    void grow(std::int32_t fromX, std::int32_t toX, std::int32_t y);
};

class FloodFill {
  public:
    FloodFill() = default;
    FloodFill(const FloodFill&) = delete;
    FloodFill& operator=(const FloodFill&) = delete;
    virtual ~FloodFill() = default;

    // Floods from (x, y) within the clip. Nothing happens if the seed lies outside it. What `flag`
    // asks for is up to the class.
    virtual void fill(std::int32_t x, std::int32_t y, std::int32_t left, std::int32_t top,
                      std::int32_t right, std::int32_t bottom, bool flag);
    [[nodiscard]] virtual bool inside(std::int32_t x, std::int32_t y) = 0;
    // The last inside pixel that follows on (x, y), which is inside, within the clip.
    [[nodiscard]] virtual std::int32_t expandRight(std::int32_t x, std::int32_t y);
    [[nodiscard]] virtual std::int32_t expandLeft(std::int32_t x, std::int32_t y);
    // The first inside pixel from x on, up to `limit`; beyond that limit + 1.
    [[nodiscard]] virtual std::int32_t skipToInside(std::int32_t x, std::int32_t y,
                                                    std::int32_t limit);
    virtual void setPixel(std::int32_t x, std::int32_t y) = 0;
    virtual void setSpan(std::int32_t left, std::int32_t right, std::int32_t y);

    // What the latest fill has set.
    [[nodiscard]] const FloodBox& dirty() const { return dirty_; }

  protected:
    [[nodiscard]] const FloodBox& clip() const { return clip_; }
    void begin(const FloodBox& clip);
    void noteSpan(std::int32_t left, std::int32_t right, std::int32_t y) {
        dirty_.grow(left, right, y);
    }

  private:
    // Pixels of a row that lie beside those of a filled span in the parent row. Pixels next to both
    // ends in the parent row are filled too, or not inside.
    struct Shadow {
        Shadow* next = nullptr;
        std::int32_t left = 0, right = 0;
        std::int32_t row = 0;
        std::int32_t parentRow = 0;
        bool valid = false;
    };

    void takeNextRow();
    void fillShadow(Shadow& shadow);
    void castShadows(Shadow& shadow, std::int32_t left, std::int32_t right);
    void castBeside(std::int32_t left, std::int32_t right, std::int32_t row, std::int32_t parentRow,
                    const Shadow& first);
    void cutActive(std::int32_t right);
    void push(std::int32_t left, std::int32_t right, std::int32_t row, std::int32_t parentRow);
    void release(Shadow& shadow);

    FloodBox clip_;
    FloodBox dirty_;
    std::int32_t row_ = 0;       // being filled
    Shadow* shadow_ = nullptr;   // being filled
    Shadow* active_ = nullptr;   // of that row, by their left ends
    Shadow* pending_ = nullptr;  // of other rows
    Shadow* free_ = nullptr;
    std::deque<Shadow> shadows_;  // owns all of them
};

}  // namespace brushwork
