#include "brushwork/filename.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/file_calls.h"

namespace brushwork::znOS {

namespace {

using znString::CString;
using znString::IString;

constexpr std::size_t workingDirectoryRoom = 260;

char16_t otherSeparator(char16_t separator) {
    return separator == u'\\' ? u'/' : u'\\';
}

void collapseDoubled(std::u16string& path, char16_t separator) {
    if (path.size() < 2) return;
    std::size_t kept = 1;  // a pair at the very start is a network path's and stays
    for (std::size_t i = 1; i < path.size(); ++i) {
        const bool doubled = kept > 1 && path[i] == separator && path[kept - 1] == separator;
        if (!doubled) path[kept++] = path[i];
    }
    path.resize(kept);
}

bool isDriveRoot(std::u16string_view path, char16_t separator) {
    return path.size() == 3 && path[1] == u':' && path[2] == separator;
}

// A path of the form \\server\.
bool isServerRoot(std::u16string_view path, char16_t separator) {
    return path.size() > 2 && path[0] == separator && path[1] == separator &&
           path.find(separator, 2) == path.size() - 1;
}

void dropTrailing(std::u16string& path, char16_t separator) {
    while (path.size() > 1 && path.back() == separator && !isDriveRoot(path, separator) &&
           !isServerRoot(path, separator))
        path.pop_back();
}

// Takes the steps out from left to right. The head, what stands before a step, is kept apart from
// the tail behind it, so that a path of many steps takes no more than one walk.
void collapseParentSteps(std::u16string& path, char16_t separator) {
    const std::array<char16_t, 4> units{separator, u'.', u'.', separator};
    const std::u16string_view step(units.data(), units.size());
    const std::u16string_view text(path);
    std::u16string head;   // holds no step; empty, or ends in a separator
    std::size_t tail = 0;  // where the rest begins
    while (true) {
        if (!head.empty() && text.substr(tail).starts_with(step.substr(1))) {
            head.pop_back();
            tail += step.size() - 1;
        } else {
            const std::size_t place = text.find(step, tail);
            if (place == text.npos) break;
            head.append(text, tail, place - tail);
            tail = place + step.size();
        }
        const std::size_t last = head.rfind(separator);
        if (last != head.npos) {
            head.resize(last + 1);
        } else if (head == u"..") {
            head += step;  // nothing is known that the step could swallow: it stays
            break;
        } else if (head == u".") {
            head = step.substr(1);
        } else {
            head.clear();  // a drive goes like any other name, and so does a root
        }
    }
    path = head.append(text.substr(tail));
}

std::u16string joined(std::u16string_view directory, std::u16string_view file, char16_t separator) {
    std::u16string path(directory);
    const bool drive = directory.size() == 2 && directory[1] == u':';
    if (!directory.empty() && !drive) path += separator;
    path += file;
    return path;
}

void copyPart(const IString& part, char* buffer) {
    const char* text = part.narrow();
    std::memcpy(buffer, text, std::strlen(text) + 1);
}

Filename fromNarrow(const char* path) {
    return Filename(CString(path));
}

}  // namespace

Filename::Filename() : separator_(defaultSeparator()) {}

Filename::Filename(const IString& path) : Filename(path, defaultSeparator()) {}

Filename::Filename(const IString& path, char16_t separator) : separator_(separator) {
    setPath(std::u16string(path.view()));
}

Filename::Filename(const CString& path) : Filename(path, defaultSeparator()) {}

Filename::Filename(const CString& path, char16_t separator) : Filename(IString(path), separator) {}

Filename::Filename(const IString& directory, const IString& file)
    : Filename(directory, file, defaultSeparator()) {}

Filename::Filename(const IString& directory, const IString& file, char16_t separator)
    : separator_(separator) {
    if (file.isEmpty())
        path_ = directory;
    else
        setJoined(joined(directory.view(), file.view(), separator));
}

Filename::Filename(const Filename& other) : separator_(other.separator_), path_(other.path_) {}

Filename::~Filename() = default;

Filename& Filename::operator=(const Filename& other) {
    if (this == &other) return *this;
    separator_ = other.separator_;
    path_ = other.path_;
    parts_.reset();
    return *this;
}

Filename& Filename::operator=(const IString& path) {
    setPath(std::u16string(path.view()));
    return *this;
}

bool Filename::setToWorkingDirectory() {
    std::u16string directory;
    if (!platform::workingDirectory(directory, workingDirectoryRoom)) return false;
    setPath(std::move(directory));
    return true;
}

void Filename::setPath(std::u16string path) {
    std::replace(path.begin(), path.end(), otherSeparator(separator_), separator_);
    setJoined(std::move(path));
}

void Filename::setJoined(std::u16string path) {
    collapseDoubled(path, separator_);
    dropTrailing(path, separator_);
    collapseParentSteps(path, separator_);
    path_ = IString(path);
    parts_.reset();
}

bool Filename::isAbsolute() const {
    const std::u16string_view path = path_.view();
    if (path.starts_with(u"\\\\")) return true;
    if (path.size() >= 3 && path[1] == u':' && path[2] == u'\\') return true;
    const bool slashIsRoot = separator_ == u'/' && defaultSeparator() == u'/';
    return slashIsRoot && path.starts_with(u'/');
}

bool Filename::isDeviceName() const {
    const IString upper = baseName().upper();
    const std::u16string_view name = upper.view();
    if (name.size() == 3)
        return name == u"CON" || name == u"PRN" || name == u"AUX" || name == u"NUL";
    if (name.size() != 4) return false;
    const bool numbered = name.starts_with(u"COM") || name.starts_with(u"LPT");
    return numbered && name[3] >= u'1' && name[3] <= u'9';
}

char16_t Filename::defaultSeparator() {
    return platform::pathSeparator();
}

void Filename::narrowRoot(const char* path, char* buffer) {
    copyPart(fromNarrow(path).root(), buffer);
}

void Filename::narrowDirectory(const char* path, char* buffer) {
    copyPart(fromNarrow(path).directory(), buffer);
}

void Filename::narrowName(const char* path, char* buffer) {
    copyPart(fromNarrow(path).name(), buffer);
}

void Filename::narrowBaseName(const char* path, char* buffer) {
    copyPart(fromNarrow(path).baseName(), buffer);
}

void Filename::narrowExtension(const char* path, char* buffer) {
    copyPart(fromNarrow(path).extension(), buffer);
}

}  // namespace brushwork::znOS
