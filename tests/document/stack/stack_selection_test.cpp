// The selection beside a plain plane of bytes.
#include "document/stack/stack_selection.h"

#include <gtest/gtest.h>

#include "document/layer/layer_recipe.h"
#include "document/stack/layer_stack.h"
#include "foundation/services/log.h"

namespace brushwork::test {
namespace {

constexpr ilTile canvas = flatTile(0, 0, 200, 150);
// All that a test may reach.
constexpr ilTile world = flatTile(-200, -200, 500, 460);

// The selection as the document sees it.
std::vector<std::uint8_t> selectedBytes(LayerStack& stack) {
    Layer& layer = *stack.selectionLayer();
    ilTile box = world;
    box.x -= layer.offsetXInt();
    box.y -= layer.offsetYInt();
    return bytesOf(layer.colorImageRef(), box);
}

struct Plane {
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(static_cast<std::size_t>(world.nx) *
                                                                static_cast<std::size_t>(world.ny));

    [[nodiscard]] std::uint8_t& at(int x, int y) {
        return bytes[static_cast<std::size_t>(y - world.y) * static_cast<std::size_t>(world.nx) +
                     static_cast<std::size_t>(x - world.x)];
    }
    template <class Change>
    void each(const ilTile& box, const Change& change) {
        const ilTile part = intersection(box, world);
        for (int y = part.y; y < part.endY(); ++y)
            for (int x = part.x; x < part.endX(); ++x) change(at(x, y), x, y);
    }
};

std::uint8_t over(int source, int target) {
    return static_cast<std::uint8_t>(std::min(255, source + partOf(target, 255 - source)));
}

ilTile boundsOfSelected(Plane& plane, std::uint8_t least) {
    ilTile box;
    plane.each(world, [&](std::uint8_t& value, int x, int y) {
        if (value >= least) box = unionOf(box, flatTile(x, y, 1, 1));
    });
    return box;
}

class Selecting : public testing::Test {
  protected:
    Selecting() : stack_(new LayerStack(0, 0, canvas.nx, canvas.ny)) { stack_->addLayer({}); }

    void check(const std::string& what) {
        ASSERT_EQ(difference(selectedBytes(*stack_), plane_.bytes, 1, world), "") << what;
        bool empty = false;
        ilTile box;
        stack_->selectionBounds(empty, box);
        // Of a full byte a value of 1 lets nothing through: the bounds leave it out.
        const ilTile wanted = boundsOfSelected(plane_, 2);
        const bool isSelected = !boundsOfSelected(plane_, 1).isEmpty();
        ASSERT_EQ(empty, wanted.isEmpty()) << what;
        if (!empty) {
            ASSERT_EQ(box, wanted) << what;
        }
        ASSERT_EQ(stack_->hasSelection(), isSelected) << what;
        ASSERT_EQ(stack_->parts().selection.active, isSelected) << what;
        if (isSelected) {
            ASSERT_NE(stack_->paintMask(), nullptr);
            ASSERT_EQ(difference(bytesOf(stack_->paintMask(), world), plane_.bytes, 1, world), "")
                << what;
        }
        ASSERT_TRUE(std::exchange(stack_->parts().selection.changed, false)) << what;
    }

