#include "blending/modes/blender_registry.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace brushwork {
namespace {

TEST(BlenderRegistry, NumbersAndHoles) {
    const std::set<int> modes = {0,  1,  2,  3,  4,  5,  6,  8,  9,  10, 11, 13, 14, 15,
                                 16, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 32, 33, 100};
    std::set<std::string> names;
    for (int id = -200; id < 400; ++id) {
        const auto blender = npc::createBlender(id);
        const std::string name(blendModeName(static_cast<BlendModeId>(id)));
        ASSERT_EQ(blender != nullptr, modes.count(id) == 1) << id;
        ASSERT_EQ(name.empty(), !blender) << id;
        if (!blender) continue;
        EXPECT_EQ(blender->mode(), id);
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_EQ(blender->opacity16(), 65535u);
        EXPECT_EQ(blender->constantColor(), 0xFF000000u);
        // Replace and the wet modes that pick up run on empty sources.
        const bool runsOnEmpty = id == 24 || (id >= 27 && id <= 29);
        EXPECT_EQ(blender->skipEmpty(), !runsOnEmpty) << id;
    }
    EXPECT_EQ(names.size(), modes.size());
    EXPECT_EQ(npc::createBlender(BlendModeId::Pastel)->mode(), 29);
    EXPECT_EQ(blendModeName(BlendModeId::MaskMultiply), "MaskMultiply");
}

}  // namespace
}  // namespace brushwork
