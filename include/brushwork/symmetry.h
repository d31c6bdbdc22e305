// Symmetry: painting a stroke many times at once, mirrored or turned about a centre.
//
//     const auto symmetry = makeRef<Symmetry>();
//     symmetry->setCenter(400.0f, 300.0f);
//     symmetry->setRadial(true);
//     symmetry->setSectorCount(6);       // six pairs, as in a kaleidoscope
#pragma once

#include <cstdint>
#include <optional>

#include "brushwork/export.h"
#include "brushwork/reference_count.h"

namespace brushwork {

// What a host sets. A value shared by reference; strokes take it over as they begin.
class BRUSHWORK_API Symmetry final : public zn::ReferenceCount {
  public:
    Symmetry();

  protected:
    ~Symmetry() override;

  public:
    // Which copies there are. The first of these that is on counts: both mirrors, mirrorX, mirrorY,
    // rotateOnly, radial. With none a stroke is painted once. All are off at first.
    [[nodiscard]] bool mirrorX() const { return mirrorX_; }
    [[nodiscard]] bool mirrorY() const { return mirrorY_; }
    [[nodiscard]] bool rotateOnly() const { return rotateOnly_; }
    [[nodiscard]] bool radial() const { return radial_; }
    void setMirrorX(bool on) { mirrorX_ = on; }        // about the line along x
    void setMirrorY(bool on) { mirrorY_ = on; }        // about the line along y
    void setRotateOnly(bool on) { rotateOnly_ = on; }  // turned by each sector
    void setRadial(bool on) { radial_ = on; }          // turned, and mirrored within each sector

    // Radians, from x toward y, of the first axis of rotateOnly and radial. 0 at first.
    [[nodiscard]] float radialAngle() const { return radialAngle_; }
    void setRadialAngle(float angle) { radialAngle_ = angle; }
    // Sectors of rotateOnly and radial; 2 at first. See maximumSectors.
    [[nodiscard]] std::int32_t sectorCount() const { return sectorCount_; }
    void setSectorCount(std::int32_t count) { sectorCount_ = count; }
    // Paint only where a stroke is in the sector in which it began. Off at first.
    [[nodiscard]] bool pinToSector() const { return pinToSector_; }
    void setPinToSector(bool on) { pinToSector_ = on; }
    // A painter of its own for each copy, whatever the brush. Off, which is how it begins, only
    // brushes that carry paint along have them.
    [[nodiscard]] bool separateRenderers() const { return separateRenderers_; }
    void setSeparateRenderers(bool on) { separateRenderers_ = on; }
    // In pixels of the document; (0, 0) at first.
    [[nodiscard]] float centerX() const { return centerX_; }
    [[nodiscard]] float centerY() const { return centerY_; }
    void setCenter(float x, float y) {
        centerX_ = x;
        centerY_ = y;
    }

  private:
    bool mirrorX_ = false, mirrorY_ = false;
    bool radial_ = false;
    bool rotateOnly_ = false;
    bool pinToSector_ = false;
    bool separateRenderers_ = false;
    float radialAngle_ = 0.0f;
    std::int32_t sectorCount_ = 2;
    float centerX_ = 0.0f, centerY_ = 0.0f;
};

// The same in the terms of a renderer.
struct SymmetrySetup {
    bool rotationOnly = false;  // copies by rotation; otherwise every other one is mirrored
    std::int32_t sectors = 2;   // copies, the stroke itself among them
    float centerX = 0.0f, centerY = 0.0f;  // layer pixels
    float axisX = 1.0f, axisY = 0.0f;      // the way of the first axis, of any length
    bool pinToSector = false;

    friend bool operator==(const SymmetrySetup&, const SymmetrySetup&) = default;
};

// More copies than these are not made.
inline constexpr std::int32_t maximumSectors = 1024;

// With the centre, which the symmetry gives in pixels of the document, at this place of the layer.
// Nothing if no copies are wanted.
[[nodiscard]] BRUSHWORK_API std::optional<SymmetrySetup> symmetrySetup(const Symmetry& symmetry,
                                                                       float centerX,
                                                                       float centerY);
// As renderers take it: 2 to maximumSectors copies, an even number unless they are only turned;
// what isn't a finite number counts as 0, an axis of such as (1, 0).
[[nodiscard]] BRUSHWORK_API SymmetrySetup usableSymmetry(SymmetrySetup setup);

}  // namespace brushwork
