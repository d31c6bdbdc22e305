#include "tools/picture_exchange.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "bridge/pixel_order.h"
#include "bridge/raw_pixel_file.h"
#include "brushwork/filename.h"
#include "foundation/services/settings.h"
#include "platform/swap_io.h"

namespace brushwork::tools {

namespace {

using znString::IString;

// What went wrong before the helper could look at the picture, if anything did.
std::optional<Failure> startFailure(const BridgeExchange& exchange) {
    const SpawnReport& report = exchange.report;
    if (!report.helperFound)
        return Failure{ExitFailed, "the helper is missing: " + bridgeProgramPath().toUtf8()};
    if (!exchange.isReady())
        return Failure{ExitInputOutput, "no file can be made in the temporary directory"};
    if (!report.requestWritten)
        return Failure{ExitInputOutput, "the temporary directory can't be written"};
    if (!report.started) return Failure{ExitFailed, "the helper can't be started"};
    return std::nullopt;
}

std::optional<Failure> setInput(BridgeExchange& exchange, const std::string& path) {
    const IString wide(std::string_view{path});
    if (!exchange.request.setImagePath(wide))
        return Failure{ExitInputOutput, path + ": the path is longer than 259 units"};
    platform::PositionedFile file;
    if (!file.open(wide.view(), platform::PositionedFile::Mode::Read))
        return Failure{ExitInputOutput, path + ": can't be read"};
    return std::nullopt;
}

PictureFacts factsOf(const RequestRecord& response) {
    const ImageFileParams& params = response.params;
    return {params.width, params.height, params.xResolution, params.yResolution,
            IString(fieldText(response.format)).toUtf8()};
}

// The system ends a process a little before the account of its time shows the whole limit.
bool outOfTime(const SpawnReport& report) {
    constexpr double accountLag = 0.25;
    const std::uint32_t limit = bridgeSettings().cpuSeconds;
    return limit != 0 && report.cpuSeconds + accountLag >= limit;
}

bool temporarySpaceFor(std::uint64_t bytes) {
    std::error_code failed;
    const auto space = std::filesystem::space(znOS::Filename::temporaryDirectory().view(), failed);
    return failed || space.available >= bytes;
}

// Below this the helper can hardly read a header.
constexpr std::uint64_t leastAddressSpace = std::uint64_t{32} << 20;

// The helper gives no reason. What its limits are and how large the picture says it is tells
// whether one of them stood in the way.
Failure openFailure(const std::string& path, const SpawnReport& report) {
    if (outOfTime(report)) return {ExitLimit, path + ": decoding took longer than allowed"};
    PictureFacts facts;
    if (!readPictureSize(path, facts)) {
        const auto bytes = pixelFileBytes(facts.width, facts.height, 4);
        const BridgeSettings& limits = bridgeSettings();
        const std::string size = std::to_string(facts.width) + " x " + std::to_string(facts.height);
        if (!bytes || (limits.pixelFileBytes != 0 && *bytes > limits.pixelFileBytes))
            return {ExitLimit, path + ": " + size + " is over the limit for pixel files"};
        if (limits.addressSpace != 0 && *bytes > limits.addressSpace)
            return {ExitLimit, path + ": " + size + " needs more memory than allowed"};
        if (!temporarySpaceFor(*bytes))
            return {ExitInputOutput,
                    path + ": no room for " + size + " in the temporary directory"};
    } else if (const auto limit = bridgeSettings().addressSpace;
               limit != 0 && limit < leastAddressSpace) {
        return {ExitLimit, path + ": the helper's memory limit leaves no room to work"};
    }
    return {ExitBadInput, path + ": not a picture that can be read, or damaged"};
}

}  // namespace

std::optional<Failure> readPictureSize(const std::string& path, PictureFacts& facts) {
    BridgeExchange exchange(u"GetSize");
    if (auto failure = setInput(exchange, path)) return failure;
    if (!exchange.run()) {
        if (auto failure = startFailure(exchange)) return failure;
        return Failure{ExitBadInput, path + ": not a picture that can be read"};
    }
    facts = factsOf(exchange.response);
    return std::nullopt;
}

std::optional<Failure> OpenedPicture::open(const std::string& path) {
    BridgeExchange exchange(u"OpenFromFile");
    if (auto failure = setInput(exchange, path)) return failure;
    if (!exchange.run()) {
        if (auto failure = startFailure(exchange)) return failure;
        return openFailure(path, exchange.report);
    }
    facts_ = factsOf(exchange.response);
    pixels_.take(IString(fieldText(exchange.response.pixelsPath)));
    return std::nullopt;
}

std::optional<Failure> OpenedPicture::straighten() {
    if (!arrivesPremultiplied(IString(std::string_view{facts_.format}).view())) return std::nullopt;
    platform::PositionedFile file;
    if (!file.open(pixelsPath().view(), platform::PositionedFile::Mode::ReadWrite))
        return Failure{ExitInputOutput, "the pixels can't be read"};
    std::vector<std::uint8_t> block(256 * 1024);
    const std::uint64_t size = file.size();
    for (std::uint64_t offset = 0; offset < size; offset += block.size()) {
        const auto bytes =
            static_cast<std::size_t>(std::min<std::uint64_t>(block.size(), size - offset));
        if (file.readAt(offset, block.data(), bytes) != bytes)
            return Failure{ExitInputOutput, "the pixels can't be read"};
        unpremultiply(block.data(), bytes / 4);
        if (!file.writeAt(offset, block.data(), bytes))
            return Failure{ExitInputOutput, "the pixels can't be written"};
    }
    return std::nullopt;
}

std::optional<Failure> savePicture(const OpenedPicture& picture, const std::string& path,
                                   const SaveOptions& options) {
    BridgeExchange exchange(u"SaveToFile");
    RequestRecord& request = exchange.request;
    const PictureFacts& facts = picture.facts();
    request.setSize(facts.width, facts.height);
    request.setChannels(4);
    request.setQuality(options.quality.has_value(), options.quality.value_or(0));
    request.setResolutionUnit(DotsPerInch);
    request.setResolution(options.dotsPerInch.value_or(facts.xResolution),
                          options.dotsPerInch.value_or(facts.yResolution));
    if (!request.setFormat(IString(std::string_view{options.format})) ||
        !request.setPixelsPath(picture.pixelsPath()) ||
        !request.setImagePath(IString(std::string_view{path})))
        return Failure{ExitInputOutput, path + ": the path is longer than 259 units"};
    if (exchange.run()) return std::nullopt;
    if (auto failure = startFailure(exchange)) return failure;
    if (outOfTime(exchange.report))
        return Failure{ExitLimit, path + ": encoding took longer than allowed"};
    return Failure{ExitInputOutput, path + ": can't be written as " + options.format};
}

}  // namespace brushwork::tools
