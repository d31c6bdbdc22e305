#include "bridge/exchange_name.h"

#include "brushwork/filename.h"

namespace brushwork {

znString::IString exchangeFileName() {
    return znOS::Filename::temporaryName(znString::IString(u"tmp"), znString::IString(u"KVR"))
        .path();
}

}  // namespace brushwork
