// What every painting command of the program can be told about the engine.
#pragma once

#include <cstdint>
#include <string>

namespace CLI {
class App;
}

namespace brushwork::tools {

struct EngineOptions {
    std::uint64_t seed = 1;
    bool hasSeed = false;
    std::int32_t threads = 0;  // 0: one a processor
    std::string vectors = "256";
};

void addEngineOptions(CLI::App& command, EngineOptions& options);
// Sets the process up; `journalSeed` counts where no seed was given. Before anything is painted.
void applyEngineOptions(const EngineOptions& options, std::uint64_t journalSeed);

}  // namespace brushwork::tools
