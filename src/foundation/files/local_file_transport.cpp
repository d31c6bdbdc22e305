#include "foundation/files/local_file_transport.h"

#include "brushwork/filename.h"

namespace brushwork::znOS {

using znString::IString;
using znUtil::Error;

LocalFileTransport::LocalFileTransport(const IString& path) : path_(path) {}

LocalFileTransport::~LocalFileTransport() = default;

std::string streamMode(int mode) {
    std::string text;
    if (mode & OpenRead) text += 'r';
    if (mode & OpenWrite) text += 'w';
    if (mode & OpenAppend) text = "a+";
    return text + ((mode & OpenText) ? 't' : 'b');
}

Error openError(int number) {
    switch (number) {
        case 0: return {};
        case platform::errnoNoEntry: return znUtil::FileDoesNotExist;
        case platform::errnoExists: return znUtil::FileExists;
        default: return znUtil::IoProblem;
    }
}

void LocalFileTransport::setPath(const IString& path) {
    path_ = path;
    directoryTested_ = false;
}

Error LocalFileTransport::read(void* buffer, std::size_t size, std::size_t& count, int) {
    count = 0;
    if (!stream_) return znUtil::IoProblem;
    count = std::fread(buffer, 1, size, stream_.get());
    if (std::feof(stream_.get())) return znUtil::EndOfFile;
    return count < size ? Error(znUtil::IoProblem) : Error();
}

Error LocalFileTransport::write(const void* buffer, std::size_t size, std::size_t& count, int) {
    count = 0;
    if (!stream_) return znUtil::IoProblem;
    count = std::fwrite(buffer, 1, size, stream_.get());
    // Closing never fails, so the bytes must have arrived by now.
    if (count != size || std::fflush(stream_.get()) != 0) return znUtil::IoProblem;
    return {};
}

Error LocalFileTransport::open(int mode) {
    (void)close();
    int number = 0;
    stream_ = platform::openStream(path_.view(), streamMode(mode), number);
    return openError(number);
}

Error LocalFileTransport::openUnique(int mode) {
    (void)close();
    IString name;
    const int number = uniqueName(mode, name);
    if (!name.isEmpty()) setPath(name);
    return openError(number);
}

Error LocalFileTransport::close() {
    stream_.reset();
    return {};
}

Error LocalFileTransport::remove() {
    const platform::CallResult result = isDirectory() ? platform::removeDirectory(path_.view())
                                                      : platform::unlinkFile(path_.view());
    if (result.number == platform::errnoNotEmpty) return znUtil::DirectoryNotEmpty;
    return result.number == platform::errnoNoEntry ? Error(znUtil::FileDoesNotExist)
           : result.ok()                           ? Error()
                                                   : Error(znUtil::IoProblem);
}

Error LocalFileTransport::moveTo(FileTransport& target) {
    FileInfo from;
    FileInfo to;
    if (Error error = stat(from); error.failed()) return error;
    if (Error error = target.stat(to); error.failed()) return error;
    // Not FileDoesNotExist: callers know a missing source of a move by this code.
    if (!from.exists) return znUtil::FileExists;
    const bool alike = transportName() == target.transportName();
    const bool fits = !to.exists || from.isDirectory == to.isDirectory;
    // An open file isn't renamed on any system; below it is refused.
    if (alike && fits && !isOpen() && platform::renameFile(path_.view(), target.path().view()).ok())
        return {};
    return FileTransport::moveTo(target);
}

IString LocalFileTransport::parentPath() const {
    const std::size_t last = path_.view().rfind(separator());
    return last == znString::npos ? IString() : IString(path_.view().substr(0, last + 1));
}

IString LocalFileTransport::fileName() const {
    const std::size_t last = path_.view().rfind(separator());
    return last == znString::npos ? IString() : IString(path_.view().substr(last + 1));
}

char16_t LocalFileTransport::separator() const {
    return Filename::defaultSeparator();
}

IString LocalFileTransport::transportName() const {
    return IString(u"LocalFileTransport");
}

}  // namespace brushwork::znOS
