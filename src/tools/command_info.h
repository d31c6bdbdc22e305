// `brushwork info`: what a journal does, without doing it.
#pragma once

namespace CLI {
class App;
}

namespace brushwork::tools {

// Adds the command. Running it stores its exit code in `exitCode`.
void addInfoCommand(CLI::App& program, int& exitCode);

}  // namespace brushwork::tools
