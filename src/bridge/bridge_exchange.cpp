#include "bridge/bridge_exchange.h"

#include "bridge/exchange_name.h"
#include "foundation/files/file.h"
#include "platform/clean_up.h"

namespace brushwork {

using znString::IString;

bool ExchangeFile::makeName() {
    take(exchangeFileName());
    return !path_.isEmpty();
}

void ExchangeFile::take(const IString& path) {
    remove();
    path_ = path;
    if (!path_.isEmpty()) platform::notePartialFile(path_.view());
}

void ExchangeFile::remove() {
    if (path_.isEmpty()) return;
    static_cast<void>(znOS::File::remove(path_));
    platform::dropPartialFile(path_.view());
    path_.clear();
}

BridgeExchange::BridgeExchange(std::u16string_view command, const ImageFileParams& params) {
    request.params = params;
    report.helperFound = znOS::File::exists(bridgeProgramPath());
    ready_ = report.helperFound && responseFile_.makeName() &&
             request.setCommand(IString(command)) && request.setResponsePath(responseFile_.path());
}

bool BridgeExchange::run() {
    return ready_ && spawnBridge(request, response, &report);
}

}  // namespace brushwork
