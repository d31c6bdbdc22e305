#include "tools/run_options.h"

#include <CLI/CLI.hpp>

#include "brushwork/runtime.h"

namespace brushwork::tools {

void addEngineOptions(CLI::App& command, EngineOptions& options) {
    command
        .add_option_function<std::uint64_t>(
            "--seed",
            [&options](std::uint64_t seed) {
                options.seed = seed;
                options.hasSeed = true;
            },
            "Where the random sequence begins; otherwise what the journal says, or 1")
        ->check([](const std::string& text) {
            return text.starts_with('-') ? "a seed is 0 or more" : std::string();
        });
    command.add_option("--threads", options.threads, "Threads that draw; 0: one a processor")
        ->check(CLI::Range(0, 256));
    command.add_option("--vectors", options.vectors, "Widest kernels: scalar, 128 or 256 bits")
        ->check(CLI::IsMember({"scalar", "128", "256"}));
}

void applyEngineOptions(const EngineOptions& options, std::uint64_t journalSeed) {
    using runtime::VectorWidth;
    runtime::setRandomSeed(options.hasSeed ? options.seed : journalSeed);
    runtime::setWorkerCount(options.threads);
    const VectorWidth width = options.vectors == "scalar" ? VectorWidth::Scalar
                              : options.vectors == "128"  ? VectorWidth::Bits128
                                                          : VectorWidth::Bits256;
    runtime::limitVectorWidth(width);
}

}  // namespace brushwork::tools
