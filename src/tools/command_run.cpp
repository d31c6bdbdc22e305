#include "tools/command_run.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "brushwork/image_memory.h"
#include "tools/exit_codes.h"
#include "tools/frame_export.h"
#include "tools/journal_file.h"
#include "tools/journal_ops.h"
#include "tools/run_options.h"
#include "tools/time_lapse.h"

namespace brushwork::tools {
namespace {

using Clock = std::chrono::steady_clock;

struct RunOptions {
    std::string script;
    std::string out;
    std::string frames;  // prefix
    std::string gif;
    FrameGif timing;
    std::uint64_t every = 0;  // 0: no time-lapse
    std::string steps;        // prefix
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

int told(const PictureFault& fault) {
    std::fprintf(stderr, "brushwork: %s\n", fault.message.c_str());
    return fault.code;
}

// Stops at the first operation that can't be done.
int carryOut(const RunOptions& options, const Journal& journal, JournalSession& session,
             TimeLapse* lapse) {
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
        if (lapse)
            if (const auto fault = lapse->operationRun()) return told(*fault);
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

int saveFrames(const RunOptions& options, JournalSession& session) {
    if (!options.frames.empty())
        if (const auto fault = exportFramePngs(session.animation, session.paint, options.frames))
            return told(*fault);
    if (!options.gif.empty())
        if (const auto fault =
                exportFrameGif(session.animation, session.paint, options.gif, options.timing))
            return told(*fault);
    return ExitDone;
}

// Without a prefix, by the journal's name in the folder where the program runs.
std::string stepsPrefix(const RunOptions& options) {
    if (!options.steps.empty()) return options.steps;
    if (options.script == standardInput) return "journal-";
    return std::filesystem::path(options.script).stem().string() + "-";
}

int finish(const RunOptions& options, const Journal& journal, JournalSession& session,
           Clock::time_point start) {
    std::unique_ptr<TimeLapse> lapse;
    if (options.every > 0)
        lapse = std::make_unique<TimeLapse>(session.paint, stepsPrefix(options), options.every);
    const int exitCode = carryOut(options, journal, session, lapse.get());
    if (exitCode != ExitDone) return exitCode;
    if (session.paint.inStroke()) session.paint.endStroke();
    session.paint.endTransform(true);
    if (lapse)
        if (const auto fault = lapse->finish()) return told(*fault);
    if (!options.out.empty())
        if (const Problem problem = session.save(options.out, std::nullopt)) {
            std::fprintf(stderr, "brushwork: %s\n", problem->c_str());
            return ExitInputOutput;
        }
    if (const int failed = saveFrames(options, session); failed != ExitDone) return failed;
    if (options.stats) printStats(journal, session, secondsSince(start));
    return ExitDone;
}

int run(const RunOptions& options) {
    if (!options.out.empty())
        if (const auto fault = endingFault(options.out)) return told(*fault);
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

void addFrameOptions(CLI::App& command, RunOptions& options) {
    command
        .add_option("--frames", options.frames,
                    "Save the timeline at the end: a PNG for each number, PREFIX0001.png ...")
        ->type_name("PREFIX");
    auto* gif = command.add_option("--gif", options.gif,
                                   "Save the timeline at the end as an animated GIF; frames show "
                                   "as long as they hold");
    command
        .add_option("--rate", options.timing.framesPerSecond,
                    "Numbers of the timeline a second, in the GIF (12)")
        ->check(CLI::Range(0.01, 100.0))
        ->needs(gif);
    command
        .add_option("--plays", options.timing.plays,
                    "How often the GIF is played; 0, as without it: without end")
        ->needs(gif);
    auto* every = command
                      .add_option("--every", options.every,
                                  "Time-lapse: a PNG of the canvas in front after each N "
                                  "operations and at the end")
                      ->type_name("N")
                      ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1000000000}));
    command
        .add_option("--steps", options.steps,
                    "Where they go: PREFIX000001.png ...; otherwise SCRIPT's name and '-', "
                    "where the program runs")
        ->type_name("PREFIX")
        ->needs(every);
}

}  // namespace

void addRunCommand(CLI::App& program, int& exitCode) {
    auto* command = program.add_subcommand("run", "Carry out a journal: paint by script");
    auto options = std::make_shared<RunOptions>();
    command
        ->add_option("SCRIPT", options->script,
                     "A journal: a line of JSON an operation; - is standard input")
        ->required();
    command->add_option("--out", options->out, "Save the picture here at the end");
    addFrameOptions(*command, *options);
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
        "  brushwork run film.jsonl --gif film.gif --rate 12 --frames film/\n"
        "  brushwork run scene.jsonl --every 10 --steps lapse/\n"
        "  brushwork run scene.jsonl --hashes --threads 2 --vectors scalar");
    command->callback([options, &exitCode] { exitCode = run(*options); });
}

}  // namespace brushwork::tools
