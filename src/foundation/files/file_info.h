// FileInfo: what a stat tells.
#pragma once

#include <cstdint>

#include "brushwork/c_string.h"

namespace brushwork::znOS {

struct FileInfo {
    bool exists = false;  // a regular file or a directory
    bool isReadable = false;
    bool isWritable = false;
    bool isDirectory = false;
    bool isFile = false;
    bool spare1 = false;
    bool spare2 = false;
    std::uint64_t size = 0;         // bytes
    std::int64_t creationTime = 0;  // seconds since 1970
    std::int64_t modificationTime = 0;
    znString::CString owner;  // UTF-8; empty unless asked for, "Unknown" if the system can't tell
    znString::CString group;
};

}  // namespace brushwork::znOS
