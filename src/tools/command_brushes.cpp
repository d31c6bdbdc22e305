#include "tools/command_brushes.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "tools/brush_presets.h"
#include "tools/exit_codes.h"

namespace brushwork::tools {
namespace {

// All are looked at; one that can't be read fails the command.
int list(bool paths) {
    const auto shipped = shippedBrushes();
    if (shipped.empty()) {
        std::fprintf(stderr, "brushwork: no brushes beside the program\n");
        return ExitInputOutput;
    }
    int exitCode = ExitDone;
    for (const ShippedBrush& each : shipped) {
        BrushPreset brush;
        if (const auto problem = readBrushFile(each.path, brush)) {
            std::fprintf(stderr, "%s\n", problem->c_str());
            exitCode = ExitBadInput;
        } else if (paths) {
            std::printf("%s\n", each.path.string().c_str());
        } else {
            std::printf("%-20s %-28s radius %g to %g\n", each.name.c_str(), brush.title.c_str(),
                        static_cast<double>(brush.brush.radiusLow),
                        static_cast<double>(brush.brush.radiusHigh));
        }
    }
    return exitCode;
}

}  // namespace

void addBrushesCommand(CLI::App& program, int& exitCode) {
    auto* command =
        program.add_subcommand("brushes", "List the brushes that ship with the program");
    auto paths = std::make_shared<bool>(false);
    command->add_flag("--paths", *paths, "Only their files, one a line");
    command->callback([paths, &exitCode] { exitCode = list(*paths); });
}

}  // namespace brushwork::tools
