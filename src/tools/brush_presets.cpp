#include "tools/brush_presets.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

#include "brushwork/i_string.h"
#include "image/work/il_sp_memory_img.h"
#include "platform/process_calls.h"
#include "tools/brush_images.h"
#include "tools/picture_files.h"

namespace brushwork::tools {
namespace {

using Refusal = std::optional<std::string>;
namespace fs = std::filesystem;

constexpr float widestRadius = maximumStampRadius;
constexpr std::size_t mostFileBytes = 1u << 20;

struct Kind {
    const char* word;
    std::int32_t number;  // of StrokeParameters::brushKind
};
constexpr Kind kinds[] = {
    {"paint", 0},  {"marker", 1},  {"smudge", 2}, {"finger", 3}, {"colourless marker", 4},
    {"pastel", 6}, {"replace", 7}, {"eraser", 8}, {"glow", 9}};
constexpr std::int32_t markerKind = 1;

Refusal changeTip(const Operation& tip, const fs::path& folder, BrushPreset& preset) {
    preset.brush.proceduralTip = false;
    if (tip.has("file")) {
        const auto fault =
            readPicture((folder / tip.text("file")).string(),
                        tip.flag("in_colour") ? PictureUse::Colors : PictureUse::Mask, preset.tip);
        return fault ? Refusal(fault->message) : std::nullopt;
    }
    const auto image =
        ellipseTip(tip.number("roundness", 1.0f), tip.number("angle"), tip.number("softness"));
    if (!image) return "no memory for the tip";
    preset.tip = ImageRef(image.get());
    return std::nullopt;
}

Refusal changeTexture(const Operation& texture, const fs::path& folder, BrushPreset& preset) {
    preset.texture = makeRef<BrushTextureParameters>();
    ImageRef paper;
    if (texture.has("file")) {
        const auto fault =
            readPicture((folder / texture.text("file")).string(), PictureUse::Mask, paper);
        if (fault) return fault->message;
    } else {
        const auto image = paperGrain(texture.number("grain", 4.0f),
                                      static_cast<std::uint32_t>(texture.integer("grain_seed", 1)));
        if (!image) return "no memory for the paper";
        paper = ImageRef(image.get());
    }
    preset.texture->image = Ref<ilImage>(paper.image());
    preset.texture->scaleX = preset.texture->scaleY = texture.number("scale", 1.0f);
    preset.texture->setInvert(texture.flag("invert"));
    preset.texture->setRandomOffset(texture.flag("anywhere"));
    return std::nullopt;
}

void changeJitter(const Operation& jitter, StrokeParameters& stroke) {
    stroke.spacingJitter = jitter.number("spacing", stroke.spacingJitter);
    stroke.angleJitter = jitter.number("angle", stroke.angleJitter);
    stroke.opacityJitter = 20.0f * jitter.number("opacity", stroke.opacityJitter / 20.0f);
    stroke.flowJitter = 20.0f * jitter.number("flow", stroke.flowJitter / 20.0f);
    stroke.radiusJitter = 20.0f * jitter.number("radius", stroke.radiusJitter / 20.0f);
}

void changeNumbers(const Operation& fields, BrushPreset& preset) {
    BrushParameters& brush = preset.brush;
    StrokeParameters& stroke = preset.stroke;
    if (const auto radius = fields.numbers("radius"); !radius.empty()) {
        brush.radiusLow = radius[0];
        brush.radiusHigh = radius[1];
    }
    if (const auto opacity = fields.numbers("opacity"); !opacity.empty()) {
        brush.opacityLow = opacity[0];
        brush.opacityHigh = opacity[1];
    }
    if (fields.has("hardness")) {
        brush.tipPreset = BrushParameters::ownHardness;
        brush.hardness = fields.number("hardness");
    }
    if (const auto mix = fields.numbers("mix"); !mix.empty()) {
        brush.mixRate0 = mix[0];
        brush.mixRate1 = mix[1];
        brush.mixRate2 = mix[2];
    }
    brush.markerStrength = fields.number("strength", brush.markerStrength);
    if (const auto paint = fields.numbers("paint"); !paint.empty()) {
        stroke.paintFactor0 = paint[0];
        stroke.paintFactor1 = paint[1];
    }
    stroke.spacing = fields.number("spacing", stroke.spacing);
    stroke.pickupScale = fields.number("pickup_scale", stroke.pickupScale);
    stroke.airbrush = fields.flag("airbrush", stroke.airbrush);
    stroke.followDirection = fields.flag("follow_direction", stroke.followDirection);
    stroke.clearPickupBuffers = !fields.flag("keeps_paint", !stroke.clearPickupBuffers);
    preset.mode = fields.mode("mode", preset.mode);
    preset.strokeOpacity = fields.number("stroke_opacity", preset.strokeOpacity);
}

Refusal parseBrush(const std::string& content, Json& value) {
    const auto at = [&](std::size_t byte, const std::string& cause) {
        const std::string before = content.substr(0, byte);
        const auto line = std::count(before.begin(), before.end(), '\n') + 1;
        const auto start = before.rfind('\n') + 1;
        return std::to_string(line) + ":" +
               std::to_string(columnOf(std::string_view(content).substr(start), byte - start)) +
               ": " + cause;
    };
    value = Json::parse(content, nullptr, false);
    if (value.is_discarded()) {
        try {
            value = Json::parse(content);
        } catch (const Json::parse_error& error) {
            return at(error.byte > 0 ? error.byte - 1 : 0, "not JSON");
        } catch (const Json::exception&) {
            return at(0, "not JSON");
        }
    }
    if (const auto repeated = repeatedName(content)) return at(*repeated, "given twice");
    std::vector<FieldRule> rules = brushFields();
    rules.push_back(needed(integer("brush", 1, 1000000)));
    rules.push_back(text("title"));
    if (const auto fault = checkFields(value, rules, {}))
        return at(jsonPlace(content, fault->path), fault->cause);
    if (value["brush"] != brushFileVersion)
        return at(jsonPlace(content, {{"brush"}}),
                  "only version " + std::to_string(brushFileVersion) + " is known to this program");
    return std::nullopt;
}

}  // namespace

const std::vector<FieldRule>& brushFields() {
    static const std::vector<FieldRule> rules = [] {
        FieldRule kind = choice("kind", {});
        for (const Kind& row : kinds) kind.choices.emplace_back(row.word);
        return std::vector<FieldRule>{
            kind,
            numbers("radius", 2, 0.0, widestRadius),
            numbers("opacity", 2, 0.0, 1.0),
            share("hardness"),
            number("spacing", 0.05, 100.0),
            choice("path", {"straight", "smooth"}),
            share("strength"),
            numbers("mix", 3, 0.0, 1.0),
            numbers("paint", 2, 0.0, 1.0),
            number("pickup_scale", 0.1, 4.0),
            flag("keeps_paint"),
            flag("airbrush"),
            flag("follow_direction"),
            record("jitter", {share("spacing"), number("angle", 0.0, 360.0), share("opacity"),
                              share("flow"), share("radius")}),
            numbers("colour_jitter", 3, 0.0, 100.0),
            blendMode("mode"),
            share("stroke_opacity"),
            record("tip", {file("file"), flag("in_colour"), share("roundness"),
                           number("angle", -360.0, 360.0), share("softness")}),
            record("texture",
                   {file("file"), number("grain", 1.0, 64.0), integer("grain_seed", 0, 1000000),
                    number("scale", 0.1, 10.0), flag("invert"), flag("anywhere")})};
    }();
    return rules;
}

std::optional<std::string> changeBrush(const Operation& fields, const fs::path& folder,
                                       BrushPreset& preset) {
    if (fields.has("kind")) {
        preset.stroke.brushKind = kinds[fields.choice("kind")].number;
        preset.stroke.isMarker = preset.stroke.brushKind == markerKind;
    }
    if (fields.has("path")) preset.stroke.interpolationKind = fields.choice("path");
    changeNumbers(fields, preset);
    if (fields.has("jitter")) changeJitter(fields.record("jitter"), preset.stroke);
    if (const auto jitter = fields.numbers("colour_jitter"); !jitter.empty())
        preset.colorJitter = {jitter[0], jitter[1], jitter[2]};
    if (fields.has("tip"))
        if (auto problem = changeTip(fields.record("tip"), folder, preset)) return problem;
    if (fields.has("texture")) return changeTexture(fields.record("texture"), folder, preset);
    return std::nullopt;
}

void BrushPreset::applyTo(PaintManager& paint) const {
    paint.setBrush(brush, stroke);
    paint.setBrushBlend(mode, strokeOpacity);
    paint.setStamp(tip);
    paint.setBrushTexture(texture);
    const std::array<float, 3> ranges = colorJitter.value_or(std::array<float, 3>{});
    paint.setColorJitter(colorJitter.has_value(), ranges[0], ranges[1], ranges[2]);
}

void BrushPreset::scaleBy(float factor) {
    brush.radiusLow = std::min(brush.radiusLow * factor, widestRadius);
    brush.radiusHigh = std::min(brush.radiusHigh * factor, widestRadius);
}

std::optional<std::string> readBrushFile(const fs::path& path, BrushPreset& preset) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return path.string() + ": can't be read";
    std::string content;
    for (char unit; content.size() <= mostFileBytes && file.get(unit);) content += unit;
    if (content.size() > mostFileBytes) return path.string() + ": too large for a brush";
    Json value;
    if (const auto problem = parseBrush(content, value)) return path.string() + ":" + *problem;
    BrushPreset read;
    read.title = value.value("title", path.stem().string());
    if (const auto problem = changeBrush(Operation(brushFields(), value), path.parent_path(), read))
        return path.string() + ": " + *problem;
    preset = std::move(read);
    return std::nullopt;
}

