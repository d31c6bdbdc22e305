// All public headers of the engine.
#pragma once

#include "brushwork/c_string.h"
#include "brushwork/error.h"
#include "brushwork/filename.h"
#include "brushwork/host_call_table.h"
#include "brushwork/i_string.h"
#include "brushwork/il_tile.h"
#include "brushwork/progress.h"
#include "brushwork/ref.h"
#include "brushwork/reference_count.h"
#include "brushwork/resource.h"
#include "brushwork/runtime.h"
#include "brushwork/zn_string.h"
