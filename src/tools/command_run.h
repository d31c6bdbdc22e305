// `brushwork run`: carries a journal out.
#pragma once

namespace CLI {
class App;
}

namespace brushwork::tools {

// Adds the command. Running it stores its exit code in `exitCode`.
void addRunCommand(CLI::App& program, int& exitCode);

}  // namespace brushwork::tools
