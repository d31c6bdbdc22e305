// The name of a thread, as debuggers and system monitors show it.
#pragma once

#include <string>

namespace brushwork::platform {

// Names the calling thread, in ASCII. Where the system holds 15 characters only, a longer name
// loses its middle, so that a number at its end can still be read: "NPC Worker T 12". False if the
// system doesn't take it.
bool nameCallingThread(const std::string& name) noexcept;

}  // namespace brushwork::platform
