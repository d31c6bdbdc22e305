// How every command of the program ends.
#pragma once

namespace brushwork::tools {

enum ExitCode : int {
    ExitDone = 0,
    ExitFailed = 1,       // anything that no other code names
    ExitUsage = 2,        // the command line makes no sense
    ExitBadInput = 3,     // an input file is damaged or not of a known kind
    ExitInputOutput = 4,  // a file can't be read or written
    ExitLimit = 5,        // out of memory, or over a limit
};

}  // namespace brushwork::tools
