// The client's runner: one request to the helper process, one response back.
#pragma once

#include "bridge/request_record.h"

namespace brushwork {

// What happened beside the yes or no, for callers that tell a person.
struct SpawnReport {
    bool helperFound = false;
    bool requestWritten = false;
    bool started = false;
    std::int32_t exitValue = 0;
    double cpuSeconds = 0.0;  // processor time of the helper
};

// The helper's path: InkAtelierBridge beside the running program, or what was set instead.
[[nodiscard]] znString::IString bridgeProgramPath();
// For programs whose helper stands elsewhere; an empty path takes it back. Any thread; requests
// that have begun keep the helper that they found.
void setBridgeProgramPath(const znString::IString& path);

// Writes the request under a temporary name, runs the helper on it, waits for its end without a
// limit, and reads the response from the request's responsePath. True if a whole response came
// and, for "SaveToFile" and "SaveToClipboard", if it repeats the request's width, height and
// channels. The request file is removed; the response file is the caller's to delete. The helper's
// exit value plays no part. Any thread may call; the call blocks it.
[[nodiscard]] bool spawnBridge(const RequestRecord& request, RequestRecord& response,
                               SpawnReport* report = nullptr);

}  // namespace brushwork
