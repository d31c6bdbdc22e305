// Realizing a page: making it ready to be read or written.
//
//     if (!realizePage(*slot, RealizeMode::Write)) return ...;
//     PagePin pin(**slot);  // the page in the slot may be another one than before
//     ... write through (*slot)->data ...
//     notePageWritten(**slot);
//
// What a page is realized for holds until memory is asked for another page: the page may then leave
// unless it is pinned, and a written one may turn solid unless it is hard-locked.
#pragma once

#include <cstdint>

#include "image/smart/smart_page_ref.h"

namespace brushwork {

enum class RealizeMode : std::int32_t {
    Read = 0,
    Write = 1,      // old content needed
    Overwrite = 2,  // the whole page will be written: left in memory, content undefined
    MakeSolid = 3,  // the same, left solid with value 0
};

// Brings the page of `slot` into memory (a solid one may stay solid for readers), and gives a
// writer a page of his own: if others hold it too, the slot gets a clone and they keep the old one.
// A hard-locked page keeps its memory in every mode, MakeSolid too.
//
// False if the page can't be had: no memory, or a state that no page should be reached in, which is
// logged and sets the failure flag. The slot then holds the page that it held before, with its
// pixels unchanged.
[[nodiscard]] bool realizePage(SmartPageRef& slot, RealizeMode mode);

// Reads all pages that still wait for `source` at the page origin (x, y), whoever holds them. False
// if one can't be read for want of memory.
[[nodiscard]] bool readPromised(const ilImage& source, std::int32_t x, std::int32_t y);

// Gives a solid page memory filled with its value. For readers that need an address. A page in
// memory is left alone; false without memory and for a page in another state.
[[nodiscard]] bool expandPage(SmartPage& page);
// The slot gets a solid page of this value that nobody else holds. If its page is hard-locked the
// slot's page has the value in all pixels instead.
[[nodiscard]] bool makePageSolid(SmartPageRef& slot, std::uint32_t value);
// After a write into a page that was realized for it: alphaClass, filledCells, clean and cloned
// fall to 0.
void notePageWritten(SmartPage& page);

}  // namespace brushwork
