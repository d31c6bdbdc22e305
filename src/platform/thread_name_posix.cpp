#include <pthread.h>

#include <algorithm>
#include <cstring>

#include "platform/thread_name.h"

namespace brushwork::platform {

bool nameCallingThread(const std::string& name) noexcept {
    constexpr std::size_t most = 15;
    char shown[most + 1] = {};
    const std::size_t space = name.rfind(' ');
    const std::size_t tail = space == std::string::npos ? 0 : name.size() - space;
    if (name.size() <= most || tail == 0 || tail > most) {
        std::memcpy(shown, name.data(), std::min(name.size(), most));
    } else {
        std::memcpy(shown, name.data(), most - tail);
        std::memcpy(shown + most - tail, name.data() + space, tail);
    }
    return ::pthread_setname_np(::pthread_self(), shown) == 0;
}

}  // namespace brushwork::platform
