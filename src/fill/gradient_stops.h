// GradientStops: the colours of a gradient, as a function of the way along it.
//
//     GradientStops stops;
//     stops.add(0.0f, {1.0f, 0.0f, 0.0f, 1.0f});  // from red
//     stops.add(1.0f, {1.0f, 0.0f, 0.0f, 0.0f});  // to nothing
#pragma once

#include <array>
#include <vector>

namespace brushwork {

class GradientStops {
  public:
    // Red, green, blue, alpha, 0..1.
    using Color = std::array<float, 4>;

    // A colour, not premultiplied, at a place 0..1; what lies outside is bounded, what isn't a
    // number becomes 0. Of two stops at one place the gradient comes in on the first added and
    // leaves by the last, which is also the colour of the place itself.
    void add(float place, const Color& color);
    void clear() { stops_.clear(); }

    // The colour at t, premultiplied as pixels are. Between two stops the premultiplied colours
    // change evenly, so that what fades away keeps its colour; before the first stop and behind the
    // last one theirs goes on. Without stops all is 0.
    [[nodiscard]] Color at(float t) const;

  private:
    struct Stop {
        float place;
        Color color;  // premultiplied
    };
    std::vector<Stop> stops_;  // by place
};

}  // namespace brushwork
