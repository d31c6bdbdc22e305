// Random edits of a stack through its own operations, with the marks that whoever edits leaves.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "document/layer/layer_recipe.h"
#include "document/stack/layer_stack.h"

namespace brushwork::test {

class RandomEdits {
  public:
    RandomEdits(LayerStack& stack, Dice& dice) : stack_(stack), dice_(dice) {}

    // A document of up to `most` layers.
    void build(int most);
    // One edit; the answer names it.
    std::string edit();
    // Ends what reaches over frames: batches and live strokes.
    void finish();

  private:
    [[nodiscard]] Layer* anyLayer();
    [[nodiscard]] std::int32_t anyId();
    [[nodiscard]] std::vector<std::int32_t> someIds();
    [[nodiscard]] std::int32_t anyMode();
    [[nodiscard]] float anyOpacity();
    [[nodiscard]] float anyPlace();
    // In document coordinates; some far outside the canvas.
    [[nodiscard]] ilTile anyArea(int most = 160);

    void addSomething();
    void paint();
    void wetStroke();
    void maskedStroke();
    void editSelection();
    void attribute();
    void rearrange();
    void display();
    void pixelsChanged(const ilTile& box);

    LayerStack& stack_;
    Dice& dice_;
    bool inBatch_ = false;
    std::string done_;
};

}  // namespace brushwork::test