    std::string edit(Dice& dice) {
        const ilTile box = flatTile(pick(dice, -60, 120), pick(dice, -60, 90), pick(dice, 1, 90),
                                    pick(dice, 1, 80));
        switch (pick(dice, 0, 7)) {
            case 0:
                stack_->addRectToSelection(box);
                plane_.each(box, [](std::uint8_t& value, int, int) { value = 255; });
                return "add a box";
            case 1:
                stack_->subtractRectFromSelection(box);
                plane_.each(box, [](std::uint8_t& value, int, int) { value = 0; });
                return "take a box away";
            case 2:
            case 3: {
                const Ref<ilSmartImage> image = noise(1, box, dice);
                const int dx = pick(dice, -10, 10);
                const int dy = pick(dice, -10, 10);
                const bool adds = pick(dice, 0, 1) == 0;
                const float half = pick(dice, 0, 1) == 0 ? 0.25f : -0.5f;
                const auto x = static_cast<float>(dx) + (dx > 0 ? -half : half);
                if (adds)
                    stack_->addImageToSelection(*image, x, static_cast<float>(dy));
                else
                    stack_->subtractImageFromSelection(*image, x, static_cast<float>(dy));
                const auto left = static_cast<int>(std::round(x));
                plane_.each(moved(box, left, dy), [&](std::uint8_t& value, int px, int py) {
                    const auto source = image->getPixel(px - left, py - dy);
                    value = adds ? over(static_cast<int>(source), value)
                                 : static_cast<std::uint8_t>(
                                       partOf(value, 255 - static_cast<int>(source)));
                });
                return adds ? "add an image" : "take an image away";
            }
            case 4: {
                ilTile area = boxOf(stack_->selectionLayer()->colorImageRef());
                area.x += stack_->selectionLayer()->offsetXInt();
                area.y += stack_->selectionLayer()->offsetYInt();
                stack_->invertSelection();
                plane_.each(unionOf(area, canvas), [](std::uint8_t& value, int, int) {
                    value = static_cast<std::uint8_t>(255 - value);
                });
                return "invert";
            }
            case 5:
                stack_->resetSelection();
                plane_ = Plane();
                return "reset";
            case 6: {
                const int dx = pick(dice, -2, 2);
                const int dy = pick(dice, -2, 2);
                stack_->moveSelection(static_cast<float>(dx), static_cast<float>(dy));
                Plane before = plane_;
                plane_.each(world, [&](std::uint8_t& value, int x, int y) {
                    value =
                        holds(world, x - dx, y - dy) ? before.at(x - dx, y - dy) : std::uint8_t{0};
                });
                return "move";
            }
            default: {
                const Ref<ilSmartImage> image = noise(1, box, dice);
                stack_->setSelectionImage(image.get(), 3.0f, -2.0f);
                plane_ = Plane();
                plane_.each(moved(box, 3, -2), [&](std::uint8_t& value, int x, int y) {
                    value = static_cast<std::uint8_t>(image->getPixel(x - 3, y + 2));
                });
                return "replace";
            }
        }
    }

    static ilTile moved(ilTile box, int dx, int dy) {
        box.x += dx;
        box.y += dy;
        return box;
    }

