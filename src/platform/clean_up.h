// What a process that is ended from outside still does: helpers that it waits for end first, files
// half made go.
#pragma once

#include <cstdint>
#include <string_view>

namespace brushwork::platform {

// What happens to the process after that.
enum class AfterCleanUp {
    EndWithFailure,  // it ends with -1
    EndBySignal,     // it ends as the signal would have ended it
};

// From now on a signal that ends the process (on Windows an event of its console) begins its end:
// noted children are told to end, what EndingHolds cover comes to its own end (within five seconds,
// or until a second signal), noted files are removed. Signals of the terminal that the process was
// started to ignore stay ignored. Writing to a closed pipe or beyond a file size limit becomes an
// ordinary failure, and a crash removes the noted files, too. Call it while there is one thread:
// later ones leave the signals to a thread made here. Where none can be made, signals end the
// process at once.
void cleanUpOnSignals(AfterCleanUp after);

// Names a file that must not survive if the process is ended before the matching dropPartialFile.
// So many can be named at once; more are ignored. Any thread.
inline constexpr int partialFileRoom = 48;  // what sixteen requests to the helper name
void notePartialFile(std::u16string_view path);
void dropPartialFile(std::u16string_view path);

// A process that this one waits for, by the system's number, until it is dropped. 64 can be noted
// at once; more are ignored. Any thread.
void noteRunningChild(std::int64_t process);
void dropRunningChild(std::int64_t process);

// Keeps the process from ending between two steps that belong together, like making a file and
// noting it, or a helper's end and taking over the files that it left. Where the end has begun, a
// thread that makes its first hold or drops its last one stays there until the process is gone, so
// that nobody reports what the end made fail. Belongs to the thread that made it; may nest.
class EndingHold {
  public:
    EndingHold();
    EndingHold(const EndingHold&) = delete;
    EndingHold& operator=(const EndingHold&) = delete;
    ~EndingHold();

    // For who ends the process: from now on nobody gets past a hold; whether one is left.
    static void beginEnd();
    [[nodiscard]] static bool anyLeft();
};

}  // namespace brushwork::platform
