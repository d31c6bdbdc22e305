// One request to the helper with the files that go with it.
//
//     BridgeExchange exchange(u"GetSize");
//     if (exchange.request.setImagePath(path) && exchange.run()) use(exchange.response);
#pragma once

#include <string_view>

#include "bridge/request_record.h"
#include "bridge/spawn_bridge.h"
#include "platform/clean_up.h"

namespace brushwork {

// A file between client and helper, removed with the object and when a signal ends the process.
class ExchangeFile {
  public:
    ExchangeFile() = default;
    ExchangeFile(const ExchangeFile&) = delete;
    ExchangeFile& operator=(const ExchangeFile&) = delete;
    ~ExchangeFile() { remove(); }

    // A new name, in the place of what was held; the file is for somebody to make. False if there
    // can be none.
    [[nodiscard]] bool makeName();
    // Holds a file that somebody has made. An empty path holds nothing.
    void take(const znString::IString& path);
    void remove();
    [[nodiscard]] const znString::IString& path() const { return path_; }

  private:
    znString::IString path_;
};

// While one lives, a signal's end of the process waits: the helper's answer names a file of pixels
// that somebody has to take. Belongs to one thread.
class BridgeExchange {
  public:
    // Without a helper nothing is made, no name either, and run() answers false.
    explicit BridgeExchange(std::u16string_view command, const ImageFileParams& params = {});

    // False if the exchange couldn't be set up, and as spawnBridge.
    [[nodiscard]] bool run();
    // Whether there is a name for the response.
    [[nodiscard]] bool isReady() const { return ready_; }

    RequestRecord request;
    RequestRecord response;
    SpawnReport report;

  private:
    platform::EndingHold hold_;
    ExchangeFile responseFile_;
    bool ready_ = false;
};

}  // namespace brushwork
