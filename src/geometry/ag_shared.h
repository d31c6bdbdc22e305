// znAG::AGShared: the counted holder of a kernel object.
#pragma once

#include <cstdint>

#include "brushwork/reference_count.h"
#include "geometry/ag_class_record.h"
#include "geometry/ag_curve.h"
#include "geometry/ag_spline.h"

namespace brushwork::znAG {

// Owns its object, which never changes for another one; null is allowed. Holders on several threads
// may come and go; who reads or edits the object arranges that with the others.
class AGShared final : public zn::ReferenceCount {
  public:
    explicit AGShared(AgObjectPtr object);
    explicit AGShared(AgCurvePtr curve);
    explicit AGShared(AgSplinePtr spline);

    [[nodiscard]] AG_GOB* object() const { return object_.get(); }

    // How many live in this process.
    [[nodiscard]] static std::int32_t liveCount();

  protected:
    ~AGShared() override;

  private:
    AgObjectPtr object_;
};

}  // namespace brushwork::znAG
