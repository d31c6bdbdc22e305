#include <spawn.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

#include "platform/clean_up.h"
#include "platform/clean_up_posix.h"
#include "platform/process_calls.h"
#include "platform/text_codec.h"

extern char** environ;

namespace brushwork::platform {

namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// 0 if the system refused.
pid_t startChild(const std::string& program, char* const* arguments) {
    posix_spawnattr_t attributes;
    if (::posix_spawnattr_init(&attributes) != 0) return 0;
    if (const sigset_t* mask = signalMaskForChildren()) {
        ::posix_spawnattr_setsigmask(&attributes, mask);
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    }
    pid_t child = 0;
    const int failed =
        ::posix_spawn(&child, program.c_str(), nullptr, &attributes, arguments, environ);
    ::posix_spawnattr_destroy(&attributes);
    return failed ? 0 : child;
}

// Waits until a child has ended; its number stays taken. False if nobody will know of its end,
// because whoever started this process has signals of ended children ignored.
bool awaitEnd(pid_t child) {
    siginfo_t unused{};
    while (::waitid(P_PID, static_cast<id_t>(child), &unused, WEXITED | WNOWAIT) != 0)
        if (errno != EINTR) return false;
    return true;
}

}  // namespace

std::vector<std::u16string> processArguments(int argc, char** argv) {
    std::vector<std::u16string> arguments;
    for (int i = 0; i < argc; ++i) arguments.push_back(fromUtf8(argv[i]));
    return arguments;
}

std::u16string programDirectory() {
    std::array<char, PATH_MAX> path{};
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0 || static_cast<std::size_t>(length) >= path.size()) return {};
    const std::string_view whole(path.data(), static_cast<std::size_t>(length));
    return fromUtf8(whole.substr(0, whole.rfind('/')));
}

std::u16string joinPath(std::u16string_view directory, std::u16string_view name) {
    return std::u16string(directory).append(u"/").append(name);
}

std::u16string programFileName(std::u16string_view name) {
    return std::u16string(name);
}

ProcessResult runProcess(std::u16string_view program,
                         const std::vector<std::u16string>& arguments) {
    std::vector<std::string> texts{toUtf8(program)};
    for (const auto& argument : arguments) texts.push_back(toUtf8(argument));
    std::vector<char*> pointers;
    for (auto& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);

    ProcessResult result;
    const EndingHold hold;  // no end of this process comes between the start and the note
    const pid_t child = startChild(texts[0], pointers.data());
    if (child == 0) return result;
    result.started = true;
    noteRunningChild(child);
    const bool ended = awaitEnd(child);
    dropRunningChild(child);  // before its number is free for another process
    int status = 0;
    struct rusage usage {};
    if (!ended || ::wait4(child, &status, 0, &usage) != child) return result;
    result.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    if (WIFEXITED(status)) {
        const int value = WEXITSTATUS(status);
        result.exitValue = value == 255 ? -1 : value;
    } else {
        result.exitValue = 128 + WTERMSIG(status);
    }
    return result;
}

bool errorStreamIsTerminal() {
    return ::isatty(STDERR_FILENO) == 1;
}

}  // namespace brushwork::platform
