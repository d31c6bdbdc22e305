// npc::SymmetryStrokeInterpolator: the stamps of a path, each followed by its copies.
//
//     SymmetryStrokeInterpolator interpolator(setup);
//     interpolator.begin(&parameters);
//     interpolator.addPoint(point);
//     while (interpolator.nextStamp(stamp)) draw(stamp);   // stamp, its copies, the next stamp,
//     ...
//
// Copies stand as close as the stroke's own stamps and share their size, strength and random
// changes. Mirrored ones have a negative scaleX, so that an image tip is mirrored, too.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "brushwork/symmetry.h"
#include "strokes/path/stroke_interpolator.h"
#include "strokes/stamp/stamp_renderer.h"

namespace brushwork::npc {

class SymmetryStrokeInterpolator final : public StrokeInterpolator {
  public:
    explicit SymmetryStrokeInterpolator(const SymmetrySetup& setup);

    void addPoint(StampPoint& point) override;
    bool nextStamp(StampPoint& stamp) override;
    // Of the path itself, without the transform.
    void tangent(float& x, float& y) override;
    bool copyOf(const StampPoint& stamp, std::int32_t n, StampPoint& copy) const override;
    // Mirrored and turned as the last stamp was.
    void stampTangent(float& x, float& y) override;

    // Makes only that copy, 0 being the stroke itself; -1 for all.
    void setReplica(std::int32_t replica) { replica_ = replica; }
    // A pinned stroke is painted in this sector; -1: in the one in which it begins.
    void setFixedSector(std::int32_t sector) { fixedSector_ = sector; }
    // Who lays the stamps, from the next one on; may be null. With it a copy is taken from where
    // its stamp really comes to lie on that renderer's grid: about axes on that grid the pictures
    // are then exact mirror images. And the copies of a round tip aren't turned, so that they share
    // their stamp's mask.
    void setStampRenderer(std::shared_ptr<const StampRenderer> renderer);

    [[nodiscard]] const SymmetrySetup& setup() const { return setup_; }
    [[nodiscard]] std::int32_t replica() const { return replica_; }
    // The sector in which a pinned stroke began; -1 before it.
    [[nodiscard]] std::int32_t startSector() const { return startSector_; }
    // 0 to sectors - 1, from the axis on against the clock. The y-flip mode mirrors both the place
    // and the axis: sectors then go with the clock from the axis as it was given, while copies are
    // mirrored about the flipped one. The two meet where twice the axis' angle is a whole number of
    // sectors.
    [[nodiscard]] std::int32_t sectorOf(float x, float y) const;

  private:
    // (x, y) to (xx x + xy y, yx x + yy y) from the centre. An angle becomes `turn` plus itself, or
    // for a mirrored copy `turn` less itself.
    struct Copy {
        double xx, xy, yx, yy;
        float turn;  // degrees
        bool mirrored;
    };
    static Copy turned(double degrees);
    static Copy mirrored(double degrees);

    [[nodiscard]] bool hasReplica() const { return replica_ >= 0 && replica_ < setup_.sectors; }
    [[nodiscard]] bool isOutside(const StampPoint& stamp) const;
    bool fetchStamp();
    [[nodiscard]] StampPoint laid(const StampPoint& stamp) const;
    [[nodiscard]] StampPoint copyAt(const StampPoint& laid, std::int32_t n) const;

    SymmetrySetup setup_;
    std::int32_t fixedSector_ = -1;
    std::int32_t startSector_ = -1;
    std::int32_t replica_ = -1;
    std::int32_t nextReplica_ = 0;  // of the present stamp
    std::int32_t lastReplica_ = 0;  // the last one that went out
    double axisAngle_ = 0.0;        // radians
    std::vector<Copy> copies_;
    std::shared_ptr<const StampRenderer> renderer_;
    StampPoint laid_;  // the present stamp
};

}  // namespace brushwork::npc
