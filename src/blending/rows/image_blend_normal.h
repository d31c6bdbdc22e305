// blender::Normal: lays a picture or a colour over another. Runs of empty and of opaque pixels are
// passed over and copied.
#pragma once

#include "blending/modes/normal_formula.h"
#include "blending/rows/image_blend.h"

namespace brushwork::blender {

// What lies below weighs 255 - a, and colours saturate: see npc::RowNormalFormula.
template <class D = std::uint32_t, class S = D>
class Normal : public Base<D, S> {
  public:
    void blendRow(D* destinations, const S* sources, std::size_t count) override {
        if (count == 0 || (this->constantSource && *sources == 0)) return;
        typename Base<D, S>::Constants constants;
        const npc::KernelRow row = this->kernelRow(destinations, sources, count, constants);
        if (this->constantSource)
            npc::blendByteRow(npc::RowNormalFormula<true>{}, row);
        else
            npc::blendByteRow(npc::RowNormalFormula<false>{}, row);
    }

  protected:
    ~Normal() override = default;
};

}  // namespace brushwork::blender
