// StampBands: the rows of a stamp in bands, made on this thread and the workers of the TaskPool.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace brushwork::npc {

// A band holds at least 32768 pixels, so a stamp of fewer is one band, made on the calling thread
// without a look at the pool.
class StampBands {
  public:
    struct Band {
        std::int32_t firstRow = 0, rows = 0;
    };

    StampBands(std::int32_t width, std::int32_t height);

    [[nodiscard]] std::size_t count() const { return count_; }
    [[nodiscard]] Band band(std::size_t index) const;
    // Calls work(band) for each band and returns when all are done. `work` must not throw.
    void run(const std::function<void(Band)>& work) const;

  private:
    std::int32_t height_;
    std::int32_t rows_ = 1;  // of every band but the last
    std::size_t count_ = 0;
};

}  // namespace brushwork::npc
