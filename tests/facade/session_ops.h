// Operations of the facade with random arguments, many of them wrong.
#pragma once

#include <cmath>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "brushwork/progress.h"
#include "facade/session_host.h"
#include "image/chain/il_image.h"

namespace brushwork::test {

class SessionOps {
  public:
    enum class Undo {
        Recorded,  // files a record for all that it changes
        Bare,      // changes the document without one
        Nothing,   // leaves the document as it is
    };
    struct Op {
        const char* name;
        Undo undo;
        int weight;
        std::function<void(SessionOps&)> run;
    };

    // With `wild` arguments are also far away, huge or no numbers.
    SessionOps(SessionHost& host, PaintManager& manager, std::uint32_t seed, bool wild)
        : host_(host), m(manager), random_(seed), wild_(wild) {}

    // One of the operations of such a kind.
    [[nodiscard]] static const std::vector<Op>& all();
    [[nodiscard]] const Op& pick(bool strict) {
        const auto& ops = all();
        for (;;) {
            const Op& op = ops[below(ops.size())];
            if (strict && (op.weight < 0)) continue;
            if (static_cast<int>(below(10)) < std::abs(op.weight)) return op;
        }
    }

    std::size_t below(std::size_t bound) { return bound == 0 ? 0 : random_() % bound; }
    bool chance(int percent) { return static_cast<int>(below(100)) < percent; }
    std::int32_t between(std::int32_t low, std::int32_t high) {
        return low + static_cast<std::int32_t>(below(static_cast<std::size_t>(high - low) + 1));
    }
    float unit() { return static_cast<float>(below(1001)) / 1000.0f; }
    float coordinate() {
        if (wild_ && chance(4)) return oddFloat();
        return static_cast<float>(between(-200, 2400)) / 8.0f;
    }
    float oddFloat() {
        static constexpr float odd[] = {std::numeric_limits<float>::quiet_NaN(),
                                        std::numeric_limits<float>::infinity(),
                                        -std::numeric_limits<float>::infinity(),
                                        3e38f,
                                        -3e38f,
                                        1e9f,
                                        -2e5f,
                                        102399.0f,
                                        -0.0f,
                                        1e-40f};
        return odd[below(std::size(odd))];
    }
    float number(float low, float high) {
        if (wild_ && chance(4)) return oddFloat();
        return low + (high - low) * unit();
    }
    std::int32_t whole(std::int32_t low, std::int32_t high) {
        static constexpr std::int32_t odd[] = {std::numeric_limits<std::int32_t>::min(),
                                               std::numeric_limits<std::int32_t>::max(),
                                               -1,
                                               -2,
                                               -3,
                                               0,
                                               102400,
                                               -102400};
        if (wild_ && chance(4)) return odd[below(std::size(odd))];
        return between(low, high);
    }
    std::array<float, 4> color() {
        return {number(0, 1), number(0, 1), number(0, 1), chance(70) ? 1.0f : number(0, 1)};
    }
    ilTile box() {
        return flatTile(whole(-40, 260), whole(-40, 200), whole(-4, 200), whole(-4, 200));
    }
    // Of the current canvas, or -2, or one that is long gone, or none at all.
    std::int32_t layer() {
        const std::int32_t count = m.layerCount();
        if (count > 0 && chance(70)) return m.layerIdAt(between(1, count));
        if (chance(50)) return -2;
        if (chance(30)) return m.selectionLayerId();
        if (!seen_.empty() && chance(70)) return seen_[below(seen_.size())];
        return whole(-3, 10000);
    }
    // For operations that make the layer the active one, which no record undoes.
    std::int32_t filledLayer() { return wild_ ? layer() : -2; }
    std::vector<std::int32_t> layers() {
        std::vector<std::int32_t> ids(below(5));
        for (std::int32_t& id : ids) id = layer();
        if (chance(80)) std::erase(ids, -2);
        return ids;
    }
    std::int32_t canvas() { return chance(80) ? -2 : whole(-1, 4); }
    ImageRef picture(std::int32_t channels) {
        if (chance(5)) return {};
        ImageRef image = ImageRef::make(chance(5) ? 5 - channels : channels);
        for (int n = between(0, 4); n > 0; --n) {
            const ilTile place =
                flatTile(between(-30, 200), between(-30, 150), between(1, 90), between(1, 90));
            const std::uint32_t alpha = static_cast<std::uint32_t>(between(0, 255));
            image.fill(place, alpha << 24 | alpha);
        }
        return image;
    }
    void saw(std::int32_t id) {
        if (id >= 0) seen_.push_back(id);
    }
    HostShape shape() {
        std::vector<PolylineCurve::Place> places;
        for (int n = between(wild_ ? 0 : 2, 6); n > 0; --n)
            places.push_back(
                {static_cast<double>(between(-40, 260)), static_cast<double>(between(-40, 200))});
        curves_.push_back(std::make_unique<PolylineCurve>(
            places, chance(50) ? PolylineCurve::Ends::Joined : PolylineCurve::Ends::Open));
        return curves_.back().get();
    }
    std::int32_t shapeId() {
        return shapes_.empty() || chance(10) ? whole(-2, 50) : shapes_[below(shapes_.size())];
    }
    StrokeInputPoint penPoint() {
        StrokeInputPoint point{coordinate(), coordinate(), number(0, 1)};
        if (wild_) point.values[below(6)] = number(-1, 1);
        return point;
    }
    void newBrush();
    void points(int most) {
        StrokeInputPoint at = penPoint();
        for (int n = between(1, most); n > 0; --n) {
            m.addPoint(at);
            if (chance(10))
                at = penPoint();
            else {
                at.x += static_cast<float>(between(-12, 12));
                at.y += static_cast<float>(between(-12, 12));
                at.pressure = number(0, 1);
            }
        }
    }
    void transformStep() {
        TransformRecord record;
        record.x = number(-60, 60);
        record.y = number(-60, 60);
        if (chance(40)) record.scaleX = number(0.3f, 1.6f);
        if (chance(40)) record.scaleY = number(-1.2f, 1.6f);
        if (chance(40)) record.rotation = number(-200, 200);
        if (chance(20)) record.corners[below(8)] = number(-20, 20);
        m.updateTransform(record);
    }

