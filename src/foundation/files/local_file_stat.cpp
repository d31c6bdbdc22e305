#include "brushwork/filename.h"
#include "foundation/files/local_file_transport.h"
#include "platform/owner_names.h"

namespace brushwork::znOS {

using znString::IString;
using znUtil::Error;

namespace {

Error systemError(std::int32_t code, std::uint32_t textCode) {
    const std::u16string text = platform::systemErrorText(textCode);
    if (!text.empty()) return {code, IString(text)};
    return {code, u"An unknown WIN32 error occurred: %d", static_cast<int>(textCode)};
}

// A directory's name as a stat takes it: without a trailing separator, but for a root's.
std::u16string_view withoutTrailing(std::u16string_view path, char16_t separator) {
    const bool driveRoot = path.size() == 3 && path[1] == u':';
    if (path.size() > 1 && path.back() == separator && !driveRoot) path.remove_suffix(1);
    return path;
}

}  // namespace

bool LocalFileTransport::isDirectory() {
    if (directoryTested_) return directoryResult_;
    platform::FileStatus status;
    if (!platform::statFile(withoutTrailing(path_.view(), separator()), status).ok()) return false;
    directoryTested_ = true;
    directoryResult_ = status.kind == platform::FileKind::Directory;
    return directoryResult_;
}

Error LocalFileTransport::stat(FileInfo& info) {
    IString path = path_;
    if (!path.isEmpty()) path = Filename(path_).path();
    info = {};
    platform::FileStatus status;
    const platform::CallResult result = platform::statFile(path.view(), status);
    if (result.number == platform::errnoNoEntry) return {};
    if (!result.ok()) return systemError(znUtil::IoProblem, result.textCode);
    info.isDirectory = status.kind == platform::FileKind::Directory;
    info.isFile = status.kind == platform::FileKind::File;
    info.exists = info.isDirectory || info.isFile;
    info.size = status.size;
    info.modificationTime = status.modified;
    info.creationTime = status.created;
    if (!info.exists) return {};
    info.isReadable = platform::accessFile(path.view(), platform::accessRead);
    info.isWritable = platform::accessFile(path.view(), platform::accessWrite);
    return {};
}

Error LocalFileTransport::statExtras(FileInfo& info) {
    info.owner = znString::CString("Unknown");
    info.group = info.owner;
    std::u16string path;
    if (Error error = longPath(path); error.failed()) return error;
    platform::OwnerNames names;
    if (!platform::readOwnerNames(path, names))
        return {znUtil::MessageOnly, u"Failed to query Owner/Group of %s", path_.c_str()};
    info.owner = znString::CString(names.owner);
    info.group = znString::CString(names.group);
    return {};
}

Error LocalFileTransport::longPath(std::u16string& result) const {
    result = std::u16string(path_.view());
    if (!Filename(path_).isAbsolute()) {
        const platform::CallResult call = platform::fullPath(path_.view(), result);
        if (!call.ok()) return systemError(znUtil::SystemCall, call.textCode);
    }
    if (separator() == u'\\') result = longPathForm(result, separator());
    return {};
}

std::u16string longPathForm(std::u16string_view absolute, char16_t separator) {
    if (absolute.size() >= 2 && absolute[0] == separator && absolute[1] == separator)
        return std::u16string(u"\\\\?\\UNC\\").append(absolute.substr(2));
    return std::u16string(u"\\\\?\\").append(absolute);
}

}  // namespace brushwork::znOS
