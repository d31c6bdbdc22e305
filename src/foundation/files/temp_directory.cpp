#include "brushwork/filename.h"
#include "platform/file_calls.h"

namespace brushwork::znOS {

namespace {

using znString::IString;

IString& overrideDirectory() {
    static IString directory;
    return directory;
}

}  // namespace

IString Filename::temporaryDirectory() {
    if (!overrideDirectory().isEmpty()) return overrideDirectory();
    const std::u16string found = platform::temporaryDirectory();
    return IString(found.empty() ? std::u16string_view(u"C:\\") : std::u16string_view(found));
}

void Filename::setTemporaryDirectory(const IString& directory) {
    overrideDirectory() = directory;
}

}  // namespace brushwork::znOS
