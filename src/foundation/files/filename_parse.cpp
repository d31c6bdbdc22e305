#include "foundation/files/filename_parse.h"

namespace brushwork::znOS {

namespace {

using znString::IString;
using View = std::u16string_view;

constexpr View networkPair = u"\\\\";

struct RootSplit {
    View root;
    View rest;
    bool network = false;
};

// \\server\share\rest. Without a share and something behind it, all is root.
RootSplit splitNetworkRoot(View path) {
    const std::size_t share = path.find(u'\\', 2);
    if (share == path.npos || share + 1 == path.size()) return {path, {}, true};
    const std::size_t end = path.find(u'\\', share + 1);
    if (end == path.npos) return {path, {}, true};
    return {path.substr(0, end), path.substr(end + 1), true};
}

RootSplit splitRoot(View path) {
    if (path.size() >= 2 && path[1] == u':') return {path.substr(0, 2), path.substr(2)};
    if (path.starts_with(networkPair)) return splitNetworkRoot(path);
    return {{}, path};
}

struct NameSplit {
    View directory;
    View name;
};

NameSplit splitName(View rest, char16_t separator) {
    if (rest.size() == 1 && rest[0] == separator) return {rest, {}};
    const std::size_t last = rest.rfind(separator);
    if (last == rest.npos) return {{}, rest};
    if (last == 0) return {rest.substr(0, 1), rest.substr(1)};
    return {rest.substr(0, last), rest.substr(last + 1)};
}

void splitExtension(FilenameParts& parts) {
    const View name = parts.name.view();
    if (name.empty() || name == u".") return;
    const std::size_t dot = name.rfind(u'.');
    if (dot == name.npos) {
        parts.baseName = parts.name;
        return;
    }
    parts.baseName = IString(name.substr(0, dot));
    parts.extension = IString(name.substr(dot + 1));
}

}  // namespace

FilenameParts parseFilename(View path, char16_t separator) {
    FilenameParts parts;
    parts.separator = separator;
    const RootSplit root = splitRoot(path);
    const NameSplit split = splitName(root.rest, separator);
    parts.root = IString(root.root);
    parts.directory = parts.root;
    if (root.network && !split.directory.empty()) parts.directory.append(u'\\');
    parts.directory.append(split.directory);
    parts.name = IString(split.name);
    splitExtension(parts);
    return parts;
}

const FilenameParts& Filename::parts() const {
    if (!parts_)
        parts_ = std::make_unique<const FilenameParts>(parseFilename(path_.view(), separator_));
    return *parts_;
}

const IString& Filename::root() const {
    return parts().root;
}

const IString& Filename::directory() const {
    return parts().directory;
}

const IString& Filename::name() const {
    return parts().name;
}

const IString& Filename::baseName() const {
    return parts().baseName;
}

const IString& Filename::extension() const {
    return parts().extension;
}

}  // namespace brushwork::znOS
