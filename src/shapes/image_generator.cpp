#include "shapes/image_generator.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace brushwork {
namespace {

class SolidGenerator final : public ImageGenerator {
  public:
    [[nodiscard]] const char* name() const override { return solidGeneratorName; }
    [[nodiscard]] Paint paint(const Request& request) override {
        return {premultipliedBytes(request.color), nullptr};
    }
    [[nodiscard]] std::unique_ptr<ImageGenerator> clone() const override {
        return std::make_unique<SolidGenerator>(*this);
    }
};

using Registry = std::map<std::string, ImageGeneratorFactory, std::less<>>;

Registry& registry() {
    static Registry generators{
        {solidGeneratorName, [] { return std::make_unique<SolidGenerator>(); }}};
    return generators;
}

float share(float value) {
    return value > 0.0f ? std::min(value, 1.0f) : 0.0f;
}

std::uint8_t toByte(float value) {
    return static_cast<std::uint8_t>(value * 255.0f + 0.5f);
}

}  // namespace

ImageGenerator::~ImageGenerator() = default;

std::array<std::uint8_t, 4> premultipliedBytes(const std::array<float, 4>& color) {
    const float alpha = share(color[3]);
    return {toByte(share(color[0]) * alpha), toByte(share(color[1]) * alpha),
            toByte(share(color[2]) * alpha), toByte(alpha)};
}

bool registerImageGenerator(std::string_view name, ImageGeneratorFactory factory) {
    if (name.empty() || !factory) return false;
    return registry().try_emplace(std::string(name), std::move(factory)).second;
}

void unregisterImageGenerator(std::string_view name) {
    if (name == solidGeneratorName) return;
    const auto found = registry().find(name);
    if (found != registry().end()) registry().erase(found);
}

std::unique_ptr<ImageGenerator> createImageGenerator(std::string_view name) {
    const auto found = registry().find(name);
    return found == registry().end() ? nullptr : found->second();
}

}  // namespace brushwork
