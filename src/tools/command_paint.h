// `brushwork paint`: a recorded pen with one brush, straight to a picture.
#pragma once

namespace CLI {
class App;
}

namespace brushwork::tools {

// Adds the command. Running it stores its exit code in `exitCode`.
void addPaintCommand(CLI::App& program, int& exitCode);

}  // namespace brushwork::tools
