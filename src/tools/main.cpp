// brushwork: the engine and its picture helper from the command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "platform/clean_up.h"
#include "tools/command_brushes.h"
#include "tools/command_image.h"
#include "tools/command_info.h"
#include "tools/command_paint.h"
#include "tools/command_run.h"
#include "tools/exit_codes.h"

namespace {

// The arguments in the order that the parser takes them, last first. It would read "[a,b]" as a
// list, but here it can only be a file's name.
std::vector<std::string> literalArguments(int argc, char** argv) {
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) {
        arguments.emplace_back(argv[i]);
        if (arguments.back().starts_with('[')) arguments.back().insert(0, "./");
    }
    return arguments;
}

// What stands where a subcommand is wanted and is none; empty if all is well. The parser would say
// only that one is missing.
std::string unknownCommand(const CLI::App& program, int argc, char** argv) {
    const CLI::App* app = &program;
    for (int i = 1; i < argc && argv[i][0] != '-'; ++i) {
        if (app->get_subcommands([](const CLI::App*) { return true; }).empty()) break;
        const std::string word = argv[i];
        const auto named =
            app->get_subcommands([&](const CLI::App* each) { return each->check_name(word); });
        if (named.empty()) return word;
        app = named.front();
    }
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    using namespace brushwork;
    using namespace brushwork::tools;
    platform::cleanUpOnSignals(platform::AfterCleanUp::EndBySignal);
    int exitCode = ExitDone;
    try {
        CLI::App program{"Brushwork: a paint engine and its picture helper"};
        program.name("brushwork");
        program.set_version_flag("--version", BRUSHWORK_VERSION);
        program.require_subcommand(1);
        program.footer(
            "Exit codes: 0 done, 1 failed, 2 usage, 3 bad input file, 4 input or output error,\n"
            "5 out of memory or over a limit.\n\n"
            "Examples:\n"
            "  brushwork run scene.jsonl --out scene.png\n"
            "  brushwork paint pen.dat --brush pastel --size 960x680 --out pen.png\n"
            "  brushwork image info photo.jpg\n"
            "  brushwork image convert photo.jpg photo.png");
        addRunCommand(program, exitCode);
        addPaintCommand(program, exitCode);
        addBrushesCommand(program, exitCode);
        addInfoCommand(program, exitCode);
        addImageCommand(program, exitCode);
        if (const std::string word = unknownCommand(program, argc, argv); !word.empty()) {
            std::fprintf(stderr, "brushwork: there is no command %s\n", word.c_str());
            return ExitUsage;
        }
        try {
            program.parse(literalArguments(argc, argv));
        } catch (const CLI::ParseError& error) {
            exitCode = program.exit(error) == 0 ? ExitDone : ExitUsage;
        }
    } catch (const std::bad_alloc&) {
        std::fputs("brushwork: out of memory\n", stderr);
        return ExitLimit;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "brushwork: %s\n", error.what());
        return ExitFailed;
    }
    // Output that never reached its reader is a failure.
    const bool lost = std::fflush(stdout) != 0 || std::ferror(stdout) != 0;
    if (lost && exitCode == ExitDone) exitCode = ExitInputOutput;
    return exitCode;
}
