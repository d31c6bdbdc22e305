#include "tools/command_paint.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "tools/exit_codes.h"
#include "tools/journal_ops.h"
#include "tools/pen_session.h"
#include "tools/run_options.h"

namespace brushwork::tools {
namespace {

struct PaintOptions {
    std::string events, brush, size, out;
    std::string colour = "#000000", background = "#ffffff";
    double scale = 1.0;
    double pressure = 1.0;
    EngineOptions engine;
};

// "WxH" in pixels.
bool parseSize(const std::string& text, Json& canvas) {
    constexpr std::int32_t mostPixels = 16384;
    std::int32_t width = 0, height = 0;
    const char* const end = text.data() + text.size();
    const auto across = std::from_chars(text.data(), end, width);
    if (across.ec != std::errc() || across.ptr == end || *across.ptr != 'x') return false;
    const auto up = std::from_chars(across.ptr + 1, end, height);
    if (up.ec != std::errc() || up.ptr != end || width < 1 || height < 1 || width > mostPixels ||
        height > mostPixels)
        return false;
    canvas = {{"op", "canvas"}, {"width", width}, {"height", height}};
    return true;
}

// The command is a journal of five lines, checked like one.
int writeJournal(const PaintOptions& options, std::string& text) {
    Json canvas;
    if (!parseSize(options.size, canvas)) {
        std::fprintf(stderr, "brushwork: --size: %s is not WxH, with 1 to 16384 pixels a side\n",
                     options.size.c_str());
        return ExitUsage;
    }
    canvas["background"] = options.background;
    const auto absolute = [](const std::string& path) {
        return std::filesystem::absolute(path).string();
    };
    const bool isFile = std::filesystem::exists(options.brush);
    const Json lines[] = {
        {{"journal", "brushwork"}, {"version", journalVersion}},
        canvas,
        {{"op", "layer"}, {"name", "paint"}},
        {{"op", "brush"},
         {"file", isFile ? absolute(options.brush) : options.brush},
         {"colour", options.colour}},
        {{"op", "pen"},
         {"file", absolute(options.events)},
         {"scale", options.scale},
         {"pressure", options.pressure}},
    };
    for (const Json& line : lines)
        text += line.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
    return ExitDone;
}

int exitCodeFor(const PaintOptions& options, const std::string& failed) {
    if (failed != "pen" && failed != "brush") return ExitFailed;
    const std::string& path = failed == "pen" ? options.events : options.brush;
    return std::filesystem::exists(path) ? ExitBadInput : ExitInputOutput;
}

int paint(const PaintOptions& options) {
    if (const auto fault = endingFault(options.out)) {
        std::fprintf(stderr, "brushwork: %s\n", fault->message.c_str());
        return fault->code;
    }
    std::string text;
    if (const int exitCode = writeJournal(options, text); exitCode != ExitDone) return exitCode;
    Journal journal;
    if (const auto faults = readJournal(text, opBook(), journal); !faults.empty()) {
        std::fprintf(stderr, "brushwork: %s\n", faults.front().cause.c_str());
        return ExitUsage;
    }
    applyEngineOptions(options.engine, 1);
    ReferenceHost host(ReferenceTimers::Pace::Immediate);
    JournalSession session(host, {});
    session.paint.setUndoEnabled(false);
    for (const Operation& op : journal.operations)
        if (const Problem problem = runOperation(session, op)) {
            std::fprintf(stderr, "brushwork: %s\n", problem->c_str());
            return exitCodeFor(options, op.name());
        }
    if (const Problem problem = session.save(options.out, std::nullopt)) {
        std::fprintf(stderr, "brushwork: %s\n", problem->c_str());
        return ExitInputOutput;
    }
    std::printf("%s: %llu strokes, %llu points\n", options.out.c_str(),
                static_cast<unsigned long long>(session.figures.strokes),
                static_cast<unsigned long long>(session.figures.points));
    return ExitDone;
}

}  // namespace

void addPaintCommand(CLI::App& program, int& exitCode) {
    auto* command = program.add_subcommand("paint", "Paint a recorded pen with one brush");
    auto options = std::make_shared<PaintOptions>();
    command->add_option("EVENTS", options->events, "Lines of seconds, x, y and pressure")
        ->required();
    command->add_option("--brush", options->brush, "A brush file, or the name of a shipped brush")
        ->required();
    command->add_option("--size", options->size, "Of the canvas, WxH in pixels")->required();
    command->add_option("--out", options->out, "The picture")->required();
    command->add_option("--colour,--color", options->colour, "Of the paint, #rrggbb");
    command->add_option("--background", options->background, "Behind it, #rrggbb or #rrggbbaa");
    command->add_option("--scale", options->scale, "Multiplies the places of the recording")
        ->check(CLI::Range(0.001, 1000.0));
    command->add_option("--pressure", options->pressure, "Multiplies the pressures")
        ->check(CLI::Range(0.01, 100.0));
    addEngineOptions(*command, options->engine);
    command->footer(
        "Example:\n"
        "  brushwork paint pen.dat --brush pastel --size 960x680 --out pen.png");
    command->callback([options, &exitCode] { exitCode = paint(*options); });
}

}  // namespace brushwork::tools
