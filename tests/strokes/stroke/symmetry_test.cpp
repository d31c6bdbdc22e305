#include "brushwork/symmetry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "brushwork/ref.h"

namespace brushwork {
namespace {

constexpr float inf = std::numeric_limits<float>::infinity();

TEST(Symmetry, TheFirstSettingThatHoldsCounts) {
    for (int bits = 0; bits < 16; ++bits) {
        const auto symmetry = makeRef<Symmetry>();
        const bool x = bits & 1, y = bits & 2, rotates = bits & 4, radial = bits & 8;
        symmetry->setMirrorX(x);
        symmetry->setMirrorY(y);
        symmetry->setRotateOnly(rotates);
        symmetry->setRadial(radial);
        symmetry->setSectorCount(7);
        symmetry->setRadialAngle(0.5f);
        symmetry->setPinToSector(bits % 3 == 0);
        const auto setup = symmetrySetup(*symmetry, 10.0f, 20.0f);
        ASSERT_EQ(setup.has_value(), bits != 0);
        if (!setup) continue;
        const bool mirrors = x || y, turns = !mirrors && rotates;
        const int sectors = x && y ? 4 : mirrors ? 2 : turns ? 7 : 14;
        EXPECT_EQ(setup->rotationOnly, turns) << bits;
        EXPECT_EQ(setup->sectors, sectors) << bits;
        EXPECT_EQ(setup->axisX, mirrors ? (x ? 1.0f : 0.0f) : std::cos(0.5f)) << bits;
        EXPECT_EQ(setup->axisY, mirrors ? (x ? 0.0f : 1.0f) : std::sin(0.5f)) << bits;
        EXPECT_EQ(setup->centerX, 10.0f);
        EXPECT_EQ(setup->centerY, 20.0f);
        EXPECT_EQ(setup->pinToSector, bits % 3 == 0);
    }
}

TEST(Symmetry, WhatCantBeUsedIsBroughtIntoBounds) {
    const auto sectors = [](bool rotationOnly, std::int32_t wanted) {
        SymmetrySetup setup;
        setup.rotationOnly = rotationOnly;
        setup.sectors = wanted;
        return usableSymmetry(setup).sectors;
    };
    EXPECT_EQ(sectors(false, 1), 2);
    EXPECT_EQ(sectors(true, 1), 2);
    EXPECT_EQ(sectors(false, 3), 2);
    EXPECT_EQ(sectors(true, 3), 3);
    EXPECT_EQ(sectors(false, 65), 64);
    EXPECT_EQ(sectors(true, std::numeric_limits<std::int32_t>::min()), 2);
    EXPECT_EQ(sectors(false, std::numeric_limits<std::int32_t>::max()), maximumSectors);
    const auto symmetry = makeRef<Symmetry>();
    symmetry->setRadial(true);
    symmetry->setRadialAngle(inf);
    symmetry->setSectorCount(std::numeric_limits<std::int32_t>::max());
    const SymmetrySetup setup = usableSymmetry(*symmetrySetup(*symmetry, inf, -inf));
    EXPECT_EQ(setup.sectors, maximumSectors);
    EXPECT_EQ(setup.centerX, 0.0f);
    EXPECT_EQ(setup.centerY, 0.0f);
    EXPECT_EQ(setup.axisX, 1.0f);
    EXPECT_EQ(setup.axisY, 0.0f);
}

}  // namespace
}  // namespace brushwork
