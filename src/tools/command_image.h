// `brushwork image ...`: pictures in and out through the helper process.
#pragma once

namespace CLI {
class App;
}

namespace brushwork::tools {

// Adds the command and its sub-commands. Running one stores its exit code in `exitCode`.
void addImageCommand(CLI::App& program, int& exitCode);

}  // namespace brushwork::tools
