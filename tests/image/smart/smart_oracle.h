// Random operations on smart images, each done on its model too, and no difference in any byte.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "brushwork/ref.h"
#include "image/smart/il_smart_image.h"
#include "image/smart/smart_model.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork::test {

// One episode: some images in one window, made, changed and destroyed. Everything follows from the
// seed.
class SmartOracle {
  public:
    explicit SmartOracle(std::uint64_t seed);
    ~SmartOracle();

    // Does so many operations and destroys all images. Empty, or what went wrong and where.
    [[nodiscard]] std::string run(std::uint64_t operations);

  private:
    struct Node {
        Ref<ilSmartImage> real;
        std::shared_ptr<ModelImage> model;
    };
    struct Memory {
        Ref<ilSPMemoryImg> real;
        std::shared_ptr<ModelMemory> model;
        bool isParent = false;
    };
    struct Config {
        ilImageConfig real;
        bool given = false;
    };
    using Bytes = std::vector<std::uint8_t>;
    static constexpr std::int32_t side = 128;       // of a page
    static constexpr std::uint8_t sentinel = 0xA7;  // where nothing was read to

    [[nodiscard]] static std::string textOf(const ilTile& box);
    [[nodiscard]] std::uint64_t random();
    [[nodiscard]] std::int32_t pick(std::int32_t least, std::int32_t most);
    [[nodiscard]] bool chance(std::int32_t percent) { return pick(1, 100) <= percent; }
    [[nodiscard]] std::uint32_t colour();
    [[nodiscard]] ilTile box();
    [[nodiscard]] ilTile smallBox();
    [[nodiscard]] Node& node() {
        return nodes_[static_cast<std::size_t>(pick(0, static_cast<int>(nodes_.size()) - 1))];
    }
    [[nodiscard]] Bytes pixels(const ilTile& box, std::int32_t channels, std::uint32_t fill);
    [[nodiscard]] Config config(std::int32_t channels);

    void step();
    void settle();
    void make();
    void makeChild();
    void makeOverMemory();
    void write();
    void writeConverted();
    void readConverted();
    void fill();
    void copy();
    void copyChannels();
    void copyMemory();
    void lock();
    void pixel();
    void setFill();
    void push();
    void collapse();
    void materialize();
    void destroy();
    void bounds();
    void shrink();
    void ask();
    void lookAtPage(Node& of, std::int32_t x, std::int32_t y);
    void sanitize();
    void cloneImage();
    void adopt(Node& node);
    void forget(std::size_t index);
    void checkPlain(Node& node, const ilTile& box);
    void checkBounds(Node& node);
    void checkMemory(const Memory& memory);
    void checkAll();
    void add(const Ref<ilSmartImage>& real, const std::shared_ptr<ModelImage>& model);
    void expect(bool holds, const std::string& what);
    void told(const std::string& what) { last_ = what; }
    [[nodiscard]] bool canPush(const ModelImage& model) const;

    std::uint64_t seed_;
    std::uint64_t random_;  // state
    ModelWindow window_;
    std::uint64_t checkEvery_ = 1000;  // operations between looks at everything
    std::vector<Node> nodes_;
    std::vector<Memory> memories_;
    std::vector<std::weak_ptr<ModelImage>> all_;
    std::string last_, failure_;
};

}  // namespace brushwork::test
