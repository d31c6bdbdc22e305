#include "brushwork/id_list.h"

#include <algorithm>

namespace brushwork {
namespace {

constexpr std::size_t longestName = 127;

std::string cut(const char* name) {
    return name ? std::string(std::string_view(name).substr(0, longestName)) : std::string();
}

}  // namespace

IdList::IdList(const char* primaryName) : primaryName_(cut(primaryName)) {}

bool IdList::isKind(const char* name) const {
    return name && std::find(kindNames_.begin(), kindNames_.end(), name) != kindNames_.end();
}

void IdList::addKind(const char* name) {
    kindNames_.push_back(cut(name));
}

void IdList::addKinds(const std::vector<std::string>& names) {
    kindNames_.insert(kindNames_.end(), names.begin(), names.end());
}

}  // namespace brushwork
