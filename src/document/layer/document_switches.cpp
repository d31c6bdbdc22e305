#include "document/layer/document_switches.h"

namespace brushwork {

DocumentSwitches& documentSwitches() {
    static DocumentSwitches switches;
    return switches;
}

}  // namespace brushwork
