// LayerTextObj: what a text layer was made from, kept so that a host can edit it again. The engine
// stores and copies it and reads none of it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "brushwork/resource.h"

namespace brushwork {

struct TextRun {
    std::array<char, 100> fontName{"Arial"};
    float size = 36.0f;
    std::array<float, 4> color{1.0f, 0.0f, 0.0f, 1.0f};  // from the bytes 255, 0, 0, 255
    std::array<std::uint8_t, 4> flags{};
    std::int32_t value = 0;

    // Each byte times 0.003921569; below 0.0001 is 0 and above 0.9999 is 1.
    void setColorBytes(std::uint8_t a, std::uint8_t b, std::uint8_t c, std::uint8_t d);
    // The same, the first component in the lowest byte.
    void setColorPacked(std::uint32_t color);
};

class LayerTextObj : public Resource {
  public:
    LayerTextObj();
    // Deep: at most 99 bytes of a font name.
    LayerTextObj(const LayerTextObj& other);
    LayerTextObj& operator=(const LayerTextObj&) = delete;

    std::vector<std::string> runTexts;  // one a run
    std::vector<TextRun> runs;          // as many
    std::int32_t value0 = 0, value1 = 0, value2 = 0;
    float scaleX = 1.0f, scaleY = 1.0f;
    std::int32_t value3 = 0, value4 = 0;

    [[nodiscard]] std::int32_t runCount() const { return static_cast<std::int32_t>(runs.size()); }

  protected:
    ~LayerTextObj() override;
};

}  // namespace brushwork
