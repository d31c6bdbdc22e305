// `brushwork brushes`: the brushes that ship with the program.
#pragma once

namespace CLI {
class App;
}

namespace brushwork::tools {

// Adds the command. Running it stores its exit code in `exitCode`.
void addBrushesCommand(CLI::App& program, int& exitCode);

}  // namespace brushwork::tools
