// Processes: the arguments of this one, where its program stands, starting another and waiting.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brushwork::platform {

// The command line as wide arguments, the program's own name first. `argc` and `argv` are those of
// main; a system that has the wide command line at hand splits that one instead.
[[nodiscard]] std::vector<std::u16string> processArguments(int argc, char** argv);

// The directory of the running program, without a separator at its end; empty if unknown.
[[nodiscard]] std::u16string programDirectory();

// Directory, separator, name.
[[nodiscard]] std::u16string joinPath(std::u16string_view directory, std::u16string_view name);

// The file name of a program of that name on this system ("x" or "x.exe").
[[nodiscard]] std::u16string programFileName(std::u16string_view name);

struct ProcessResult {
    bool started = false;
    // The value the process ended with, as a signed 32-bit number: -1 for a process that ended
    // with -1 (or 255 where only eight bits survive), 128 + n where signal n ended it.
    std::int32_t exitValue = 0;
    double cpuSeconds = 0.0;  // processor time it used
};

// Starts `program` (a path) with these arguments, the program's own name not among them, and waits
// for its end without a limit. Standard streams are inherited.
[[nodiscard]] ProcessResult runProcess(std::u16string_view program,
                                       const std::vector<std::u16string>& arguments);

// True if a person may be reading standard error.
[[nodiscard]] bool errorStreamIsTerminal();

}  // namespace brushwork::platform
