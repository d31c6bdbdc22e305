#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <deque>

#include "document/stack/naive_compositor.h"
#include "document/stack/random_edits.h"
#include "platform/sanitizers.h"
#include "support/test_seed.h"

namespace brushwork::test {
namespace {

#if defined(NDEBUG)
constexpr bool isSlow = platform::sanitized;
#else
constexpr bool isSlow = true;
#endif
constexpr std::uint64_t defaultDocuments = isSlow ? 6 : 60;
constexpr int editsEach = 30;

std::uint64_t environment(const char* name, std::uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text && *text ? std::strtoull(text, nullptr, 10) : otherwise;
}

Picture planeOf(LayerStack& stack) {
    const ilTile box = stack.imagePlane()->box();
    return bytesOf(stack.imagePlane(), box);
}

// The tree, a line a layer from the bottom up.
std::string describe(const LayerChain& chain, const Layer* active, const std::string& indent) {
    static constexpr const char* roles[] = {"paint", "mask", "stencil"};
    std::string text;
    for (Layer* layer = chain.first.get(); layer; layer = layer->next.get()) {
        ilTile box;
        layer->contentBounds(box, true);
        text += "\n" + indent + std::to_string(layer->id()) + " " +
                (layer->asGroup() ? "group" : roles[static_cast<int>(layer->role())]) + " mode " +
                std::to_string(layer->blendMode()) + " opacity " +
                std::to_string(layer->opacity()) + (layer->visible() ? "" : " hidden") +
                (layer == active ? " active" : "") + (layer->wet().image ? " wet" : "") + " (" +
                std::to_string(box.x) + ", " + std::to_string(box.y) + ") " +
                std::to_string(box.nx) + " x " + std::to_string(box.ny) + " fill " +
                std::to_string(layer->colorImageRef()->fill().data()[0]);
        if (LayerGroup* const group = layer->asGroup())
            text += describe(group->children(), active, indent + "  ");
    }
    return text;
}

// One document and a row of edits. Empty, or what went wrong.
std::string episode(std::uint64_t seed, std::uint64_t& frames) {
    Dice dice(static_cast<std::uint32_t>(seed));
    const Ref<LayerStack> stack(
        new LayerStack(0, 0, pick(dice, 0, 3) == 0 ? 40 : 290, pick(dice, 1, 270)));
    RandomEdits edits(*stack, dice);
    edits.build(9);
    const ilTile box = stack->imagePlane()->box();
    std::deque<std::string> done{"build"};
    const auto fault = [&](const char* what, const Picture& is, const Picture& wanted) {
        std::string text = difference(is, wanted, 4, box);
        if (text.empty()) return text;
        text = "seed " + std::to_string(seed) + ": " + what + " " + text + " after";
        for (const std::string& each : done) text += "\n  " + each;
        stack->redrawAll();
        text += planeOf(*stack) == wanted ? "\nnot so once redrawn" : "\nso when redrawn, too";
        return text + "\nof" + describe(stack->parts().list, stack->activeLayer(), "  ");
    };
    for (int n = 0; n < editsEach; ++n) {
        for (int between = pick(dice, 0, 5) == 0 ? 3 : 1; between > 0; --between) {
            done.push_back(edits.edit());
            if (done.size() > 12) done.pop_front();
        }
        stack->present();
        ++frames;
        const Picture shown = planeOf(*stack);
        if (const std::string text = fault("the plane", shown, naivePicture(*stack)); !text.empty())
            return text;
        if (pick(dice, 0, 2) > 0) continue;
        stack->redrawAll();
        if (const std::string text = fault("redrawn", planeOf(*stack), shown); !text.empty())
            return text;
    }
    edits.finish();
    return {};
}

// BRUSHWORK_ORACLE_DOCUMENTS: how many. BRUSHWORK_ORACLE_SEED, or the seed of all random tests:
// where the seeds begin; that of a failure alone repeats it in the first episode.
TEST(Compositing, ShowsAfterEveryEditWhatBlendingWholeLayersShows) {
    const std::uint64_t all = environment("BRUSHWORK_ORACLE_DOCUMENTS", defaultDocuments);
    const std::uint64_t first =
        environment("BRUSHWORK_ORACLE_SEED", std::getenv("BRUSHWORK_SEED") ? testSeed() : 1);
    std::uint64_t frames = 0;
    for (std::uint64_t seed = first; seed < first + all; ++seed) {
        const std::string fault = episode(seed, frames);
        ASSERT_EQ(fault, "");
    }
    RecordProperty("seeds", std::to_string(first) + " to " + std::to_string(first + all - 1));
    std::printf("  %llu documents, %llu frames, seeds %llu to %llu\n",
                static_cast<unsigned long long>(all), static_cast<unsigned long long>(frames),
                static_cast<unsigned long long>(first),
                static_cast<unsigned long long>(first + all - 1));
}

}  // namespace
}  // namespace brushwork::test
