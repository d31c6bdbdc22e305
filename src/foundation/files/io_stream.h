// znOS::IOStream: bytes in and out, in order.
#pragma once

#include <cstddef>

#include "brushwork/error.h"

namespace brushwork::znOS {

class IOStream {
  public:
    virtual ~IOStream() = default;
    // `count` receives the number of bytes moved, after a failure too. EndOfFile tells that the
    // stream met its end while it was reading, even when some bytes arrived.
    [[nodiscard]] virtual znUtil::Error read(void* buffer, std::size_t size, std::size_t& count,
                                             int flag = 0) = 0;
    [[nodiscard]] virtual znUtil::Error write(const void* buffer, std::size_t size,
                                              std::size_t& count, int flag = 0) = 0;

  protected:
    IOStream() = default;
    IOStream(const IOStream&) = delete;
    IOStream& operator=(const IOStream&) = delete;
};

// What a file is opened for: a set of bits. Text translates line ends where the system does that;
// append replaces read and write.
enum OpenModeBit : int {
    OpenText = 1,
    OpenBinary = 2,  // callers set it with the binary modes; the local transport doesn't read it
    OpenRead = 4,
    OpenWrite = 8,
    OpenAppend = 16,
    OpenCreate = 32,  // the local transport doesn't read it
};
inline constexpr int readBinary = OpenRead | OpenBinary;                  // 6
inline constexpr int writeBinary = OpenWrite | OpenBinary;                // 10
inline constexpr int createBinary = OpenCreate | OpenWrite | OpenBinary;  // 42

}  // namespace brushwork::znOS
