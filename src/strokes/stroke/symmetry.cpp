#include "brushwork/symmetry.h"

#include <algorithm>
#include <cmath>

namespace brushwork {
namespace {

float finiteOr0(float value) {
    return std::isfinite(value) ? value : 0.0f;
}

void pointAxis(SymmetrySetup& setup, float angle) {
    setup.axisX = static_cast<float>(std::cos(static_cast<double>(angle)));
    setup.axisY = static_cast<float>(std::sin(static_cast<double>(angle)));
}

}  // namespace

Symmetry::Symmetry() = default;
Symmetry::~Symmetry() = default;

std::optional<SymmetrySetup> symmetrySetup(const Symmetry& symmetry, float centerX, float centerY) {
    SymmetrySetup setup;
    setup.centerX = centerX;
    setup.centerY = centerY;
    setup.pinToSector = symmetry.pinToSector();
    const std::int32_t count = std::clamp(symmetry.sectorCount(), 1, maximumSectors);
    if (symmetry.mirrorX() && symmetry.mirrorY()) {
        setup.sectors = 4;
    } else if (symmetry.mirrorX()) {
        setup.sectors = 2;
    } else if (symmetry.mirrorY()) {
        setup.axisX = 0.0f;
        setup.axisY = 1.0f;
    } else if (symmetry.rotateOnly()) {
        setup.rotationOnly = true;
        setup.sectors = count;
        pointAxis(setup, symmetry.radialAngle());
    } else if (symmetry.radial()) {
        setup.sectors = 2 * count;
        pointAxis(setup, symmetry.radialAngle());
    } else {
        return std::nullopt;
    }
    return setup;
}

SymmetrySetup usableSymmetry(SymmetrySetup setup) {
    setup.sectors = std::clamp(setup.sectors, 2, maximumSectors);
    if (!setup.rotationOnly) setup.sectors -= setup.sectors % 2;
    setup.centerX = finiteOr0(setup.centerX);
    setup.centerY = finiteOr0(setup.centerY);
    if (!std::isfinite(setup.axisX) || !std::isfinite(setup.axisY)) {
        setup.axisX = 1.0f;
        setup.axisY = 0.0f;
    }
    return setup;
}

}  // namespace brushwork
