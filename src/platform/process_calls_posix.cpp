#include <spawn.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

#include "platform/process_calls.h"
#include "platform/process_limits.h"
#include "platform/text_codec.h"

extern char** environ;

namespace brushwork::platform {

namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
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
    pid_t child = 0;
    if (::posix_spawn(&child, texts[0].c_str(), nullptr, nullptr, pointers.data(), environ) != 0)
        return result;
    int status = 0;
    struct rusage usage {};
    result.started = true;
    noteRunningChild(child);
    bool ended = true;
    while (::wait4(child, &status, 0, &usage) < 0) {
        if (errno == EINTR) continue;
        // Whoever started us has signals of ended children ignored: how ours ended stays unknown.
        ended = false;
        break;
    }
    dropRunningChild(child);
    if (!ended) return result;
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
