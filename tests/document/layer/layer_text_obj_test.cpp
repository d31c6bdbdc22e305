#include "document/layer/layer_text_obj.h"

#include <gtest/gtest.h>

#include <cstring>

#include "brushwork/ref.h"

namespace brushwork::test {
namespace {

TEST(LayerTextObj, CopiesDeepAndEndsLongFontNames) {
    const Ref<LayerTextObj> text(new LayerTextObj);
    text->runTexts = {"first", "second"};
    text->runs.resize(2);
    text->runs[1].fontName.fill('x');
    text->runs[1].setColorPacked(0xFF800001);
    text->value3 = 7;
    const Ref<LayerTextObj> copy(new LayerTextObj(*text));
    EXPECT_EQ(copy->runTexts, text->runTexts);
    EXPECT_EQ(copy->runCount(), 2);
    EXPECT_EQ(copy->value3, 7);
    EXPECT_STREQ(copy->runs[0].fontName.data(), "Arial");
    EXPECT_EQ(std::strlen(copy->runs[1].fontName.data()), 99u);
    EXPECT_EQ(copy->runs[1].color, text->runs[1].color);
    EXPECT_EQ(Ref<LayerTextObj>(new LayerTextObj(*Ref<LayerTextObj>(new LayerTextObj)))->runCount(),
              0);
}

TEST(LayerTextObj, ColoursFromBytesReachBothEnds) {
    TextRun run;
    EXPECT_EQ(run.color, (std::array{1.0f, 0.0f, 0.0f, 1.0f}));
    run.setColorBytes(255, 0, 1, 128);
    EXPECT_EQ(run.color, (std::array{1.0f, 0.0f, 0.003921569f, 128.0f * 0.003921569f}));
    run.setColorPacked(0x800100FF);
    EXPECT_EQ(run.color, (std::array{1.0f, 0.0f, 0.003921569f, 128.0f * 0.003921569f}));
}

}  // namespace
}  // namespace brushwork::test
