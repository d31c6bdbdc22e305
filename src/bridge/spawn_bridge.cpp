#include "bridge/spawn_bridge.h"

#include <mutex>

#include "bridge/exchange_name.h"
#include "foundation/files/file.h"
#include "platform/clean_up.h"
#include "platform/process_calls.h"

namespace brushwork {

namespace {

struct Override {
    std::mutex mutex;
    znString::IString path;
};

Override& programOverride() {
    static Override chosen;
    return chosen;
}

bool wantsEcho(const RequestRecord& request) {
    const znString::IString command(fieldText(request.command));
    return command.compareNoCase(u"SaveToFile") == 0 ||
           command.compareNoCase(u"SaveToClipboard") == 0;
}

bool echoes(const ImageFileParams& request, const ImageFileParams& response) {
    return request.width == response.width && request.height == response.height &&
           request.channels == response.channels;
}

}  // namespace

znString::IString bridgeProgramPath() {
    {
        Override& other = programOverride();
        const std::lock_guard lock(other.mutex);
        if (!other.path.isEmpty()) return other.path;
    }
    return znString::IString(platform::joinPath(platform::programDirectory(),
                                                platform::programFileName(u"InkAtelierBridge")));
}

void setBridgeProgramPath(const znString::IString& path) {
    Override& other = programOverride();
    const std::lock_guard lock(other.mutex);
    other.path = path;
}

bool spawnBridge(const RequestRecord& request, RequestRecord& response, SpawnReport* report) {
    SpawnReport unused;
    SpawnReport& told = report ? *report : unused;
    told = {};
    const znString::IString program = bridgeProgramPath();
    if (!znOS::File::exists(program)) return false;
    told.helperFound = true;

    const znString::IString requestPath = exchangeFileName();
    if (requestPath.isEmpty()) return false;
    bool answered = false;
    const platform::EndingHold hold;
    platform::notePartialFile(requestPath.view());
    told.requestWritten = writeRecord(requestPath, request);
    if (told.requestWritten) {
        const auto run =
            platform::runProcess(program.view(), {u"/file", std::u16string(requestPath.view())});
        told.started = run.started;
        told.exitValue = run.exitValue;
        told.cpuSeconds = run.cpuSeconds;
        answered = run.started &&
                   readRecord(znString::IString(fieldText(request.responsePath)), response) &&
                   (!wantsEcho(request) || echoes(request.params, response.params));
    }
    static_cast<void>(znOS::File::remove(requestPath));
    platform::dropPartialFile(requestPath.view());
    return answered;
}

}  // namespace brushwork
