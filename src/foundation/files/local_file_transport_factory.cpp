#include "foundation/files/local_file_transport_factory.h"

#include "foundation/files/local_file_transport.h"
#include "platform/file_calls.h"

namespace brushwork::znOS {

using znString::IString;

IString localPath(const IString& name, char16_t separator) {
    constexpr std::u16string_view scheme = u"file:";
    if (!name.beginsWith(scheme)) return name;
    std::u16string_view rest = name.view().substr(scheme.size());
    if (separator != u'/') {
        if (rest.starts_with(u'/')) rest.remove_prefix(1);
        return IString(rest);
    }
    while (rest.starts_with(u"//")) rest.remove_prefix(1);
    return IString(rest);
}

std::unique_ptr<FileTransport> LocalFileTransportFactory::create(const IString& name) {
    return std::make_unique<LocalFileTransport>(localPath(name, platform::pathSeparator()));
}

}  // namespace brushwork::znOS
