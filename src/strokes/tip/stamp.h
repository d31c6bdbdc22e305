// Stamp: one brush tip as its owner sees it: radius, fall-off, images, opacity. Observers hear what
// changed by a code.
//
//     stamp->beginChanges();
//     stamp->setRadius(12.0f);
//     stamp->setOpacity(0.5f);
//     stamp->endChanges();          // one notification, StampChange::All
//
// Belongs to the document's thread.
#pragma once

#include <array>
#include <cstdint>

#include "brushwork/ref.h"
#include "brushwork/resource.h"
#include "foundation/base/observable.h"
#include "foundation/profiles/generic_function.h"
#include "strokes/tip/image_paint_obj.h"

namespace brushwork {

enum class StampChange : std::int32_t {
    None = 0,
    Radius = 1,
    FallOff = 2,
    ColorObject = 3,
    SecondColorObject = 4,
    ShapeObject = 5,
    ModeValue = 7,
    Opacity = 8,
    Matrix = 11,
    All = 13,
};

// What a stamp is made from. The images may be null.
struct StampArguments {
    float radius = 5.0f;
    Ref<ImagePaintObj> colorObject;
    std::int32_t modeValue = 0;
    Ref<GenericFunction> fallOff;
    std::int32_t fallOffValue = 0;
    Ref<ImagePaintObj> shapeObject;
    float opacity = 1.0f;
    std::int32_t sampleValue = 40;
    float strength = 1.0f;
    std::int32_t value2 = 0;
    bool flagA = true;
    bool flagB = false;
};

class Stamp final : public Resource, public Observable, public Observer {
  public:
    // Radius 5, a smooth fall-off, no shape, a transparent black pixel as colour.
    Stamp();
    // Values and sources of another, whose observers and open batches it doesn't take over.
    Stamp(const Stamp& other);
    Stamp& operator=(const Stamp&) = delete;
    // The flow is 0 then.
    explicit Stamp(const StampArguments& arguments);

  protected:
    ~Stamp() override;

  public:
    // Slots behind Resource's, in this order. Between the two, changes are held back; the end of
    // the outermost batch always tells one, All. An end without a beginning does nothing.
    virtual void beginChanges();
    virtual void endChanges();

    // One of the stamp's sources was changed: told on under that source's code, the first if an
    // image serves as several.
    void observableChanged(Observable& source) override;

    // A setter that changes nothing tells nothing, except setColor, setSecondColor and resetMatrix.

    // In pixels. 0 and less, or not a number, counts as 0.01; while quantize() is on, above 511 as
    // 511, and the value is held in steps of 1/16 (so 0.01 becomes 0).
    void setRadius(float radius);
    void setFallOff(const Ref<GenericFunction>& fallOff);
    void setColorObject(const Ref<ImagePaintObj>& object);
    void setSecondColorObject(const Ref<ImagePaintObj>& object);
    void setShapeObject(const Ref<ImagePaintObj>& object);
    // Makes a one-pixel image the colour source, the first value in its first byte; each value is
    // clamped to 0..1.
    void setColor(float a, float b, float c, float d);
    // The same for the second source, with the bytes cut off instead of rounded.
    void setSecondColor(float a, float b, float c, float d);
    void setModeValue(std::int32_t value);
    // Clamped to 0..1, held in steps of 1/256 while quantize() is on. Clears the link.
    void setOpacity(float opacity);
    void setOpacityFlow(float opacity, float flow, bool link);
    // Both in one batch.
    void setRadiusAndOpacity(float radius, float opacity);
    void resetMatrix();
    // All values and sources of another, rounded; tells All.
    void assign(const Stamp& other);

    [[nodiscard]] float radius() const { return values_.radius; }
    [[nodiscard]] const Ref<GenericFunction>& fallOff() const { return values_.fallOff; }
    [[nodiscard]] std::int32_t fallOffValue() const { return values_.fallOffValue; }
    [[nodiscard]] const Ref<ImagePaintObj>& shapeObject() const { return values_.shapeObject; }
    [[nodiscard]] std::int32_t sampleValue() const { return values_.sampleValue; }
    // The values of the last setColor, the last first.
    [[nodiscard]] const std::array<float, 4>& color() const { return values_.color; }
    [[nodiscard]] const Ref<ImagePaintObj>& colorObject() const { return values_.colorObject; }
    [[nodiscard]] const Ref<ImagePaintObj>& secondColorObject() const {
        return values_.secondColorObject;
    }
    [[nodiscard]] std::int32_t modeValue() const { return values_.modeValue; }
    [[nodiscard]] bool flagA() const { return values_.flagA; }
    [[nodiscard]] bool flagB() const { return values_.flagB; }
    [[nodiscard]] float strength() const { return values_.strength; }
    [[nodiscard]] std::int32_t value2() const { return values_.value2; }
    [[nodiscard]] float maxRadius() const { return values_.maxRadius; }
    [[nodiscard]] const std::array<float, 4>& matrix() const { return values_.matrix; }
    [[nodiscard]] std::int32_t value3() const { return values_.value3; }
    [[nodiscard]] std::int32_t value4() const { return values_.value4; }
    [[nodiscard]] float opacity() const { return values_.opacity; }
    [[nodiscard]] float flow() const { return values_.flow; }
    [[nodiscard]] bool opacityLink() const { return values_.opacityLink; }
    [[nodiscard]] bool quantize() const { return values_.quantize; }
    // Later values are rounded, or no longer; those held stay as they are.
    void setQuantize(bool on) { values_.quantize = on; }
    [[nodiscard]] std::int32_t batchDepth() const { return batchDepth_; }
    [[nodiscard]] std::int32_t batchedChanges() const { return batchedChanges_; }
    // What observers were told last.
    [[nodiscard]] StampChange lastChange() const { return lastChange_; }

  private:
    // What a copy takes over. Those without a setter here are only carried.
    struct Values {
        float radius = 5.0f;
        Ref<GenericFunction> fallOff;
        std::int32_t fallOffValue = 0;
        Ref<ImagePaintObj> shapeObject;
        std::int32_t sampleValue = 40;
        std::array<float, 4> color{};
        Ref<ImagePaintObj> colorObject;
        Ref<ImagePaintObj> secondColorObject;
        std::int32_t modeValue = 0;
        bool flagA = true, flagB = false;
        float strength = 1.0f;
        std::int32_t value2 = 0;
        float maxRadius = 511.0f;
        std::array<float, 4> matrix{1.0f, 0.0f, 0.0f, 1.0f};
        std::int32_t value3 = 0, value4 = 0;
        float opacity = 1.0f, flow = 1.0f;
        bool opacityLink = false;
        bool quantize = true;
    };

    [[nodiscard]] float heldRadius(float radius) const;
    [[nodiscard]] float heldShare(float share) const;
    void setSource(Ref<ImagePaintObj>& source, const Ref<ImagePaintObj>& object,
                   StampChange change);
    bool replaceSource(Ref<ImagePaintObj>& source, const Ref<ImagePaintObj>& object);
    void observeSources();
    void change(StampChange change);

    Values values_;
    std::int32_t batchDepth_ = 0;
    std::int32_t batchedChanges_ = 0;
    StampChange lastChange_ = StampChange::None;
};

}  // namespace brushwork
