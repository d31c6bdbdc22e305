// IdList: the kinds that an undo record answers to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "brushwork/export.h"

namespace brushwork {

class BRUSHWORK_API IdList {
  public:
    // Names are cut to 127 bytes. The primary one isn't among the kinds by itself.
    explicit IdList(const char* primaryName);

    [[nodiscard]] const std::string& primaryName() const { return primaryName_; }
    [[nodiscard]] const std::vector<std::string>& kindNames() const { return kindNames_; }
    // Byte by byte; false for null.
    [[nodiscard]] bool isKind(const char* name) const;
    void addKind(const char* name);
    void addKinds(const std::vector<std::string>& names);

  private:
    std::vector<std::string> kindNames_;
    std::string primaryName_;
};

}  // namespace brushwork
