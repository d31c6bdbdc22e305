#include "brushwork/reference_count.h"

namespace brushwork::zn {

ReferenceCount::~ReferenceCount() = default;

}  // namespace brushwork::zn
