// TransformFamily: layers moved, scaled, turned and bent, shown live.
#pragma once

#include <cstdint>
#include <span>

#include "brushwork/export.h"
#include "brushwork/transform_record.h"

namespace brushwork {

struct FacadeState;

class BRUSHWORK_API TransformFamily {
  public:
    // Closes one that is open. `mode` 0 keeps the layer's own images in front; `arg` is the host's.
    bool beginTransform(std::span<const std::int32_t> ids, std::int32_t mode = 0,
                        std::int32_t arg = 0);
    // False: none is open, or numbers that are no place. Document pixels and degrees.
    bool updateTransform(const TransformRecord& record);
    // `keep`: what is shown becomes the layers' pixels; else all is as before.
    bool endTransform(bool keep = true);
    // What is selected, lifted off the active layer onto a layer of its own above it.
    std::int32_t newTemporaryLayer();

  protected:
    explicit TransformFamily(FacadeState& state) : state_(state) {}
    TransformFamily(const TransformFamily&) = delete;
    TransformFamily& operator=(const TransformFamily&) = delete;
    ~TransformFamily() = default;

  private:
    FacadeState& state_;
};

}  // namespace brushwork
