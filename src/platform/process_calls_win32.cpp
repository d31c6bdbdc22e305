#include <windows.h>
// The argument splitter needs the header above.
#include <shellapi.h>

#include <array>
#include <cstddef>
#include <memory>

#include "platform/argument_quoting.h"
#include "platform/process_calls.h"
#include "platform/wide_text_win32.h"

namespace brushwork::platform {

namespace {

constexpr std::size_t longestPath = 32768;

struct CloseHandleOnExit {
    void operator()(void* handle) const { ::CloseHandle(handle); }
};
using HandleOwner = std::unique_ptr<void, CloseHandleOnExit>;

// Console handles of older systems are numbers of their own kind, which pass to a child anyway.
bool isConsoleNumber(HANDLE handle) {
    return (reinterpret_cast<std::uintptr_t>(handle) & 3) == 3;
}

// The standard streams in a form that a child inherits, and nothing else of this process: another
// open file in its hands could be neither replaced nor deleted here.
class StandardStreams {
  public:
    StandardStreams() {
        constexpr std::array<DWORD, 3> names{STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
        for (std::size_t i = 0; i < names.size(); ++i) handles_[i] = pass(::GetStdHandle(names[i]));
    }
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;
    ~StandardStreams() {
        if (list_) ::DeleteProcThreadAttributeList(list_);
    }

    // Puts the streams into `start`. False if the system refused.
    bool putInto(STARTUPINFOEXW& start) {
        // With none to pass on, the system's own rule is the better one.
        if (inheritedCount_ == 0) return true;
        start.StartupInfo.dwFlags |= STARTF_USESTDHANDLES;
        start.StartupInfo.hStdInput = handles_[0];
        start.StartupInfo.hStdOutput = handles_[1];
        start.StartupInfo.hStdError = handles_[2];
        SIZE_T bytes = 0;
        ::InitializeProcThreadAttributeList(nullptr, 1, 0, &bytes);
        storage_.resize(bytes / sizeof(std::max_align_t) + 1);
        const auto list = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(storage_.data());
        if (!::InitializeProcThreadAttributeList(list, 1, 0, &bytes)) return false;
        list_ = list;
        start.lpAttributeList = list;
        return ::UpdateProcThreadAttribute(list, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST,
                                           inherited_.data(), inheritedCount_ * sizeof(HANDLE),
                                           nullptr, nullptr) != 0;
    }
    bool inheritsAny() const { return inheritedCount_ != 0; }

  private:
    HANDLE pass(HANDLE stream) {
        if (!stream || stream == INVALID_HANDLE_VALUE) return nullptr;
        if (isConsoleNumber(stream)) return stream;
        HANDLE copy = nullptr;
        const HANDLE self = ::GetCurrentProcess();
        if (!::DuplicateHandle(self, stream, self, &copy, 0, TRUE, DUPLICATE_SAME_ACCESS))
            return nullptr;
        owned_[inheritedCount_].reset(copy);
        inherited_[inheritedCount_++] = copy;
        return copy;
    }

    std::array<HANDLE, 3> handles_{};
    std::array<HandleOwner, 3> owned_;
    std::array<HANDLE, 3> inherited_{};
    std::size_t inheritedCount_ = 0;
    std::vector<std::max_align_t> storage_;
    LPPROC_THREAD_ATTRIBUTE_LIST list_ = nullptr;
};

double processorSeconds(HANDLE process) {
    FILETIME begun{}, ended{}, inside{}, outside{};
    if (!::GetProcessTimes(process, &begun, &ended, &inside, &outside)) return 0.0;
    const auto seconds = [](const FILETIME& time) {
        const std::uint64_t ticks = std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
        return static_cast<double>(ticks) * 1e-7;
    };
    return seconds(inside) + seconds(outside);
}

}  // namespace

std::vector<std::u16string> processArguments(int, char**) {
    struct FreeLocal {
        void operator()(wchar_t** block) const { ::LocalFree(block); }
    };
    int count = 0;
    const std::unique_ptr<wchar_t*, FreeLocal> split(
        ::CommandLineToArgvW(::GetCommandLineW(), &count));
    std::vector<std::u16string> arguments;
    for (int i = 0; split && i < count; ++i) arguments.push_back(fromWide(split.get()[i]));
    return arguments;
}

std::u16string programDirectory() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            ::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) return {};
        if (length < path.size()) {
            path.resize(length);
            break;
        }
        if (path.size() >= longestPath) return {};
        path.resize(path.size() * 2);
    }
    const std::size_t separator = path.find_last_of(L"\\/");
    if (separator == std::wstring::npos) return {};
    return fromWide(std::wstring_view(path).substr(0, separator));
}

std::u16string joinPath(std::u16string_view directory, std::u16string_view name) {
    return std::u16string(directory).append(u"\\").append(name);
}

std::u16string programFileName(std::u16string_view name) {
    return std::u16string(name) + u".exe";
}

ProcessResult runProcess(std::u16string_view program,
                         const std::vector<std::u16string>& arguments) {
    ProcessResult result;
    // The system may write into the line.
    std::wstring line = toWide(commandLine(program, arguments));
    if (program.empty() || line.empty()) return result;

    StandardStreams streams;
    STARTUPINFOEXW start{};
    if (!streams.putInto(start)) return result;
    const bool inherit = streams.inheritsAny();
    start.StartupInfo.cb = inherit ? sizeof(STARTUPINFOEXW) : sizeof(STARTUPINFOW);
    PROCESS_INFORMATION made{};
    if (!::CreateProcessW(toWide(program).c_str(), line.data(), nullptr, nullptr, inherit,
                          inherit ? EXTENDED_STARTUPINFO_PRESENT : 0, nullptr, nullptr,
                          &start.StartupInfo, &made))
        return result;
    const HandleOwner process(made.hProcess);
    ::CloseHandle(made.hThread);

    DWORD value = 0;
    if (::WaitForSingleObject(process.get(), INFINITE) != WAIT_OBJECT_0 ||
        !::GetExitCodeProcess(process.get(), &value))
        return result;
    result.started = true;
    result.cpuSeconds = processorSeconds(process.get());
    result.exitValue = static_cast<std::int32_t>(value);
    return result;
}

}  // namespace brushwork::platform
