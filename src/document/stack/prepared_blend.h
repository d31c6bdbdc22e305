// PreparedBlend: one layer's own pixels over a target, made ready once and run part by part, with
// what is known of their pages: empty ones are left out, and an opaque one stands for all below it.
//
//     PreparedBlend blend(run, source);
//     if (blend.hides(part)) { ... nothing below needs drawing there ... }
//     blend.add(part);
//     blend.run();
//
// Meanwhile nobody else changes the source.
#pragma once

#include <cstdint>
#include <memory>

#include "document/stack/blend_run.h"

namespace brushwork {

class PreparedBlend {
  public:
    // `run.source` is `source`, four channels.
    PreparedBlend(const BlendRun& run, ilSmartImage& source);

    // Whether the part comes to show the source and nothing else.
    [[nodiscard]] bool hides(const ilTile& part);
    void add(const ilTile& part);
    // In place of add: puts the source's page there, without a copy of it. False where it isn't a
    // whole page of both images.
    bool share(const ilTile& part);
    // What was added. True if anything was drawn.
    bool run();

  private:
    [[nodiscard]] ilTile inSource(const ilTile& part) const;

    BlendRun run_;
    ilSmartImage& source_;
    std::shared_ptr<npc::GenericBlender> blender_;
    npc::TileSet parts_;
    bool skipsClear_;
    bool shared_ = false;
};

}  // namespace brushwork
