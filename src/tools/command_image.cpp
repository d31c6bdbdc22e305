#include "tools/command_image.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "foundation/tasks/processor_count.h"
#include "tools/convert_pictures.h"
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
    std::vector<std::string> files;  // IN and OUT, or many with `directory`
    std::string directory;
    std::string format;
    int quality = -1;
    double dotsPerInch = 0.0;
    int jobs = 0;  // 0: one a processor
    bool json = false;
};

int usage(const std::string& message) {
    say(message);
    return ExitUsage;
}

SaveOptions saveOptions(const ConvertOptions& options) {
    SaveOptions save;
    save.format = formatOf(options.format);
    if (options.quality >= 0) save.quality = options.quality;
    if (options.dotsPerInch > 0.0) save.dotsPerInch = options.dotsPerInch;
    return save;
}

Json toJson(const Conversion& conversion, const Converted& result) {
    Json json{{"file", conversion.output}};
    if (result.failure)
        json["error"] = result.failure->message;
    else
        json = toJson(conversion.output, result.written);
    json["input"] = conversion.input;
    return json;
}

int convertOne(const ConvertOptions& options) {
    Conversion conversion{options.files[0], options.files[1], saveOptions(options), options.json};
    if (options.format.empty()) conversion.save.format = formatOfPath(conversion.output);
    if (conversion.save.format.empty())
        return usage(conversion.output + ": the ending names no format; give one with --format");
    const Converted result = convertPicture(conversion);
    if (result.failure) {
        say(result.failure->message);
        return result.failure->code;
    }
    if (options.json) std::printf("%s\n", dump(toJson(conversion, result)).c_str());
    return ExitDone;
}

// Where each file goes; empty, with a message said, if two would go to one place.
std::vector<Conversion> planConversions(const ConvertOptions& options) {
    const SaveOptions save = saveOptions(options);
    const auto row = std::find_if(extensions.begin(), extensions.end(), [&](const Extension& each) {
        return save.format == each.format;
    });
    std::vector<Conversion> conversions;
    std::map<std::string, std::string> taken;
    for (const auto& file : options.files) {
        auto name = std::filesystem::path(file).stem();
        name += std::string(".") + row->ending;
        const std::string output = (std::filesystem::path(options.directory) / name).string();
        const auto [place, isNew] = taken.emplace(output, file);
        if (!isNew) {
            say(place->second + " and " + file + " would both become " + output);
            return {};
        }
        conversions.push_back({file, output, save, options.json});
    }
    return conversions;
}

// Goes on past failures; the first in the order of the files sets the exit code.
int convertMany(const ConvertOptions& options) {
    if (options.format.empty()) return usage("--into needs --format");
    std::error_code error;
    if (!std::filesystem::is_directory(options.directory, error)) {
        say(options.directory + ": no such directory");
        return ExitInputOutput;
    }
    const auto conversions = planConversions(options);
    if (conversions.empty()) return ExitUsage;

    ProgressBar progress(conversions.size());
    const auto results =
        convertPictures(conversions, options.jobs > 0 ? options.jobs : processorCount(),
                        [&](std::size_t, const Converted& result) {
                            if (result.failure) {
                                progress.clear();
                                say(result.failure->message);
                            }
                            progress.step();
                        });
    progress.clear();

    int exitCode = ExitDone;
    std::size_t failed = 0;
    Json all = Json::array();
    for (std::size_t i = 0; i < results.size(); ++i) {
        if (options.json) all.push_back(toJson(conversions[i], results[i]));
        if (!results[i].failure) continue;
        ++failed;
        if (exitCode == ExitDone) exitCode = results[i].failure->code;
    }
    if (options.json) std::printf("%s\n", dump(all).c_str());
    say(std::to_string(results.size() - failed) + " of " + std::to_string(results.size()) +
        " converted" + (failed > 0 ? ", " + std::to_string(failed) + " failed" : ""));
    return exitCode;
}

int runConvert(const ConvertOptions& options) {
    if (!options.format.empty() && formatOf(options.format).empty())
        return usage("--format: " + options.format + " is none of BMP, JPEG, PNG, GIF, TIFF");
    if (!options.directory.empty()) return convertMany(options);
    if (options.files.size() != 2)
        return usage("convert takes IN and OUT, or any number of files with --into");
    return convertOne(options);
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
    auto* command = image.add_subcommand("convert", "Write pictures in another format");
    auto options = std::make_shared<ConvertOptions>();
    command->add_option("FILE", options->files, "IN and OUT; with --into picture files to read")
        ->required();
    command->add_option("--into", options->directory,
                        "Write each FILE into this directory, under its name with a new ending");
    command
        ->add_option("--jobs", options->jobs,
                     "How many pictures to work on at once; otherwise one a processor")
        ->check(CLI::Range(1, 1024));
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
    command->add_flag(
        "--json", options->json,
        "Describe what was written on standard output: an object, with --into an array");
    command->footer(
        "Examples:\n"
        "  brushwork image convert scan.tif scan.png\n"
        "  brushwork image convert photo.png photo.jpg --quality 92 --dpi 300\n"
        "  brushwork image convert *.tif --into web --format jpeg --jobs 4");
    command->callback([options, &exitCode] { exitCode = runConvert(*options); });
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