    Ref<LayerStack> stack_;
    Plane plane_;
};

TEST_F(Selecting, IsArithmeticOnAPlane) {
    for (std::uint32_t seed = 1; seed <= 25; ++seed) {
        Dice dice(seed);
        stack_ = Ref<LayerStack>(new LayerStack(0, 0, canvas.nx, canvas.ny));
        stack_->addLayer({});
        plane_ = Plane();
        std::string history = "seed " + std::to_string(seed);
        for (int step = 0; step < 25; ++step) {
            history += "; " + edit(dice);
            ASSERT_NO_FATAL_FAILURE(check(history));
        }
    }
}

TEST_F(Selecting, BySelectAllAndImages) {
    stack_->addRectToSelection(flatTile(0, 0, 10, 10));
    stack_->selectAll(flatTile(20, 30, 40, 50));
    plane_.each(flatTile(20, 30, 40, 50), [](std::uint8_t& value, int, int) { value = 255; });
    check("all");
    const Ref<ilSmartImage> image = blank(1);
    paintSolid(*image, flatTile(-5, 7, 30, 20), {99});
    stack_->selectImage(*image);
    plane_ = Plane();
    plane_.each(flatTile(-5, 7, 30, 20), [](std::uint8_t& value, int, int) { value = 99; });
    check("image");
}

TEST_F(Selecting, IsOutOfForceWhileItIsPaintedOn) {
    stack_->selectAll(flatTile(20, 30, 40, 50));
    EXPECT_EQ(stack_->selectionLayer()->name(), znString::IString(u"Selection"));
    stack_->makeSelectionActive();
    EXPECT_EQ(stack_->activeIndex(true), 2);
    EXPECT_FALSE(stack_->parts().selection.active);
    EXPECT_EQ(stack_->paintOps()->image(), stack_->selectionLayer()->colorImageRef());
    stack_->setActiveIndex(1, false, false, true);
    EXPECT_TRUE(stack_->parts().selection.active);
    stack_->setEnabled(stack_->selectionLayer()->id(), false);
    EXPECT_FALSE(stack_->hasSelection());
    EXPECT_EQ(stack_->paintMask(), nullptr);
}

TEST_F(Selecting, ClearedRestrictsNothing) {
    stack_->addRectToSelection(flatTile(20, 30, 40, 50));
    stack_->clearSelection();
    EXPECT_FALSE(stack_->hasSelection());
    EXPECT_EQ(stack_->paintMask(), nullptr);
    stack_->parts().selection.layer.reset();
    stack_->parts().selection.changed = false;
    stack_->clearSelection();
    EXPECT_TRUE(stack_->parts().selection.changed);
    stack_->addRectToSelection(flatTile(1, 2, 3, 4));
    EXPECT_TRUE(stack_->hasSelection());
}

// With four channels the selection comes out blank; colour and opacity stay.
TEST_F(Selecting, TakesImagesOfOneChannelAlone) {
    stack_->setSelectionColor({0.1f, 0.2f, 0.3f, 1.0f}, 0.75f);
    stack_->selectAll(flatTile(20, 30, 40, 50));
    const Ref<ilSmartImage> image = blank(4, 255);
    std::string said;
    setLogSink([&](std::string_view text) { said += text; });
    stack_->setSelectionImage(image.get(), 0.0f, 0.0f);
    setLogSink({});
    EXPECT_EQ(said, "Can't copy a 1 channel image to the selection mask\n");
    check("blank");
    EXPECT_EQ(stack_->selectionLayer()->overlayOpacity(), 0.75f);
    EXPECT_EQ(stack_->selectionLayer()->overlayColor()[1], 0.2f);
}

// Where nothing is selected a stroke leaves each byte; where it is half, about half of it comes.
TEST_F(Selecting, RestrictsPainting) {
    for (std::uint32_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        stack_ = Ref<LayerStack>(new LayerStack(0, 0, canvas.nx, canvas.ny));
        const Ref<ilSmartImage> ground = noise(4, flatTile(-30, -30, 260, 220), dice);
        stack::NewLayer wanted;
        wanted.color = ground.get();
        wanted.x = pick(dice, -20, 20);
        wanted.y = pick(dice, -20, 20);
        const std::int32_t id = stack_->addLayer(wanted);
        const ilTile some = flatTile(pick(dice, -30, 60), pick(dice, -30, 40), pick(dice, 40, 150),
                                     pick(dice, 40, 150));
        const Ref<ilSmartImage> soft = noise(1, some, dice);
        stack_->selectImage(*soft);
        Layer& layer = *stack_->layerById(id);
        ilTile inside = world;
        inside.x -= layer.offsetXInt();
        inside.y -= layer.offsetYInt();
        const auto before = bytesOf(layer.colorImageRef(), inside);
        switch (seed % 4) {
            case 0: stack_->fillLayer({1.0f, 0.5f, 0.0f, 1.0f}, false); break;
            case 1: stack_->clearLayer(false); break;
            case 2:
                ASSERT_TRUE(stack_->floodFill(90.0f, 70.0f, {0, 0, 1, 1}, 1.0f, id));
                stack_->endFill();
                break;
            default: {
                const Ref<ilSmartImage> picture = noise(4, flatTile(0, 0, 200, 150), dice);
                stack_->fillWithImage(*picture, false, true);
            }
        }
        const auto after = bytesOf(layer.colorImageRef(), inside);
        int kept = 0;
        int changed = 0;
        for (std::size_t n = 0; n < before.size(); n += 4) {
            const auto at = static_cast<int>(n / 4);
            const auto value = soft->getPixel(world.x + at % world.nx, world.y + at / world.nx);
            for (std::size_t c = 0; c < 4; ++c) {
                if (value == 0) {
                    ASSERT_EQ(before[n + c], after[n + c]) << "unselected pixel " << at;
                    ++kept;
                } else if (before[n + c] != after[n + c]) {
                    ++changed;
                }
            }
        }
        EXPECT_GT(kept, 0);
        EXPECT_GT(changed, 0);
    }
}

TEST_F(Selecting, DuplicatesAndLiftsWhatIsSelected) {
    Dice dice(4);
    const Ref<ilSmartImage> picture = noise(4, flatTile(-20, -10, 150, 120), dice);
    stack::NewLayer wanted;
    wanted.color = picture.get();
    wanted.x = 7;
    const std::int32_t id = stack_->addLayer(wanted);
    const ilTile some = flatTile(30, 20, 50, 40);
    stack_->selectAll(some);
    const std::int32_t copy = stack_->duplicateLayer();
    const ilTile shifted = moved(some, -7, 0);
    EXPECT_EQ(boxOf(stack_->layerById(copy)->colorImageRef()), shifted);
    EXPECT_EQ(bytesOf(stack_->layerById(copy)->colorImageRef(), shifted),
              bytesOf(picture.get(), shifted));
    stack_->setActiveIndex(stack_->indexOfId(id, true), false, false, true);
    const std::int32_t lifted = stack_->newTemporaryLayer();
    EXPECT_EQ(stack_->layerName(lifted), znString::IString(u"_______Temporary_Layer_______"));
    EXPECT_EQ(bytesOf(stack_->layerById(lifted)->colorImageRef(), shifted),
              bytesOf(picture.get(), shifted));
    EXPECT_FALSE(stack_->hasSelection());
    const auto rest = bytesOf(stack_->layerById(id)->colorImageRef(), shifted);
    EXPECT_EQ(std::count(rest.begin(), rest.end(), 0), static_cast<std::ptrdiff_t>(rest.size()));
    ASSERT_TRUE(stack_->mergeDown(lifted, id));
    EXPECT_EQ(bytesOf(stack_->layerById(id)->colorImageRef(), world),
              bytesOf(picture.get(), moved(world, -7, 0)));
}

// A flood within the tolerance of the seed, the tolerance included, over all channels.
TEST_F(Selecting, ByWand) {
    for (std::uint32_t seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const ilTile box = flatTile(-10, 5, 90, 70);
        const Ref<ilSmartImage> picture = blank(4);
        // Written as a whole, so that the layer's box is no larger.
        std::vector<std::uint32_t> pixels;
        for (int n = 0; n < box.nx * box.ny; ++n)
            pixels.push_back(0xFF000000u | static_cast<std::uint32_t>(pick(dice, 0, 9)));
        picture->writeRegion(box, pixels.data(), box);
        stack::NewLayer wanted;
        wanted.color = picture.get();
        wanted.x = pick(dice, -9, 9);
        wanted.y = pick(dice, -9, 9);
        const std::int32_t id = stack_->addLayer(wanted);
        // Often outside: then from the nearest pixel.
        const int x = pick(dice, -40, 120);
        const int y = pick(dice, -40, 120);
        ASSERT_TRUE(stack_->magicWand(static_cast<float>(x), static_cast<float>(y), 6.0f / 255.0f,
                                      {}, true, id));
        const int seedX = std::clamp(x - wanted.x, box.x, box.endX() - 1);
        const int seedY = std::clamp(y - wanted.y, box.y, box.endY() - 1);
        const auto target = static_cast<int>(picture->getPixel(seedX, seedY) & 0xFF);
        plane_ = Plane();
        std::vector<std::pair<int, int>> open{{seedX, seedY}};
        while (!open.empty()) {
            const auto [px, py] = open.back();
            open.pop_back();
            if (!holds(box, px, py)) continue;
            std::uint8_t& value = plane_.at(px + wanted.x, py + wanted.y);
            if (value != 0 ||
                std::abs(static_cast<int>(picture->getPixel(px, py) & 0xFF) - target) > 6)
                continue;
            value = 255;
            for (const auto& [dx, dy] :
                 std::vector<std::pair<int, int>>{{1, 0}, {-1, 0}, {0, 1}, {0, -1}})
                open.emplace_back(px + dx, py + dy);
        }
        check("wand");
        EXPECT_FALSE(stack_->isFloodFilling());
    }
}

TEST_F(Selecting, ByWandNeedsPixels) {
    EXPECT_FALSE(stack_->magicWand(1, 1, 0.1f, {}, true, activeOne)) << "blank";
    stack::NewLayer shapes;
    shapes.shape = true;
    EXPECT_FALSE(stack_->magicWand(1, 1, 0.1f, {}, true, stack_->addLayer(shapes)));
    EXPECT_FALSE(stack_->magicWand(1, 1, 0.1f, {}, true, 4711));
}

// Full inside, nothing outside, and something between on the edge pixels; beside a crossing test
// with 8 x 8 samples a pixel.
TEST_F(Selecting, ByPolygon) {
    for (std::uint32_t seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        std::vector<ViewPoint> points;
        for (int n = pick(dice, 3, 6); n > 0; --n)
            points.push_back({static_cast<float>(pick(dice, -200, 800)) / 4.0f,
                              static_cast<float>(pick(dice, -200, 600)) / 4.0f});
        stack_->resetSelection();
        stack_->polygonSelect(points);
        const auto bytes = bytesOf(stack_->selectionLayer()->colorImageRef());
        const auto isInside = [&](float x, float y) {
            bool inside = false;
            for (std::size_t n = 0; n < points.size(); ++n) {
                const ViewPoint a = points[n];
                const ViewPoint b = points[(n + 1) % points.size()];
                if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x)
                    inside = !inside;
            }
            return inside;
        };
        int most = 0;
        long sum = 0;
        for (int y = frame.y; y < frame.endY(); ++y)
            for (int x = frame.x; x < frame.endX(); ++x) {
                int hits = 0;
                for (int s = 0; s < 64; ++s)
                    hits +=
                        isInside(static_cast<float>(x) + (static_cast<float>(s % 8) + 0.5f) / 8.0f,
                                 static_cast<float>(y) + (static_cast<float>(s / 8) + 0.5f) / 8.0f);
                const int is = bytes[static_cast<std::size_t>((y - frame.y) * frame.nx) +
                                     static_cast<std::size_t>(x - frame.x)];
                const int apart = std::abs(is - hits * 255 / 64);
                most = std::max(most, apart);
                sum += apart;
            }
        EXPECT_LE(most, 150);
        EXPECT_LT(static_cast<double>(sum) / (frame.nx * frame.ny), 0.2);
    }
    stack_->resetSelection();
    const ViewPoint line[] = {{1, 1}, {50, 50}};
    stack_->polygonSelect(line);
    EXPECT_FALSE(stack_->hasSelection());
}

TEST_F(Selecting, HasAnOutlineUntilItChanges) {
    stack_->selectAll(flatTile(20, 30, 40, 50));
    ilSmartImage* const outline = ilSmartImage::from(stack_->selectionOutline());
    ASSERT_NE(outline, nullptr);
    EXPECT_EQ(boxOf(outline), flatTile(20, 30, 40, 50));
    EXPECT_EQ(outline->getPixel(20, 55), 255u);
    EXPECT_EQ(outline->getPixel(21, 55), 0u);
    EXPECT_EQ(stack_->selectionOutline(), outline);
    stack_->addRectToSelection(flatTile(0, 0, 5, 5));
    EXPECT_EQ(boxOf(stack_->selectionOutline()), flatTile(0, 0, 60, 80));
}

// The outline marches by one step a tick, while this canvas is shown and nobody works on it.
struct OutlineHost {
    HostCallTable former = hostCallTable();
    std::int32_t wait = 0;
    HostTimerCallback callback = nullptr;
    void* argument = nullptr;
    int started = 0, stopped = 0;
    bool updating = false;
    std::vector<std::int32_t> phases;
    HostBox box{};
    std::vector<std::uint8_t> pixels;
    static inline OutlineHost* current = nullptr;

