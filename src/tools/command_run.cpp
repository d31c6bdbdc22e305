#include "tools/command_run.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "brushwork/image_memory.h"
#include "tools/exit_codes.h"
#include "tools/journal_file.h"
#include "tools/journal_ops.h"
#include "tools/run_options.h"

namespace brushwork::tools {
namespace {

using Clock = std::chrono::steady_clock;

struct RunOptions {
    std::string script;
    std::string out;
    EngineOptions engine;
    bool stats = false;
    bool progress = false;
    bool hashes = false;
    bool fast = false;
};

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void say(const RunOptions& options, std::int32_t line, const std::string& words) {
    std::fprintf(stderr, "%s:%d: %s\n", options.script.c_str(), line, words.c_str());
}

void showMessages(const RunOptions& options, JournalSession& session, const Operation& op) {
    for (const std::string& message : session.messages)
        say(options, op.line(), "the engine says: " + message);
}

// Stops at the first operation that can't be done.
int carryOut(const RunOptions& options, const Journal& journal, JournalSession& session) {
    std::size_t done = 0;
    for (const Operation& op : journal.operations) {
        const auto start = Clock::now();
        if (op.name() != "expect_message") session.messages.clear();
        const Problem problem = runOperation(session, op);
        if (options.progress)
            std::fprintf(stderr, "[%zu/%zu] line %d %s %.1f ms\n", ++done,
                         journal.operations.size(), op.line(), op.name().c_str(),
                         1000.0 * secondsSince(start));
        if (problem || options.progress) showMessages(options, session, op);
        if (problem) {
            say(options, op.line(), op.name() + ": " + *problem);
            return ExitFailed;
        }
        if (options.hashes && session.paint.hasCanvas(activeOne))
            std::printf("%d %s\n%s\n", op.line(), op.name().c_str(),
                        session.digestText("  ").c_str());
    }
    return ExitDone;
}

void printStats(const Journal& journal, JournalSession& session, double seconds) {
    const SessionFigures& figures = session.figures;
    const ImageMemoryFigures memory = imageMemoryFigures();
    std::printf("operations        %zu in %.3f s\n", journal.operations.size(), seconds);
    std::printf("strokes           %llu of %llu points\n",
                static_cast<unsigned long long>(figures.strokes),
                static_cast<unsigned long long>(figures.points));
    std::printf("undo              %zu steps kept, %llu taken back, %llu done again\n",
                session.undo.undoLevels(), static_cast<unsigned long long>(figures.undone),
                static_cast<unsigned long long>(figures.redone));
    std::printf("records           %u\n", session.undo.count());
    std::printf("presented         %llu times\n",
                static_cast<unsigned long long>(session.host.figures().presents));
    std::printf("timers rung       %llu\n",
                static_cast<unsigned long long>(session.host.timers().rung()));
    std::printf("pages in memory   %.1f MiB\n",
                static_cast<double>(memory.cachedBytes) / 1048576.0);
    std::printf("pages on disk     %.1f MiB\n",
                static_cast<double>(memory.swappedBytes) / 1048576.0);
    std::printf("images            %d\n", memory.images);
}

int finish(const RunOptions& options, const Journal& journal, JournalSession& session,
           Clock::time_point start) {
    const int exitCode = carryOut(options, journal, session);
    if (exitCode != ExitDone) return exitCode;
    if (session.paint.inStroke()) session.paint.endStroke();
    session.paint.endTransform(true);
    if (!options.out.empty())
        if (const Problem problem = session.save(options.out, std::nullopt)) {
            std::fprintf(stderr, "brushwork: %s\n", problem->c_str());
            return ExitInputOutput;
        }
    if (options.stats) printStats(journal, session, secondsSince(start));
    return ExitDone;
}

int run(const RunOptions& options) {
    Journal journal;
    if (const int exitCode = readJournalFile(options.script, journal); exitCode != ExitDone)
        return exitCode;
    applyEngineOptions(options.engine, journal.seed.value_or(1));
    const auto start = Clock::now();
    ReferenceHost host(options.fast ? ReferenceTimers::Pace::Immediate
                                    : ReferenceTimers::Pace::Real);
    JournalSession session(host, std::filesystem::path(options.script).parent_path());
    session.print = [](const std::string& line) { std::printf("%s\n", line.c_str()); };
    return finish(options, journal, session, start);
}

}  // namespace

void addRunCommand(CLI::App& program, int& exitCode) {
    auto* command = program.add_subcommand("run", "Carry out a journal: paint by script");
    auto options = std::make_shared<RunOptions>();
    command->add_option("SCRIPT", options->script, "A journal: a line of JSON an operation")
        ->required();
    command->add_option("--out", options->out, "Save the picture here at the end");
    addEngineOptions(*command, options->engine);
    command->add_flag("--hashes", options->hashes,
                      "Print digests of all layers and the document after each operation");
    command->add_flag("--stats", options->stats, "Print figures at the end");
    command->add_flag("--progress", options->progress,
                      "Tell each operation and its time on standard error");
    command->add_flag("--fast", options->fast, "Waits of the journal take no time");
    command->footer(
        "The whole journal is checked before anything is done. docs/journal.md tells its form.\n\n"
        "Examples:\n"
        "  brushwork run scene.jsonl --out scene.png --stats\n"
        "  brushwork run scene.jsonl --hashes --threads 2 --vectors scalar");
    command->callback([options, &exitCode] { exitCode = run(*options); });
}

}  // namespace brushwork::tools
