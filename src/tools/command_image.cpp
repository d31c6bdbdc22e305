#include "tools/command_image.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/picture_exchange.h"
#include "tools/progress_bar.h"

namespace brushwork::tools {

namespace {

using Json = nlohmann::ordered_json;

struct Extension {
    const char* ending;
    const char* format;
};
constexpr std::array<Extension, 8> extensions{{{"bmp", "BMP"},
                                               {"dib", "BMP"},
                                               {"jpg", "JPEG"},
                                               {"jpeg", "JPEG"},
                                               {"png", "PNG"},
                                               {"gif", "GIF"},
                                               {"tif", "TIFF"},
                                               {"tiff", "TIFF"}}};

// The format that a name or an ending such as "jpg" stands for; empty if none.
std::string formatOf(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const auto& row : extensions)
        if (text == row.ending) return row.format;
    return {};
}

std::string formatOfPath(const std::string& path) {
    const auto name = path.substr(path.find_last_of('/') + 1);
    const auto dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : formatOf(name.substr(dot + 1));
}

void say(const std::string& message) {
    std::fprintf(stderr, "brushwork: %s\n", message.c_str());
}

// Text as JSON takes it: bytes of a file name that aren't UTF-8 become replacement characters.
std::string dump(const Json& json) {
    return json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
}

struct InfoOptions {
    std::vector<std::string> files;
    bool json = false;
    bool quick = false;
};

Json toJson(const std::string& file, const PictureFacts& facts) {
    Json json{{"file", file}};
    if (!facts.format.empty()) json["format"] = facts.format;
    json["width"] = facts.width;
    json["height"] = facts.height;
    json["xResolution"] = facts.xResolution;
    json["yResolution"] = facts.yResolution;
    return json;
}

void printFacts(const std::string& file, const PictureFacts& facts) {
    std::printf("%s: %s%s%d x %d, %.6g x %.6g dpi\n", file.c_str(), facts.format.c_str(),
                facts.format.empty() ? "" : " ", facts.width, facts.height, facts.xResolution,
                facts.yResolution);
}

std::optional<Failure> gather(const InfoOptions& options, const std::string& file,
                              PictureFacts& facts) {
    if (options.quick) return readPictureSize(file, facts);
    OpenedPicture picture;
    auto failure = picture.open(file);
    facts = picture.facts();
    return failure;
}

// All files are looked at; the first one that fails sets the exit code.
int runInfo(const InfoOptions& options) {
    int exitCode = ExitDone;
    Json all = Json::array();
    ProgressBar progress(options.files.size());
    for (const auto& file : options.files) {
        PictureFacts facts;
        const auto failure = gather(options, file, facts);
        progress.clear();
        if (failure) {
            say(failure->message);
            if (exitCode == ExitDone) exitCode = failure->code;
            if (options.json) all.push_back({{"file", file}, {"error", failure->message}});
        } else if (options.json) {
            all.push_back(toJson(file, facts));
        } else {
            printFacts(file, facts);
        }
        progress.step();
    }
    progress.clear();
    if (options.json) std::printf("%s\n", dump(all).c_str());
    return exitCode;
}

struct ConvertOptions {
    std::string input;
    std::string output;
    std::string format;
    int quality = -1;
    double dotsPerInch = 0.0;
    bool json = false;
};

int fail(const Failure& failure) {
    say(failure.message);
    return failure.code;
}

int runConvert(const ConvertOptions& options) {
    SaveOptions save;
    save.format = options.format.empty() ? formatOfPath(options.output) : formatOf(options.format);
    if (save.format.empty()) {
        say(options.output + ": the ending names no format; give one with --format");
        return ExitUsage;
    }
    if (options.quality >= 0) save.quality = options.quality;
    if (options.dotsPerInch > 0.0) save.dotsPerInch = options.dotsPerInch;

    OpenedPicture picture;
    if (const auto failure = picture.open(options.input)) return fail(*failure);
    if (const auto failure = picture.straighten()) return fail(*failure);
    if (const auto failure = savePicture(picture, options.output, save)) return fail(*failure);
    if (options.json) {
        // What the file says of itself: formats round resolutions, or have none.
        PictureFacts written;
        if (const auto failure = readPictureSize(options.output, written)) return fail(*failure);
        written.format = save.format;
        Json json = toJson(options.output, written);
        json["input"] = options.input;
        std::printf("%s\n", dump(json).c_str());
    }
    return ExitDone;
}

void addInfo(CLI::App& image, int& exitCode) {
    auto* command = image.add_subcommand("info", "Format, size and resolution of picture files");
    auto options = std::make_shared<InfoOptions>();
    command->add_option("FILE", options->files, "Picture files")->required();
    command->add_flag("--json", options->json, "An array of objects on standard output");
    command->add_flag("--quick", options->quick,
                      "Read headers only: no format, and later damage goes unnoticed");
    command->footer(
        "Examples:\n"
        "  brushwork image info photo.jpg scan.tif\n"
        "  brushwork image info --json *.png | jq '.[].width'");
    command->callback([options, &exitCode] { exitCode = runInfo(*options); });
}

void addConvert(CLI::App& image, int& exitCode) {
    auto* command = image.add_subcommand("convert", "Write a picture in another format");
    auto options = std::make_shared<ConvertOptions>();
    command->add_option("IN", options->input, "Picture file to read")->required();
    command->add_option("OUT", options->output, "Picture file to write")->required();
    command->add_option("--format", options->format,
                        "BMP, JPEG, PNG, GIF or TIFF; otherwise OUT's ending decides");
    command->add_option("--quality", options->quality, "JPEG quality, 0 to 100")
        ->check(CLI::Range(0, 100));
    command
        ->add_option("--dpi", options->dotsPerInch,
                     "Resolution in dots per inch; otherwise that of IN")
        ->check(
            [](const std::string& text) -> std::string {
                double value = 0.0;
                const bool good =
                    CLI::detail::lexical_cast(text, value) && value >= 1.0 && value <= 65535.0;
                return good ? "" : "a resolution lies between 1 and 65535";
            },
            "1 - 65535");
    command->add_flag("--json", options->json, "Describe OUT as an object on standard output");
    command->footer(
        "Examples:\n"
        "  brushwork image convert scan.tif scan.png\n"
        "  brushwork image convert photo.png photo.jpg --quality 92 --dpi 300");
    command->callback([options, &exitCode] {
        if (!options->format.empty() && formatOf(options->format).empty()) {
            say("--format: " + options->format + " is none of BMP, JPEG, PNG, GIF, TIFF");
            exitCode = ExitUsage;
            return;
        }
        exitCode = runConvert(*options);
    });
}

}  // namespace

void addImageCommand(CLI::App& program, int& exitCode) {
    auto* image = program.add_subcommand(
        "image", "Pictures in and out, decoded and encoded in a process of their own");
    image->require_subcommand(1);
    image->footer(
        "Examples:\n"
        "  brushwork image info photo.jpg\n"
        "  brushwork image convert photo.jpg photo.png");
    addInfo(*image, exitCode);
    addConvert(*image, exitCode);
}

}  // namespace brushwork::tools
