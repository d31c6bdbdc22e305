#include "foundation/files/temp_files.h"

#include <array>
#include <string>
#include <vector>

#include "foundation/files/file.h"
#include "platform/file_calls.h"

namespace brushwork::znOS {

namespace {

using znString::IString;

struct SweptPattern {
    std::u16string_view begin;
    std::u16string_view end;
    std::size_t shortest;   // units of the name
    std::size_t digitFrom;  // how far from the name's end a decimal digit stands, 0 for none
};

constexpr std::array<SweptPattern, 5> sweptPatterns{{
    {u"qel", u".unload", 13, 0},
    {u"qelmaTempMesh.", u"", 15, 0},
    {u"", u".qx$", 5, 0},
    {u"vox", u"out", 10, 1},
    {u"vox", u".bat", 14, 5},
}};

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

bool matches(std::u16string_view name, const SweptPattern& pattern) {
    if (name.size() < pattern.shortest || !name.starts_with(pattern.begin)) return false;
    if (pattern.digitFrom == 0) return name.ends_with(pattern.end);
    if (!isDigit(name[name.size() - pattern.digitFrom])) return false;
    if (pattern.digitFrom == 1) return name.substr(0, name.size() - 1).ends_with(pattern.end);
    return name.ends_with(pattern.end) &&
           name.substr(0, name.size() - pattern.digitFrom).ends_with(u"cmd");
}

bool isStale(const IString& path, std::int64_t now) {
    FileInfo info;
    if (File(path).stat(info).failed() || !info.isFile) return false;
    return now - info.modificationTime > staleAfterSeconds;
}

Filename temporaryNameWith(const IString& directory, const IString& extension,
                           const IString& prefix) {
    std::u16string made;
    if (!platform::makeUniqueFile(directory.view(), prefix.view(), made).ok()) return Filename();
    (void)platform::unlinkFile(made);
    const Filename unique{IString(made)};
    IString name = unique.baseName();
    name.append(IString(std::to_string(platform::processId())).view());
    if (!extension.isEmpty()) name.append(u".").append(extension.view());
    return Filename(unique.directory(), name);
}

}  // namespace

bool isSweptName(std::u16string_view name) {
    for (const SweptPattern& pattern : sweptPatterns)
        if (matches(name, pattern)) return true;
    return false;
}

Filename Filename::temporaryName(const IString& extension, const IString& prefix) {
    return temporaryNameWith(temporaryDirectory(), extension,
                             prefix.isEmpty() ? IString(u"ZNTMP") : prefix);
}

Filename Filename::temporaryNameIn(const IString& directory, const IString& extension,
                                   const IString& prefix) {
    return temporaryNameWith(directory, extension, prefix.isEmpty() ? IString(u"recover") : prefix);
}

int Filename::sweepDirectory(const IString& directory) {
    File folder(directory);
    std::vector<IString> names;
    if (folder.list(names, true).failed()) return 0;
    IString start = folder.path();
    if (!start.endsWith(std::u16string(1, defaultSeparator()))) start.append(defaultSeparator());
    const std::int64_t now = platform::fileClock();
    int deleted = 0;
    for (const IString& name : names) {
        IString path = start;
        path.append(name.view());
        if (!isSweptName(name.view()) || !isStale(path, now)) continue;
        if (!File::remove(path).failed()) ++deleted;
    }
    return deleted;
}

int sweepDirectories(const IString& temporary, const IString& common) {
    const IString first = Filename(temporary).path();
    int deleted = Filename::sweepDirectory(first);
    IString otherSpelling = common;
    otherSpelling.replaceAll(u"/", u"\\");
    const bool same = first == common || first == otherSpelling;
    if (!same && File::isDirectory(common)) deleted += Filename::sweepDirectory(common);
    return deleted;
}

int Filename::sweepTemporaryFiles() {
    return sweepDirectories(temporaryDirectory(), u"/tmp");
}

}  // namespace brushwork::znOS
