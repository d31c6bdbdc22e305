// npc::SymmetryStrokeRenderer: a stroke renderer that paints each stroke many times at once.
//
//     SymmetryStrokeRenderer renderer(high.get(), low.get());
//     renderer.setSymmetry(setup);
//     renderer.setParameters(stroke, &brush);
//     renderer.beginStroke(false);              // and on as with any stroke renderer
//
// It paints through children: one that lays each stamp with all its copies; or, for brushes that
// carry paint along, one a copy, each with paint of its own. All lay their stamps with this
// renderer's stamp renderer, which has a child's paint in its hands while that one's turn lasts:
// where 64 copies take turns, a stamp renderer each would be found out of the processor's cache.
// Children live from one beginStroke to the next, run one after the other on the stroke's thread,
// and tell of the boxes they touch through this renderer's callback.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "brushwork/symmetry.h"
#include "strokes/stroke/stroke_renderer.h"
#include "strokes/stroke/symmetry_stroke_interpolator.h"

namespace brushwork::npc {

class SymmetryStrokeRenderer final : public StrokeRenderer {
  public:
    using StrokeRenderer::StrokeRenderer;
    ~SymmetryStrokeRenderer() override;

    // A symmetry renderer, too, without children.
    [[nodiscard]] std::shared_ptr<StrokeRenderer> clone() const override;
    bool setStampRenderer(const std::shared_ptr<StampRenderer>& stampRenderer) override;
    void setParameters(const StrokeParameters& stroke, const BrushParameters* brush) override;
    void resetParameters() override;
    void prepareInterpolator() override;
    void strokeEnded() override;
    // True if all children laid a stamp.
    bool drawSegment(StampPoint& point) override;

    // Hold from the next beginStroke on. What can't be used is brought into bounds, see
    // usableSymmetry.
    void setSymmetry(const SymmetrySetup& setup);
    void setSymmetry(bool rotationOnly, std::int32_t sectors, float centerX, float centerY,
                     float axisX, float axisY, bool pinToSector);
    // Paints that copy alone, 0 being the stroke itself; -1 for all.
    void setReplica(std::int32_t replica);
    // A child for each copy, whatever the brush. Off, only brushes that carry paint have them.
    void setSeparateRenderers(bool on) { separateRenderers_ = on; }

    [[nodiscard]] const SymmetrySetup& symmetry() const { return setup_; }
    [[nodiscard]] bool separateRenderers() const { return separateRenderers_; }
    [[nodiscard]] const std::vector<std::shared_ptr<StrokeRenderer>>& children() const {
        return children_;
    }

  protected:
    void pathBegan(const StampPoint&) override {}
    bool layBeside(const StampPoint& point) override;
    void layDot(const StampPoint&) override {}  // the children's

  private:
    [[nodiscard]] bool separates() const;
    void resizeChildren(std::size_t count, bool separate);
    template <class Work>
    void inTurn(const Work& work);

    SymmetrySetup setup_;
    std::int32_t replica_ = -1;
    bool needsRebuild_ = true;
    bool separateRenderers_ = false;
    bool childrenSeparate_ = false;  // those there are
    std::int32_t builtFlipMode_ = 0;
    std::vector<std::shared_ptr<StrokeRenderer>> children_;
    std::vector<std::shared_ptr<SymmetryStrokeInterpolator>> interpolators_;
    std::vector<StampSource> carried_;  // by the children
};

}  // namespace brushwork::npc
