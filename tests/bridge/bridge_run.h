// Requests to the helper, in this process or in one of its own.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "bridge/bridge_entry.h"
#include "bridge/request_record.h"
#include "platform/process_calls.h"
#include "platform/text_codec.h"
#include "support/temp_folder.h"

namespace brushwork::test {

inline znString::IString wide(const std::string& text) {
    return znString::IString(std::string_view(text));
}

inline RequestRecord makeRequest(const std::string& command, const std::string& image,
                                 const std::string& response) {
    RequestRecord request;
    EXPECT_TRUE(request.setCommand(wide(command)));
    EXPECT_TRUE(request.setImagePath(wide(image)));
    EXPECT_TRUE(request.setResponsePath(wide(response)));
    return request;
}

enum class Where { InProcess, OwnProcess };

struct BridgeRun {
    int exitValue = 0;
    std::optional<RequestRecord> response;
};

// Runs the helper on a request; the exchange files but for the pixels are gone afterwards.
inline BridgeRun runRequest(const TempFolder& folder, const RequestRecord& request,
                            Where where = Where::InProcess) {
    const std::string requestPath = folder.file("request.rec");
    EXPECT_TRUE(writeRecord(wide(requestPath), request));
    BridgeRun run;
    if (where == Where::InProcess) {
        run.exitValue = runBridge({u"helper", u"/file", platform::fromUtf8(requestPath)});
    } else {
        const auto result = platform::runProcess(platform::fromUtf8(BRUSHWORK_HELPER),
                                                 {u"/file", platform::fromUtf8(requestPath)});
        EXPECT_TRUE(result.started);
        run.exitValue = result.exitValue;
    }
    RequestRecord response;
    const znString::IString responsePath(fieldText(request.responsePath));
    if (readRecord(responsePath, response)) run.response = response;
    std::filesystem::remove(requestPath);
    std::filesystem::remove(responsePath.toUtf8());
    return run;
}

// The pixel file that a response names, read and removed.
inline std::vector<std::uint8_t> takePixels(const RequestRecord& response) {
    const std::string path = znString::IString(fieldText(response.pixelsPath)).toUtf8();
    auto bytes = readBytes(path);
    std::filesystem::remove(path);
    return bytes;
}

inline std::string picture(const std::string& name) {
    return std::string(BRUSHWORK_TEST_DATA) + "/pictures/" + name;
}

}  // namespace brushwork::test
