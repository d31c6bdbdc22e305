#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

#include <vector>

#include "platform/owner_names.h"
#include "platform/text_codec.h"

namespace brushwork::platform {

namespace {

constexpr std::size_t recordRoom = 16384;

std::string accountName(uid_t id) {
    std::vector<char> room(recordRoom);
    passwd record{};
    passwd* found = nullptr;
    if (::getpwuid_r(id, &record, room.data(), room.size(), &found) != 0 || !found) return {};
    return record.pw_name;
}

std::string groupName(gid_t id) {
    std::vector<char> room(recordRoom);
    group record{};
    group* found = nullptr;
    if (::getgrgid_r(id, &record, room.data(), room.size(), &found) != 0 || !found) return {};
    return record.gr_name;
}

}  // namespace

bool readOwnerNames(std::u16string_view path, OwnerNames& names) {
    names = {};
    struct stat found {};
    if (path.find(u'\0') != path.npos || ::stat(toUtf8(path).c_str(), &found) != 0) return false;
    if (std::string name = accountName(found.st_uid); !name.empty()) names.owner = std::move(name);
    if (std::string name = groupName(found.st_gid); !name.empty()) names.group = std::move(name);
    return true;
}

}  // namespace brushwork::platform
