// The three image commands. Each reads the request, fills the response and answers whether it
// worked; false ends the helper with -1 and leaves no file behind.
#pragma once

namespace brushwork {

struct RequestRecord;

// Size and resolution of imagePath, from its header.
[[nodiscard]] bool commandGetSize(const RequestRecord& request, RequestRecord& response);

// Decodes imagePath into a new pixel file under a temporary name.
[[nodiscard]] bool commandOpenFromFile(const RequestRecord& request, RequestRecord& response);

// Encodes pixelsPath into imagePath. The pixel file stays.
[[nodiscard]] bool commandSaveToFile(const RequestRecord& request, RequestRecord& response);

}  // namespace brushwork
