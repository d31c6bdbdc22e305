// GenericFunction: a function of one number, from which brushes, strokes and adjustments take
// their parameters.
#pragma once

#include <cstdint>

#include "brushwork/ref.h"
#include "brushwork/resource.h"

namespace brushwork {

class GenericFunction : public Resource {
  public:
    // Slots behind Resource's, in this order in every class.
    [[nodiscard]] virtual Ref<GenericFunction> copy() const = 0;
    [[nodiscard]] virtual float eval(float x) const = 0;
    // Writes eval(first + i * step) to out[i] for `count` places.
    virtual void evalRange(float first, float step, float* out, std::int32_t count) const = 0;
    // Same class and same fields.
    [[nodiscard]] virtual bool equals(const GenericFunction& other) const = 0;
    // Whether eval gives the same for every x; false if the class doesn't know.
    [[nodiscard]] virtual bool isConstant() const;
    // For logs.
    [[nodiscard]] virtual const char* name() const;

    // One number for each class.
    [[nodiscard]] std::int32_t typeId() const { return typeId_; }
    // Numbers of the classes of this folder, and a new one for any other class.
    enum class Family { Linear, Poly1D, Solid, Spline };
    [[nodiscard]] static std::int32_t typeIdOf(Family family);
    [[nodiscard]] static std::int32_t newTypeId();

  protected:
    explicit GenericFunction(std::int32_t typeId) : typeId_(typeId) {}
    ~GenericFunction() override;

    // evalRange of a class, without a virtual call for each place.
    template <class Function>
    static void evalEach(const Function& function, float first, float step, float* out,
                         std::int32_t count) {
        for (std::int32_t i = 0; i < count; ++i) {
            out[i] = function.Function::eval(first + static_cast<float>(i) * step);
        }
    }

  private:
    std::int32_t typeId_;
};

}  // namespace brushwork
