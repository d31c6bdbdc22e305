#include "brushwork/filename.h"
#include "foundation/files/local_file_transport.h"
#include "foundation/services/random_source.h"

namespace brushwork::znOS {

using znString::IString;
using znUtil::Error;

namespace {

constexpr int mostTries = 10;
constexpr std::size_t longestListing = 260;  // units of the path, its separator included

// "z" never occurs.
std::u16string randomLetters(int count) {
    std::u16string letters;
    while (count-- > 0) letters += static_cast<char16_t>(randomValue() % 25 + 97);
    return letters;
}

IString directoryFor(const Filename& name) {
    return name.directory().isEmpty() ? Filename::temporaryDirectory() : name.directory();
}

}  // namespace

int LocalFileTransport::uniqueName(int mode, IString& name) {
    const Filename wanted(path_);
    const IString directory = directoryFor(wanted);
    IString prefix = wanted.baseName();
    prefix.append(wanted.extension());
    if (prefix.isEmpty() || prefix.view() == u".") prefix = IString(u"ZNT");
    int number = platform::errnoExists;
    for (int count = 0; count < mostTries && number == platform::errnoExists; ++count) {
        if (count > 0) prefix = IString(randomLetters(5));
        std::u16string made;
        const platform::CallResult result =
            platform::makeUniqueFile(directory.view(), prefix.view(), made);
        name = IString(made);
        number = result.number;
        if (result.ok()) stream_ = platform::openStream(made, streamMode(mode), number);
    }
    return number;
}

Error LocalFileTransport::makeDirectory() {
    const platform::CallResult result = platform::makeDirectory(path_.view());
    if (result.ok()) return {};
    return result.number == platform::errnoExists ? znUtil::FileExists : znUtil::IoProblem;
}

Error LocalFileTransport::makeUniqueDirectory() {
    const IString directory = directoryFor(Filename(path_));
    int number = platform::errnoExists;
    for (int count = 0; count < mostTries && number == platform::errnoExists; ++count) {
        IString name = directory;
        if (!name.endsWith(std::u16string(1, separator()))) name.append(separator());
        name.append(randomLetters(10));
        number = platform::makeDirectory(name.view()).number;
        if (number == 0) setPath(name);
    }
    if (number == 0) return {};
    return number == platform::errnoExists ? znUtil::FileExists : znUtil::IoProblem;
}

Error LocalFileTransport::makeDirectoryPath() {
    if (isDirectory()) return {};
    // From the bottom up to what is there, then down again.
    std::vector<IString> missing{path_};
    while (true) {
        const IString parent = Filename(missing.back()).directory();
        if (parent.isEmpty() || parent == missing.back()) break;
        if (LocalFileTransport(parent).isDirectory()) break;
        missing.push_back(parent);
    }
    for (; !missing.empty(); missing.pop_back()) {
        LocalFileTransport next(missing.back());
        Error error = next.makeDirectory();
        // Another process may have been faster.
        if (error.failed() && !next.isDirectory()) return error;
    }
    return {};
}

Error LocalFileTransport::list(std::vector<IString>& entries, bool namesOnly) {
    entries.clear();
    std::u16string directory(path_.view());
    if (directory.empty() || directory.back() != separator()) directory += separator();
    if (directory.size() > longestListing) return znUtil::PathTooLong;
    std::vector<std::u16string> names;
    const platform::CallResult result = platform::listDirectory(directory, names);
    if (result.number == platform::systemFileNotFound) return {};
    if (!result.ok()) return znUtil::IoProblem;
    for (const std::u16string& name : names)
        entries.emplace_back(namesOnly ? name : directory + name);
    return {};
}

}  // namespace brushwork::znOS