    OutlineHost() {
        current = this;
        HostCallTable& table = hostCallTable();
        table.startTimer = [](std::int32_t milliseconds, HostTimerCallback call, void* what) {
            current->wait = milliseconds;
            current->callback = call;
            current->argument = what;
            return static_cast<HostTimerId>(++current->started);
        };
        table.stopTimer = [](HostTimerId) { ++current->stopped; };
        table.isUpdating = [] { return current->updating; };
        table.drawOutline = [](HostCanvas, const void* bytes, std::int32_t phase,
                               const HostBox* where) {
            current->phases.push_back(phase);
            current->box = *where;
            const auto* const from = static_cast<const std::uint8_t*>(bytes);
            current->pixels.assign(from, from + where->nx * where->ny);
        };
    }
    OutlineHost(const OutlineHost&) = delete;
    OutlineHost& operator=(const OutlineHost&) = delete;
    ~OutlineHost() { hostCallTable() = former; }
    std::size_t ring() {
        const std::size_t before = phases.size();
        callback(argument);
        return phases.size() - before;
    }
};

TEST_F(Selecting, TheOutlineMarchesWhileItIsShown) {
    OutlineHost host;
    stack_->parts().plane.canvas = &host;
    SelectionState& selection = stack_->parts().selection;
    selection.mode = 1;
    stack_->addRectToSelection(flatTile(20, 30, 40, 50));
    stack::startSelectionTimer(stack_->parts());
    stack::startSelectionTimer(stack_->parts());
    EXPECT_EQ(host.started, 1);
    EXPECT_EQ(host.wait, 100);
    ASSERT_EQ(host.ring(), 1u);
    const std::vector<std::uint8_t> first = host.pixels;
    ASSERT_EQ(host.ring(), 1u);
    EXPECT_EQ(host.started, 3);
    EXPECT_EQ(host.phases, (std::vector<std::int32_t>{0x7ffffffe, 0x7ffffffd}));
    EXPECT_EQ(host.box.x, 20);
    EXPECT_EQ(host.box.y, 30);
    EXPECT_EQ(host.box.nx, 40);
    EXPECT_EQ(host.box.ny, 50);
    // The same edge, its dashes one pixel further along.
    EXPECT_NE(host.pixels, first);
    for (std::size_t n = 0; n < first.size(); ++n) {
        ASSERT_EQ(host.pixels[n] == 0, first[n] == 0) << n;
    }
    for (std::size_t n = 0; n + 1 < 40; ++n) ASSERT_EQ(host.pixels[n + 1], first[n]) << n;
    host.updating = true;
    EXPECT_EQ(host.ring(), 0u);
    host.updating = false;
    stack_->parts().isCurrent = false;
    EXPECT_EQ(host.ring(), 0u);
    stack_->parts().isCurrent = true;
    stack_->parts().fill.live = true;
    EXPECT_EQ(host.ring(), 0u);
    stack_->parts().fill.live = false;
    const Ref<Layer> active(stack_->activeLayer());
    stack_->makeSelectionActive();
    EXPECT_EQ(host.ring(), 0u);
    stack_->setActiveIndex(stack_->indexOf(active.get(), true), false, false, true);
    EXPECT_EQ(host.ring(), 1u);
    stack_->resetSelection();
    EXPECT_EQ(host.ring(), 0u);
    const int ticks = host.started;
    selection.mode = 0;
    EXPECT_EQ(host.ring(), 0u);
    EXPECT_EQ(host.started, ticks);
    selection.mode = 1;
    stack::startSelectionTimer(stack_->parts());
    stack_ = Ref<LayerStack>();
    EXPECT_EQ(host.stopped, 1);
}

TEST_F(Selecting, OfAllInvertedNothingIsSelected) {
    stack_->clearSelection();
    stack_->invertSelection();
    EXPECT_FALSE(stack_->hasSelection());
    stack_->invertSelection();
    EXPECT_TRUE(stack_->hasSelection());
}

}  // namespace
}  // namespace brushwork::test
