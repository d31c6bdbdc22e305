// The registry of pages that were promised from another image and are not read yet.
//
//     if (!promisePage(*page, parent, x, y)) return ...;  // no memory
//
// Who looked at a page keeps the pixels that stood there then, also when they are still to be read:
// so they are read before the image that they come from is written to by one of its heirs (see
// readPromised in page_realize.h). All under the image lock.
#pragma once

#include <cstdint>

#include "image/cache/smart_page.h"

namespace brushwork {

// Gives the page a pending read of `source` at the page origin (x, y), and remembers it. False
// without memory; the page stays as it was.
[[nodiscard]] bool promisePage(SmartPage& page, ilImage& source, std::int32_t x, std::int32_t y);
// Ends the page's pending read, if it has one.
void endPromise(SmartPage& page);
// A page that still waits for `source` at (x, y), the one behind `after` in the registry's order,
// or the first for null; null: no more.
[[nodiscard]] SmartPage* nextPromised(const ilImage& source, std::int32_t x, std::int32_t y,
                                      SmartPage* after = nullptr);

}  // namespace brushwork
