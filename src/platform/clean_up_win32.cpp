#include <windows.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cwchar>
#include <mutex>
#include <string>

#include "platform/clean_up.h"
#include "platform/clean_up_win32.h"
#include "platform/wide_text_win32.h"

namespace brushwork::platform {

namespace {

constexpr UINT failureExit = 0xFFFFFFFFU;  // -1
constexpr UINT abortExit = 3;              // as the C runtime's own
constexpr DWORD longestWait = 3000;        // milliseconds; the system leaves five seconds
constexpr ULONG stackForHandlers = 64 * 1024;

// Read while the process dies, perhaps with a broken heap: fixed storage.
struct PartialSlot {
    std::atomic<bool> used{false};
    std::array<wchar_t, 4096> path{};
};
std::array<PartialSlot, partialFileRoom> partialFiles;

// Of those who note and drop; whoever dies takes no lock.
std::mutex& partialFilesLock() {
    static std::mutex mutex;
    return mutex;
}

struct FileIdentity {
    DWORD volume = 0;
    DWORD high = 0;
    DWORD low = 0;
    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

bool readIdentity(HANDLE file, FileIdentity& identity) {
    BY_HANDLE_FILE_INFORMATION information{};
    if (!::GetFileInformationByHandle(file, &information)) return false;
    identity = {information.dwVolumeSerialNumber, information.nFileIndexHigh,
                information.nFileIndexLow};
    return true;
}

// A file that this process has open can't be deleted unless whoever opened it allowed that, which
// the imaging platform and the C runtime don't. The process is about to end, so its handles on the
// file are closed under their owners. Handle values are small multiples of four.
void closeHandlesOn(const wchar_t* path) {
    const HANDLE probe = ::CreateFileW(path, FILE_READ_ATTRIBUTES,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                       nullptr, OPEN_EXISTING, 0, nullptr);
    if (probe == INVALID_HANDLE_VALUE) return;
    FileIdentity wanted;
    const bool known = readIdentity(probe, wanted);
    ::CloseHandle(probe);
    constexpr std::uintptr_t highestHandle = 0x10000;
    for (std::uintptr_t value = 4; known && value < highestHandle; value += 4) {
        const auto handle = reinterpret_cast<HANDLE>(value);
        FileIdentity identity;
        if (::GetFileType(handle) == FILE_TYPE_DISK && readIdentity(handle, identity) &&
            identity == wanted)
            ::CloseHandle(handle);
    }
}

void removePartialFiles() {
    for (const auto& slot : partialFiles) {
        if (!slot.used.load(std::memory_order_acquire)) continue;
        if (::DeleteFileW(slot.path.data())) continue;
        closeHandlesOn(slot.path.data());
        ::DeleteFileW(slot.path.data());
    }
}

[[noreturn]] void endProcess(UINT value) {
    ::TerminateProcess(::GetCurrentProcess(), value);
    for (;;) ::Sleep(INFINITE);
}

// Runs in a thread that the system makes.
BOOL WINAPI endFromConsole(DWORD) {
    endWithFailure();
}

// Ends at once, without a report or a dialog and without clean-up code that would run over broken
// memory. The exit value is the exception's number.
LONG WINAPI endAfterCrash(EXCEPTION_POINTERS* crash) {
    removePartialFiles();
    endProcess(crash->ExceptionRecord->ExceptionCode);
}

void endAfterAbort(int) {
    removePartialFiles();
    endProcess(abortExit);
}

void handleEnds() {
    ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    _set_error_mode(_OUT_TO_STDERR);
    ::SetConsoleCtrlHandler(endFromConsole, TRUE);
    ::SetUnhandledExceptionFilter(endAfterCrash);
    std::signal(SIGABRT, endAfterAbort);
    // Room for the filter when it is the stack that ran out.
    ULONG guarantee = stackForHandlers;
    ::SetThreadStackGuarantee(&guarantee);
}

}  // namespace

void cleanUpOnSignals(AfterCleanUp) {
    handleEnds();
}

void endWithFailure() {
    EndingHold::beginEnd();
    for (const DWORD start = ::GetTickCount();
         EndingHold::anyLeft() && ::GetTickCount() - start < longestWait;)
        ::Sleep(2);
    removePartialFiles();
    endProcess(failureExit);
}

// A console tells every process in it of its end, children included.
void noteRunningChild(std::int64_t) {}
void dropRunningChild(std::int64_t) {}

void notePartialFile(std::u16string_view path) {
    const std::wstring text = toWide(path);
    if (text.empty() || holdsTerminator(path)) return;
    const std::lock_guard lock(partialFilesLock());
    for (auto& slot : partialFiles) {
        if (text.size() >= slot.path.size()) return;
        if (slot.used.load(std::memory_order_relaxed)) continue;
        std::wmemcpy(slot.path.data(), text.c_str(), text.size() + 1);
        slot.used.store(true, std::memory_order_release);
        return;
    }
}

void dropPartialFile(std::u16string_view path) {
    const std::wstring text = toWide(path);
    const std::lock_guard lock(partialFilesLock());
    for (auto& slot : partialFiles)
        if (slot.used.load(std::memory_order_relaxed) && text == slot.path.data())
            slot.used.store(false, std::memory_order_release);
}

}  // namespace brushwork::platform
