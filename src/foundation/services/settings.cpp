#include "foundation/services/settings.h"

#include <charconv>
#include <optional>
#include <string>

#include "platform/environment.h"

namespace brushwork {

namespace {

std::optional<std::uint64_t> wholeNumber(const char* variable, std::uint64_t largest) {
    const auto text = platform::environmentVariable(variable);
    if (!text) return std::nullopt;
    std::uint64_t value = 0;
    const char* end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, value);
    if (error != std::errc() || stop != end || value > largest) return std::nullopt;
    return value;
}

BridgeSettings readBridgeSettings() {
    constexpr std::uint64_t mostMebibytes = std::uint64_t{1} << 40;
    constexpr std::uint64_t mostSeconds = 1U << 30;
    BridgeSettings settings;
    if (const auto mib = wholeNumber("INKATELIER_BRIDGE_MEMORY_MIB", mostMebibytes))
        settings.addressSpace = *mib << 20;
    if (const auto seconds = wholeNumber("INKATELIER_BRIDGE_CPU_SECONDS", mostSeconds))
        settings.cpuSeconds = static_cast<std::uint32_t>(*seconds);
    if (const auto mib = wholeNumber("INKATELIER_BRIDGE_PIXELS_MIB", mostMebibytes))
        settings.pixelFileBytes = *mib << 20;
    if (const auto flag = wholeNumber("INKATELIER_BRIDGE_CONFINE", 1))
        settings.confine = *flag != 0;
    return settings;
}

std::optional<BridgeSettings>& storedBridgeSettings() {
    static std::optional<BridgeSettings> settings = readBridgeSettings();
    return settings;
}

CacheSettings readCacheSettings() {
    CacheSettings settings;
    settings.checking = platform::environmentVariable("ZENON_ZC_SMARTIMAGE_CHECKING").has_value();
    settings.oldImageId = platform::environmentVariable("ZENON_ZC_USE_OLD_IMAGEID").has_value();
    return settings;
}

std::optional<CacheSettings>& storedCacheSettings() {
    static std::optional<CacheSettings> settings = readCacheSettings();
    return settings;
}

// The number at the start of the text, with a point in every locale.
std::optional<float> partOfOne(const char* variable) {
    const auto text = platform::environmentVariable(variable);
    if (!text) return std::nullopt;
    const char* const end = text->data() + text->size();
    const char* start = text->data();
    while (start != end && (*start == ' ' || *start == '\t')) ++start;
    if (start != end && *start == '+') ++start;
    float value = 0.0f;
    if (std::from_chars(start, end, value).ec != std::errc()) return std::nullopt;
    if (!(value >= 0.0f && value <= 1.0f)) return std::nullopt;
    return value;
}

PressureSettings readPressureSettings() {
    PressureSettings settings;
    settings.hardness = partOfOne("SID_PRESSURE_HARDNESS").value_or(settings.hardness);
    settings.threshold = partOfOne("SID_PRESSURE_THRESHOLD").value_or(settings.threshold);
    settings.smoothness = partOfOne("SID_PRESSURE_SMOOTHNESS").value_or(settings.smoothness);
    return settings;
}

std::optional<PressureSettings>& storedPressureSettings() {
    static std::optional<PressureSettings> settings = readPressureSettings();
    return settings;
}

std::optional<bool>& storedUndoDisabled() {
    static std::optional<bool> disabled;
    return disabled;
}

}  // namespace

const BridgeSettings& bridgeSettings() {
    auto& stored = storedBridgeSettings();
    if (!stored) stored = readBridgeSettings();
    return *stored;
}

const CacheSettings& cacheSettings() {
    auto& stored = storedCacheSettings();
    if (!stored) stored = readCacheSettings();
    return *stored;
}

const PressureSettings& pressureSettings() {
    auto& stored = storedPressureSettings();
    if (!stored) stored = readPressureSettings();
    return *stored;
}

bool undoDisabled() {
    auto& stored = storedUndoDisabled();
    if (!stored) stored = platform::environmentVariable("SID_UNDO_DISABLE") == "1";
    return *stored;
}

void resetSettings() {
    storedBridgeSettings().reset();
    storedCacheSettings().reset();
    storedPressureSettings().reset();
    storedUndoDisabled().reset();
}

}  // namespace brushwork
