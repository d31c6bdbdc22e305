#include "foundation/profiles/generic_function.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "foundation/profiles/linear_profile.h"
#include "foundation/profiles/poly_1d.h"
#include "foundation/profiles/solid_profile.h"
#include "foundation/profiles/spline_profile.h"

namespace brushwork {
namespace {

// Two of each class that differ in one field, each pair in another one.
std::vector<Ref<GenericFunction>> samples() {
    using Points = std::vector<LinearProfile::Point>;
    using Controls = std::vector<SplineProfile::Control>;
    return {
        makeRef<LinearProfile>(Points{{0, 0}, {1, 2}}),
        makeRef<LinearProfile>(Points{{0, 0}, {1, 2.5f}}),
        makeRef<LinearProfile>(Points{{0, 0}}),
        makeRef<Poly1D>(Poly1D::Coefficients{1, 0, 2}),
        makeRef<Poly1D>(Poly1D::Coefficients{1, 0, 2, 0, 0, 0, 0, 1}),
        makeRef<SolidProfile>(0.5f, 2.0f, 0.0f),
        makeRef<SolidProfile>(0.5f, 2.0f, 1.0f),
        makeRef<SolidProfile>(0.5f, 3.0f, 0.0f),
        makeRef<SplineProfile>(Controls{{1, 0}, {0.5f, 0}}),
        makeRef<SplineProfile>(Controls{{1, 0}, {0.5f, 1}}),
    };
}

TEST(GenericFunction, CopiesAreEqualAndAllOthersDiffer) {
    const auto functions = samples();
    for (std::size_t i = 0; i < functions.size(); ++i) {
        const Ref<GenericFunction> copy = functions[i]->copy();
        EXPECT_NE(copy.get(), functions[i].get());
        for (std::size_t j = 0; j < functions.size(); ++j) {
            EXPECT_EQ(copy->equals(*functions[j]), i == j) << i << ' ' << j;
        }
    }
    std::set<std::int32_t> ids;
    for (const auto& function : functions) ids.insert(function->typeId());
    EXPECT_EQ(ids.size(), 4u);
    EXPECT_FALSE(ids.contains(GenericFunction::newTypeId()));
}

TEST(GenericFunction, RangesAreTheSameAsPlaces) {
    for (const auto& function : samples()) {
        float out[20];
        function->evalRange(-0.3f, 0.07f, out, 20);
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(out[i], function->eval(-0.3f + static_cast<float>(i) * 0.07f)) << i;
        }
        EXPECT_FALSE(function->isConstant() && out[0] != out[19]);
    }
}

}  // namespace
}  // namespace brushwork
