#include "bridge/bridge_entry.h"

#include <exception>

#include "bridge/commands.h"
#include "bridge/gdi_plus_session.h"
#include "bridge/request_record.h"
#include "brushwork/host_call_table.h"
#include "platform/clean_up.h"
#include "platform/file_calls.h"

namespace brushwork {

namespace {

struct CommandRow {
    std::u16string_view name;
    bool (*run)(const RequestRecord&, RequestRecord&);
};

// Compared without regard to case, in this order.
constexpr CommandRow commands[] = {
    {u"OpenFromFile", commandOpenFromFile},
    {u"SaveToFile", commandSaveToFile},
    {u"GetSize", commandGetSize},
};

// An unknown command is no error: its answer is an empty record.
bool runCommand(const RequestRecord& request, RequestRecord& response) {
    const znString::IString command(fieldText(request.command));
    for (const auto& row : commands)
        if (command.compareNoCase(row.name) == 0) return row.run(request, response);
    return true;
}

// The pixels of an answer that nobody has got yet. They go unless the answer is left.
class UndeliveredPixels {
  public:
    explicit UndeliveredPixels(const RequestRecord& response) : response_(response) {}
    UndeliveredPixels(const UndeliveredPixels&) = delete;
    UndeliveredPixels& operator=(const UndeliveredPixels&) = delete;
    ~UndeliveredPixels() {
        if (!delivered_ && !path().empty()) static_cast<void>(platform::unlinkFile(path()));
        platform::dropPartialFile(path());
    }
    void deliver() {
        delivered_ = true;
        platform::dropPartialFile(path());
    }

  private:
    [[nodiscard]] std::u16string_view path() const { return fieldText(response_.pixelsPath); }

    const RequestRecord& response_;
    bool delivered_ = false;
};

// The answer and the pixels that it names are left together, or neither is.
void deliver(const znString::IString& path, const RequestRecord& response,
             UndeliveredPixels& pixels) {
    const platform::EndingHold hold;
    if (writeRecord(path, response)) pixels.deliver();
}

int serve(const std::vector<std::u16string>& arguments) {
    GdiPlusSession::start();
    clearHostCallTable();
    const znString::IString requestPath{std::u16string_view(requestPathFrom(arguments))};
    RequestRecord request;
    RequestRecord response;
    if (!readRecord(requestPath, request)) return bridgeFailed;
    UndeliveredPixels pixels(response);
    if (!runCommand(request, response)) return bridgeFailed;
    deliver(znString::IString(fieldText(request.responsePath)), response, pixels);
    GdiPlusSession::stop();
    return bridgeAnswered;
}

}  // namespace

std::u16string requestPathFrom(const std::vector<std::u16string>& arguments) {
    for (std::size_t i = 1; i + 1 < arguments.size(); ++i) {
        const std::u16string_view argument = arguments[i];
        if (argument.starts_with(u'/') &&
            znString::IString(argument.substr(1)).compareNoCase(u"file") == 0)
            return arguments[i + 1];
    }
    return {};
}

int runBridge(const std::vector<std::u16string>& arguments) noexcept {
    try {
        return serve(arguments);
    } catch (const std::exception&) {
        // Out of memory: whatever was under construction has removed itself.
        return bridgeFailed;
    }
}

}  // namespace brushwork