fs::path brushFolder() {
    const fs::path program = znString::IString(platform::programDirectory()).toUtf8();
    const fs::path folder = program.parent_path() / "share" / "brushwork" / "brushes";
    std::error_code failed;
    return fs::is_directory(folder, failed) ? folder : fs::path();
}

std::optional<std::string> findBrush(const std::string& nameOrPath, const fs::path& folder,
                                     BrushPreset& preset) {
    std::error_code failed;
    const fs::path own = folder / nameOrPath;
    if (fs::is_regular_file(own, failed)) return readBrushFile(own, preset);
    for (const ShippedBrush& shipped : shippedBrushes())
        if (shipped.name == nameOrPath) return readBrushFile(shipped.path, preset);
    return nameOrPath + ": no such file, and no brush of that name ships with the program";
}

std::vector<ShippedBrush> shippedBrushes() {
    std::vector<ShippedBrush> all;
    std::error_code failed;
    for (const auto& entry : fs::directory_iterator(brushFolder(), failed))
        if (entry.path().extension() == ".json")
            all.push_back({entry.path().stem().string(), entry.path()});
    std::sort(all.begin(), all.end(),
              [](const ShippedBrush& a, const ShippedBrush& b) { return a.name < b.name; });
    return all;
}

}  // namespace brushwork::tools
