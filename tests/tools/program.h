// Runs the program as a script does.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "support/temp_folder.h"

namespace brushwork::test {

struct Outcome {
    int exitCode = -1;
    std::string out, err;
};

inline std::string textOf(const std::string& path) {
    const auto bytes = readBytes(path);
    return {bytes.begin(), bytes.end()};
}

inline Outcome runProgram(const TempFolder& folder, const std::string& arguments) {
    const std::string command = "'" + std::string(BRUSHWORK_PROGRAM) + "' " + arguments + " >'" +
                                folder.file("out") + "' 2>'" + folder.file("err") + "'";
    const int status = std::system(command.c_str());
    return {WEXITSTATUS(status), textOf(folder.file("out")), textOf(folder.file("err"))};
}

// Writes a journal behind its first line; the path in quotes.
inline std::string writeJournal(const TempFolder& folder, const std::string& name,
                                const std::string& lines) {
    std::ofstream(folder.file(name)) << "{\"journal\": \"brushwork\", \"version\": 1}\n" << lines;
    return "'" + folder.file(name) + "'";
}

}  // namespace brushwork::test
