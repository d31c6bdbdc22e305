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

}  // namespace

const BridgeSettings& bridgeSettings() {
    auto& stored = storedBridgeSettings();
    if (!stored) stored = readBridgeSettings();
    return *stored;
}

void resetSettings() {
    storedBridgeSettings().reset();
}

}  // namespace brushwork