    SessionHost& host_;
    PaintManager& m;

  private:
    friend struct OpTable;
    std::mt19937 random_;
    bool wild_;
    std::vector<std::int32_t> seen_, shapes_;
    std::deque<std::unique_ptr<PolylineCurve>> curves_;
};

inline void SessionOps::newBrush() {
    BrushParameters brush = BrushParameters::defaults();
    brush.radiusLow = number(0, 8);
    brush.radiusHigh = number(1, 24);
    brush.opacityLow = number(0, 1);
    brush.opacityHigh = number(0, 1);
    brush.hardness = number(0, 1);
    brush.tipPreset = chance(50) ? BrushParameters::ownHardness : whole(0, 9);
    brush.markerStrength = number(0, 1);
    brush.mixRate0 = number(0, 1);
    brush.mixRate1 = number(0, 1);
    brush.smearEnabled = chance(10);
    StrokeParameters stroke;
    stroke.spacing = number(0.3f, 3.0f);
    stroke.interpolationKind = whole(0, 3);
    stroke.brushKind = chance(40) ? 0 : whole(0, 10);
    stroke.isMarker = chance(10);
    stroke.airbrush = chance(10);
    stroke.followDirection = chance(10);
    if (chance(20)) stroke.radiusJitter = number(0, 20);
    if (chance(20)) stroke.opacityJitter = number(0, 20);
    if (chance(10)) stroke.flowJitter = number(0, 20);
    if (chance(10)) stroke.paintFactor0 = number(0, 1);
    if (chance(15)) stroke.strokeBufferOpacity = number(0, 1);
    if (chance(10)) stroke.strokeBufferMode = static_cast<BlendModeId>(whole(0, 20));
    if (wild_ && chance(10)) stroke.pickupScale = oddFloat();
    m.setBrush(brush, stroke);
}

inline const std::vector<SessionOps::Op>& SessionOps::all() {
    using S = SessionOps;
    using enum Undo;
    // A negative weight: not where every step is compared.
    static const std::vector<Op> ops = {
        // strokes
        {"stroke", Recorded, 10,
         [](S& s) {
             if (!s.m.beginStroke()) return;
             s.points(12);
             if (s.chance(15))
                 s.m.cancelStroke();
             else
                 s.m.endStroke();
         }},
        {"strokeLine", Recorded, 6,
         [](S& s) {
             s.m.strokeLine(s.coordinate(), s.coordinate(), s.coordinate(), s.coordinate(),
                            s.number(0, 1));
         }},
        {"strokePolyline", Recorded, 3,
         [](S& s) {
             std::vector<StrokePointData> points;
             for (int n = s.between(0, 5); n > 0; --n)
                 points.emplace_back(s.coordinate(), s.coordinate(), s.number(0, 1));
             s.m.strokePolyline(points);
         }},
        {"beginStroke", Recorded, -3, [](S& s) { s.m.beginStroke(); }},
        {"points", Nothing, -6, [](S& s) { s.points(6); }},
        {"addPoints", Nothing, 2,
         [](S& s) {
             const StrokeInputPoint points[] = {s.penPoint(), s.penPoint()};
             s.m.addPoints(points);
         }},
        {"endStroke", Recorded, 3, [](S& s) { s.m.endStroke(); }},
        {"cancelStroke", Nothing, 2, [](S& s) { s.m.cancelStroke(); }},
        // brush
        {"setColor", Nothing, 6, [](S& s) { s.m.setColor(s.color()); }},
        {"setBrush", Nothing, 8, [](S& s) { s.newBrush(); }},
        {"setStrokeMode", Nothing, 4,
         [](S& s) { s.m.setStrokeMode(s.chance(70) ? 0 : s.whole(0, 9)); }},
        {"setBrushBlend", Nothing, 3,
         [](S& s) { s.m.setBrushBlend(s.chance(60) ? 0 : s.whole(0, 30), s.number(0, 1)); }},
        {"setBrushTexture", Nothing, 2,
         [](S& s) {
             const auto paper = makeRef<BrushTextureParameters>();
             const ImageRef grain = s.picture(1);
             paper->image = Ref<ilImage>(grain.image());
             paper->setRandomOffset(s.chance(50));
             s.m.setBrushTexture(s.chance(50) ? paper : Ref<BrushTextureParameters>());
         }},
        {"setStamp", Nothing, 2,
         [](S& s) { s.m.setStamp(s.chance(60) ? ImageRef() : s.picture(4)); }},
        {"setCloneSource", Nothing, 2,
         [](S& s) {
             s.m.setCloneSource(s.chance(70) ? -1 : s.layer(), s.coordinate(), s.coordinate());
         }},
        {"setJitter", Nothing, 2,
         [](S& s) {
             s.m.setColorJitter(s.chance(50), s.number(0, 100), s.number(0, 100),
                                s.number(0, 100));
         }},
        {"setSymmetry", Nothing, 2,
         [](S& s) {
             const auto symmetry = makeRef<Symmetry>();
             symmetry->setCenter(s.coordinate(), s.coordinate());
             symmetry->setMirrorX(s.chance(50));
             symmetry->setRadial(s.chance(50));
             symmetry->setSectorCount(s.whole(1, 6));
             s.m.setSymmetry(s.chance(60) ? Ref<Symmetry>() : symmetry);
         }},
        {"modalBrushes", Nothing, 2,
         [](S& s) {
             s.m.setTextureBrush(s.chance(30));
             s.m.setPatternBrush(s.chance(30));
         }},
        {"setDisplayUpdates", Nothing, 2, [](S& s) { s.m.setDisplayUpdates(s.chance(70)); }},
        // layers
        {"newLayer", Recorded, 6,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newLayer(s.whole(-2, 8), s.whole(0, 2), s.between(-50, 50),
                                s.between(-50, 50), s.chance(70), true));
         }},
        {"newLayerBare", Bare, 1,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newLayer(s.whole(-2, 8), 0, 0, 0, true, false));
         }},
        {"newImageLayer", Recorded, 3,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newImageLayer(s.picture(s.chance(80) ? 4 : 1), s.whole(-50, 50),
                                     s.whole(-50, 50)));
         }},
        {"newMaskLayer", Recorded, 2,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newMaskLayer(s.chance(50)));
         }},
        {"newShapeLayer", Recorded, 1,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newShapeLayer(s.whole(-2, 8), s.whole(0, 3)));
         }},
        {"newGroup", Recorded, 2,
         [](S& s) {
             if (s.m.layerCount() > 9) return;
             s.saw(s.m.newGroup(u"G", s.whole(-2, 8)));
         }},
        {"deleteLayer", Recorded, 3, [](S& s) { s.m.deleteLayer(s.layer()); }},
        {"deleteLayers", Recorded, 3,
         [](S& s) { s.m.deleteLayers(s.layers(), s.chance(20)); }},
        {"clearLayers", Recorded, 1,
         [](S& s) {
             if (s.chance(20)) s.m.clearLayers(s.canvas());
         }},
        {"flattenAll", Recorded, 1,
         [](S& s) {
             if (s.chance(30)) s.m.flattenAll(s.canvas(), s.chance(50));
         }},
        {"mergeVisible", Recorded, 1,
         [](S& s) {
             if (s.chance(40)) s.m.mergeVisible(s.chance(20));
         }},
        {"mergeDown", Recorded, 3, [](S& s) { s.m.mergeDown(s.layer()); }},
        {"flattenGroup", Recorded, 1, [](S& s) { s.m.flattenGroup(s.layer(), s.chance(20)); }},
        {"setActiveLayer", Bare, 6, [](S& s) { s.m.setActiveLayer(s.layer()); }},
        {"nextUp", Bare, 3, [](S& s) { s.m.nextUp(); }},
        {"nextDown", Bare, 3, [](S& s) { s.m.nextDown(); }},
        {"moveLayers", Recorded, 3,
         [](S& s) {
             s.m.moveLayers(s.layers(), s.whole(-2, 8), s.chance(60) ? -1 : s.layer(),
                            s.chance(10));
         }},
        {"makeGroupFrom", Recorded, 2, [](S& s) { s.saw(s.m.makeGroupFrom(s.layers())); }},
        {"ungroup", Recorded, 2, [](S& s) { s.m.ungroup(s.layers(), s.chance(30)); }},
        {"duplicateLayer", Recorded, 2,
         [](S& s) {
             if (s.m.layerCount() < 10) s.saw(s.m.duplicateLayer());
         }},
        {"duplicateLayers", Recorded, 1,
         [](S& s) {
             std::vector<std::int32_t> made;
             if (s.m.layerCount() < 8) s.m.duplicateLayers(s.layers(), made);
             for (const std::int32_t id : made) s.saw(id);
         }},
        // attributes
        {"setVisible", Bare, 3, [](S& s) { s.m.setVisible(s.layer(), s.chance(75)); }},
        {"setOpacity", Bare, 3, [](S& s) { s.m.setOpacity(s.layer(), s.number(0, 1)); }},
        {"setBlendMode", Bare, 3,
         [](S& s) {
             s.m.setBlendMode(s.layer(), s.chance(20) ? 0xffff : s.whole(0, 30));
         }},
        {"setLocked", Bare, 2, [](S& s) { s.m.setLocked(s.layer(), s.chance(20)); }},
        {"setName", Bare, 2, [](S& s) { s.m.setName(s.layer(), u"Name"); }},
        {"setPosition", Recorded, 4,
         [](S& s) {
             s.m.setPosition(s.layer(), std::trunc(s.coordinate()), std::trunc(s.coordinate()),
                             true, s.chance(50));
         }},
        {"setPositionBare", Bare, 3,
         [](S& s) { s.m.setPosition(s.layer(), s.coordinate(), s.coordinate()); }},
        {"setLabelColor", Bare, 1,
         [](S& s) { s.m.setLabelColor(s.layer(), static_cast<std::uint32_t>(s.whole(0, 9))); }},
        {"setEnabled", Bare, 2, [](S& s) { s.m.setEnabled(s.layer(), s.chance(70)); }},
        {"setStencilActive", Bare, 2,
         [](S& s) { s.m.setStencilActive(s.layer(), s.chance(70)); }},
        {"setLockAlpha", Nothing, 2, [](S& s) { s.m.setLockAlpha(s.chance(20)); }},
        {"setExpanded", Bare, 1, [](S& s) { s.m.setExpanded(s.layer(), s.chance(50)); }},
        {"setBackground", Bare, 1, [](S& s) { s.m.setBackground(s.color(), s.canvas()); }},
        {"setMaskColor", Bare, 1,
         [](S& s) {
             s.m.setMaskColor(s.color());
             s.m.setMaskOpacity(s.number(0, 1));
         }},
        {"setThumbnailSize", Nothing, 1,
         [](S& s) { s.m.setThumbnailSize(s.layer(), s.whole(-5, 80), s.whole(-5, 80)); }},
        // pixels
        {"clearLayer", Recorded, 2, [](S& s) { s.m.clearLayer(s.chance(80)); }},
        {"fillLayer", Recorded, 2, [](S& s) { s.m.fillLayer(s.color()); }},
        {"fillWithImage", Recorded, 2,
         [](S& s) { s.m.fillWithImage(s.picture(s.chance(85) ? 4 : 1)); }},
        {"clearRegion", Recorded, 2, [](S& s) { s.m.clearRegion(s.box(), s.layer()); }},
        {"invertMask", Recorded, 2, [](S& s) { s.m.invertMask(s.layer()); }},
        {"flipLayer", Recorded, 2,
         [](S& s) { s.m.flipLayer(s.chance(60), s.chance(60), s.layer(), s.chance(50)); }},
        {"rotateLayer", Recorded, 2, [](S& s) { s.m.rotateLayer(s.chance(50), s.layer()); }},
        {"flipCanvas", Recorded, 1, [](S& s) { s.m.flipCanvas(s.chance(60), s.chance(60)); }},
        {"rotateCanvas", Recorded, -1, [](S& s) { s.m.rotateCanvas(s.chance(50)); }},
        {"applyConvolve", Recorded, 2,
         [](S& s) {
             PixelFamily::ConvolveParams params;
             params.strength = s.number(0, 10);
             params.detail = s.number(0, 3);
             params.radius = s.number(0, 5);
             params.sharpen = s.chance(50);
             s.m.applyConvolve(params, s.layer());
         }},
        {"shrinkWrap", Recorded, 1,
         [](S& s) { s.m.shrinkWrap(s.color(), s.number(0, 4), s.number(0, 1)); }},
        // transforms
        {"transform", Recorded, 4,
         [](S& s) {
             if (!s.m.beginTransform(s.layers(), s.whole(0, 1), s.whole(0, 1))) return;
             for (int n = s.between(0, 3); n > 0; --n) s.transformStep();
             s.m.endTransform(s.chance(70));
         }},
        {"beginTransform", Recorded, -3,
         [](S& s) { s.m.beginTransform(s.layers(), s.whole(0, 2), s.whole(0, 2)); }},
        {"updateTransform", Nothing, -4, [](S& s) { s.transformStep(); }},
        {"endTransform", Nothing, 2, [](S& s) { s.m.endTransform(s.chance(70)); }},
        {"newTemporaryLayer", Recorded, 1,
         [](S& s) {
             if (s.m.layerCount() < 10) s.saw(s.m.newTemporaryLayer());
         }},
        // selection
        {"selectAll", Recorded, 1, [](S& s) { s.m.selectAll(); }},
        {"selectNone", Recorded, 5, [](S& s) { s.m.selectNone(); }},
        {"invertSelection", Recorded, 1, [](S& s) { s.m.invertSelection(); }},
        {"selectRegion", Recorded, 3, [](S& s) { s.m.selectRegion(s.box(), s.whole(0, 3)); }},
        {"selectMask", Recorded, 2,
         [](S& s) { s.m.selectMask(s.picture(1), s.coordinate(), s.coordinate(), s.whole(0, 2)); }},
        {"selectFromLayer", Recorded, 2,
         [](S& s) { s.m.selectFromLayer(s.layer(), s.whole(0, 2)); }},
        {"selectPolygon", Recorded, 2,
         [](S& s) {
             std::vector<float> points;
             for (int n = s.between(0, 11); n > 0; --n) points.push_back(s.coordinate());
             s.m.selectPolygon(points, s.whole(0, 2));
         }},
        {"loadMaskImage", Recorded, 1,
         [](S& s) { s.m.loadMaskImage(s.picture(1), s.coordinate(), s.coordinate()); }},
        {"moveSelection", Recorded, 2,
         [](S& s) {
             s.m.moveSelection(std::trunc(s.coordinate()), std::trunc(s.coordinate()));
         }},
        {"makeSelectionActive", Bare, 1, [](S& s) { s.m.makeSelectionActive(); }},
        {"setSelectionColor", Bare, 1,
         [](S& s) { s.m.setSelectionColor(s.color(), s.number(0, 1)); }},
        // fills
        {"floodFill", Recorded, 3,
         [](S& s) {
             s.m.floodFill(s.coordinate(), s.coordinate(), s.color(), s.number(0, 1), s.filledLayer(),
                           s.canvas());
             if (s.chance(30)) s.m.continueFill(s.number(0, 1));
             s.m.endFill();
         }},
        {"openFill", Recorded, -2,
         [](S& s) {
             s.m.floodFill(s.coordinate(), s.coordinate(), s.color(), s.number(0, 1), s.layer(),
                           s.canvas());
         }},
        {"continueFill", Nothing, -2, [](S& s) { s.m.continueFill(s.number(0, 1)); }},
        {"endFill", Nothing, 1, [](S& s) { s.m.endFill(); }},
        {"magicWand", Recorded, 2,
         [](S& s) {
             s.m.magicWand(s.coordinate(), s.coordinate(), s.number(0, 1), s.chance(50),
                           s.layer(), s.chance(50));
         }},
        {"sampleFill", Nothing, 1,
         [](S& s) {
             std::uint32_t pixel = 0;
             s.m.sampleFill(s.coordinate(), s.coordinate(), &pixel, s.layer());
         }},
        {"fillGradient", Recorded, 1,
         [](S& s) {
             FillFamily::Gradient gradient;
             gradient.fromX = s.coordinate();
             gradient.toX = s.coordinate();
             gradient.toY = s.coordinate();
             gradient.fromColor = s.color();
             gradient.radial = s.chance(40);
             s.m.fillGradient(gradient, s.layer());
         }},
        // shapes
        {"addShape", Recorded, 3,
         [](S& s) {
             const auto parms = makeRef<ShapeImageParms>();
             parms->fillColor = s.color();
             parms->strokeActive = s.chance(40);
             parms->stroke.width = s.number(1, 20);
             const std::int32_t id = s.m.addShape(s.whole(0, 3), s.shape(), parms);
             if (id >= 0) s.shapes_.push_back(id);
         }},
        {"deleteShape", Recorded, 2, [](S& s) { s.m.deleteShape(s.shapeId()); }},
        {"deleteShapes", Recorded, 1,
         [](S& s) {
             const std::int32_t ids[] = {s.shapeId(), s.shapeId(), s.shapeId()};
             s.m.deleteShapes(ids);
         }},
        {"moveShape", Bare, -1,
         [](S& s) { s.m.moveShape(s.shapeId(), s.number(-9, 9), s.number(-9, 9)); }},
        {"shapeChanged", Nothing, 1, [](S& s) { s.m.shapeChanged(s.shapeId()); }},
        // adjustments
        {"colorAdjust", Recorded, 2,
         [](S& s) {
             ColorAdjustParm parm;
             parm.reset(s.whole(0, 7));
             parm.hue = {s.number(0, 360), s.number(-180, 180)};
             parm.toneBrightness = {s.number(0, 2), s.number(0, 2), s.number(0, 2)};
             s.m.colorAdjust(s.chance(90) ? ImageRef() : s.picture(4), parm);
         }},
        // canvases
        {"setCurrentCanvas", Nothing, 2, [](S& s) { s.m.setCurrentCanvas(s.canvas()); }},
        {"newCanvas", Bare, -1,
         [](S& s) {
             if (s.m.canvasCount() < 4) s.m.newCanvas(s.whole(1, 260), s.whole(1, 200));
         }},
        {"duplicateCanvas", Bare, -1,
         [](S& s) {
             if (s.m.canvasCount() < 4) s.m.duplicateCanvas(s.canvas());
         }},
        {"closeCanvas", Bare, -1, [](S& s) { s.m.closeCanvas(s.canvas()); }},
        {"scaleCanvas", Recorded, -1,
         [](S& s) {
             const ilTile box = s.m.canvasBounds(-2);
             const float scale = s.number(0.4f, 1.6f);
             if (static_cast<float>(box.nx) * scale < 500) s.m.scaleCanvas(-2, scale, s.whole(0, 2));
         }},
        {"setCanvasSize", Bare, -1,
         [](S& s) { s.m.setCanvasSize(s.canvas(), s.between(-3, 260), s.between(-3, 200)); }},
        {"setView", Nothing, -1,
         [](S& s) {
             TransformRecord view;
             view.x = s.number(-50, 50);
             view.scaleX = view.scaleY = s.number(0.25f, 3.0f);
             view.rotation = s.number(0, 90);
             s.m.setView(s.canvas(), view);
         }},
        {"present", Nothing, 2, [](S& s) { s.m.present(s.canvas()); }},
        {"refreshDisplay", Nothing, 1, [](S& s) { s.m.refreshDisplay(s.canvas()); }},
        // questions
        {"questions", Nothing, 4,
         [](S& s) {
             ilTile box;
             float x = s.coordinate();
             float y = s.coordinate();
             std::uint32_t pixel = 0;
             s.m.viewToLayer(&x, &y, s.layer());
             s.m.layerToView(&x, &y, s.layer());
             static_cast<void>(s.m.layerBounds(s.layer(), box));
             s.m.selectionBounds(box);
             static_cast<void>(s.m.thumbnail(s.layer()));
             static_cast<void>(s.m.pickLayer(s.coordinate(), s.coordinate(), s.number(0, 1)));
             static_cast<void>(s.m.groupChild(s.layer(), s.whole(-1, 5)));
             static_cast<void>(s.m.groupDepth(s.layer()));
             static_cast<void>(s.m.maxGroupDepth(s.layer()));
             static_cast<void>(s.m.canMergeDown(s.layer()));
             static_cast<void>(s.m.layerIdAt(s.whole(-3, 9), s.chance(50), s.canvas()));
             s.m.layerPixel(s.layer(), s.whole(-9, 300), s.whole(-9, 300), &pixel);
             s.m.canvasPixel(s.whole(-9, 300), s.whole(-9, 300), &pixel);
             s.m.dump();
         }},
        // undo
        {"undoSwitches", Nothing, -1,
         [](S& s) {
             s.m.lockUndo(s.chance(10));
             s.m.setUndoEnabled(s.chance(90));
         }},
        {"clearUndo", Nothing, -1,
         [](S& s) {
             if (s.chance(10)) s.m.clearUndo();
         }},
        {"snapshotAndClear", Nothing, -1,
         [](S& s) {
             if (s.chance(10)) s.m.snapshotAndClear(s.between(-1, 3));
         }},
        {"noteStackSwitch", Nothing, -1, [](S& s) { s.m.noteStackSwitch(s.whole(-2, 4)); }},
        {"recordCanvas", Nothing, 1, [](S& s) { s.m.recordCanvas(s.canvas()); }},
        {"ring", Nothing, 4, [](S& s) { s.host_.ring(); }},
    };
    return ops;
}

}  // namespace brushwork::test
