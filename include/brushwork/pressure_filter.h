// PressureFilter: from a tablet's raw pressure to 0..1, with a curve, a threshold and smoothing.
//
//     pressureFilter().setRange(0, 8191);
//     const float pressure = pressureFilter().filter(raw);
//
// A light touch below the threshold counts as no pressure; the smoothing lets the pressure die away
// when the pen leaves. Belongs to the thread that feeds strokes.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "brushwork/export.h"

namespace brushwork {

class BRUSHWORK_API PressureFilter {
  public:
    // 0..1024, until setRange.
    PressureFilter();
    PressureFilter(std::int32_t low, std::int32_t high);

    // The device's bounds, in any order, each brought into -32768..65535. Equal bounds stand for
    // 0..1024. Forgets the last pressure; keeps the settings.
    void setRange(std::int32_t low, std::int32_t high);

    // What isn't set has its default, which an environment variable may change:
    // SID_PRESSURE_HARDNESS, SID_PRESSURE_THRESHOLD, SID_PRESSURE_SMOOTHNESS.
    //
    // 0..1: how hard one must press; the curve's exponent is 8 h * h + 0.1. Default 0.5, which also
    // takes the place of a value out of range.
    void setHardness(float hardness);
    // 0..1: the part of the range that is no pressure yet. Default 0.15, which also takes the place
    // of a value out of range. At least 3 steps of the device, at most all but one.
    void setThreshold(float threshold);
    // 0..0.95, else brought there: the share of the last pressure in the next. Default 0.2.
    void setSmoothness(float smoothness);

    // The pressure, 0..1. Each call moves the smoothing on.
    [[nodiscard]] float filter(std::int32_t raw);
    // A pressure of 0..1 smoothed with the last one, which stays what it was.
    [[nodiscard]] float blend(float pressure);

    [[nodiscard]] std::int32_t low() const { return low_; }
    [[nodiscard]] std::int32_t high() const { return high_; }

  private:
    void buildTable();
    void applyThreshold();
    void fillIn();

    std::optional<float> hardness_;  // as set, and in range
    std::optional<float> threshold_;
    std::optional<float> smoothness_;
    std::vector<float> table_;  // empty until it's needed
    std::int32_t low_ = 0;
    std::int32_t high_ = 0;
    float usedThreshold_ = 0.0f;  // the threshold within the device's steps
    float rescale_ = 1.0f;        // 1 / (1 - usedThreshold_)
    float previous_ = 0.0f;
};

// The process's one filter.
[[nodiscard]] BRUSHWORK_API PressureFilter& pressureFilter();

}  // namespace brushwork
