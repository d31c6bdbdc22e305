#include "foundation/files/file_transport.h"

#include <array>

#include "foundation/files/file_factory.h"

namespace brushwork::znOS {

namespace {

using znString::IString;
using znUtil::Error;

constexpr std::size_t copyBuffer = 4096;

IString inDirectory(const FileTransport& directory, std::u16string_view name) {
    IString path = directory.path();
    const std::u16string_view units = path.view();
    if (units.empty() || units.back() != directory.separator()) path.append(directory.separator());
    path.append(name);
    return path;
}

// The end of the source ends the copy as a success.
Error copyBytes(FileTransport& source, FileTransport& target) {
    std::array<char, copyBuffer> buffer{};
    while (true) {
        std::size_t count = 0;
        const Error reading = source.read(buffer.data(), buffer.size(), count);
        const bool ended = reading.code() == znUtil::EndOfFile;
        if (reading.failed() && !ended) return reading;
        std::size_t written = 0;
        if (count > 0) {
            Error writing = target.write(buffer.data(), count, written);
            if (writing.failed()) return writing;
        }
        if (ended) return {};
    }
}

}  // namespace

Error FileTransport::openUnique(int mode) {
    return {znUtil::NotImplemented, u"This function is not implemented. mode=%d", mode};
}

Error FileTransport::makeUniqueDirectory() {
    return {znUtil::NotImplemented, IString(u"This function is not implemented.")};
}

Error FileTransport::makeDirectoryPath() {
    return {znUtil::NotImplemented, IString(u"This function is not implemented.")};
}

Error FileTransport::statExtras(FileInfo&) {
    return {znUtil::NotImplemented, IString(u"This function still not supported.")};
}

Error FileTransport::copyTo(FileTransport& target) {
    if (isOpen() || target.isOpen() || path() == target.path()) return znUtil::FileIsOpen;
    return isDirectory() ? copyDirectoryTo(target) : copyFileTo(target);
}

Error FileTransport::copyDirectoryTo(FileTransport& target) {
    // Listed before the target is made: one that lies inside the source isn't copied into itself.
    std::vector<IString> names;
    const Error listing = list(names, true);
    Error making = target.makeDirectory();
    if (making.failed() && making.code() != znUtil::FileExists) return making;
    if (listing.failed()) return listing;
    for (const IString& name : names) {
        if (name.view() == u"." || name.view() == u"..") continue;
        const auto from = FileFactory::instance().createTransport(inDirectory(*this, name.view()));
        const auto to = FileFactory::instance().createTransport(inDirectory(target, name.view()));
        if (!from || !to) return znUtil::NotImplemented;
        Error copying = from->copyTo(*to);
        if (copying.failed()) return copying;
    }
    return {};
}

Error FileTransport::copyFileTo(FileTransport& target) {
    Error result = target.open(OpenCreate | OpenWrite);
    if (!result.failed()) result = open(readBinary);
    if (!result.failed()) result = copyBytes(*this, target);
    const Error closings[] = {close(), target.close()};
    for (const Error& closing : closings)
        if (!result.failed()) result = closing;
    return result;
}

Error FileTransport::moveTo(FileTransport& target) {
    if (isOpen()) return znUtil::FileIsOpen;
    if (path() == target.path()) return znUtil::NoOverwritePermission;
    Error copying = copyTo(target);
    return copying.failed() ? copying : remove();
}

}  // namespace brushwork::znOS
