#include "geometry/ag_object_ref.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "geometry/spline_makers.h"

namespace brushwork {
namespace {

using znAG::AGShared;

AgCurvePtr ring() {
    std::vector<AgSplinePtr> splines;
    splines.push_back(test::make(test::circle(AG_HOMOGENEOUS)).spline);
    return agMakeCurve(std::move(splines), AG_PERIODIC).curve;
}

TEST(AgObjectRef, SharesOneObjectAndCountsIt) {
    const std::int32_t before = AGShared::liveCount();
    {
        AgCurveRef one = AgCurveRef::of(ring());
        ASSERT_TRUE(one);
        EXPECT_EQ(one->nbs, 1);
        AgCurveRef two = one;
        EXPECT_EQ(one, two);
        EXPECT_EQ(AGShared::liveCount(), before + 1);
        one.reset();
        EXPECT_FALSE(one);
        EXPECT_EQ(ag_check(two.get()), 0);
        const AgCurveRef other = AgCurveRef::of(ring());
        EXPECT_FALSE(two == other);
        EXPECT_EQ(AGShared::liveCount(), before + 2);
    }
    EXPECT_EQ(AGShared::liveCount(), before);
    EXPECT_FALSE(AgCurveRef::of(AgCurvePtr()));
    EXPECT_EQ(AGShared::liveCount(), before);
}

TEST(AgObjectRef, IsEmptyForAnotherClass) {
    const auto shared = makeRef<AGShared>(test::make(test::circle(AG_HOMOGENEOUS)).spline);
    EXPECT_FALSE(AgCurveRef(shared));
    EXPECT_TRUE(AgSplineRef(shared));
    EXPECT_FALSE(AgSplineRef(makeRef<AGShared>(AgObjectPtr())));
}

TEST(AgObjectRef, HoldersComeAndGoOnThreads) {
    const std::int32_t before = AGShared::liveCount();
    {
        const AgCurveRef curve = AgCurveRef::of(ring());
        std::vector<std::thread> threads;
        for (int k = 0; k < 4; ++k)
            threads.emplace_back([&curve] {
                for (int i = 0; i < 1000; ++i) {
                    const AgCurveRef mine = curve;
                    const AgCurveRef own = AgCurveRef::of(ring());
                    EXPECT_EQ(mine->nbs, own->nbs);
                }
            });
        for (std::thread& thread : threads) thread.join();
    }
    EXPECT_EQ(AGShared::liveCount(), before);
}

}  // namespace
}  // namespace brushwork
