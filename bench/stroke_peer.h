// The strokes' peer behind a few calls: libmypaint on its own tiled surface of 16 bits a channel.
#pragma once

#ifdef BRUSHWORK_WITH_MYPAINT

#include <mypaint-brush.h>
#include <mypaint-fixed-tiled-surface.h>

#include <cmath>

namespace brushwork::bench {

class StrokePeer {
  public:
    enum class Medium { Round, Smudge };

    explicit StrokePeer(int side)
        : tiled_(mypaint_fixed_tiled_surface_new(side, side)),
          surface_(mypaint_fixed_tiled_surface_interface(tiled_)),
          brush_(mypaint_brush_new()) {
        drawDab() = surface_->draw_dab;
        surface_->draw_dab = countDab;
    }
    StrokePeer(const StrokePeer&) = delete;
    StrokePeer& operator=(const StrokePeer&) = delete;
    ~StrokePeer() {
        mypaint_brush_unref(brush_);
        mypaint_surface_unref(surface_);
    }

    // Lets the threads of its queue at the tiles. (The surface is plain memory.)
    void setThreaded(bool on) {
        reinterpret_cast<MyPaintTiledSurface*>(surface_)->threadsafe_tile_requests = on;
    }
    void beginBatch() { mypaint_surface_begin_atomic(surface_); }
    void endBatch() {
        MyPaintRectangle dirty = {0, 0, 0, 0};
        mypaint_surface_end_atomic(surface_, &dirty);
    }
    void dab(float x, float y, float radius, float opacity, float hardness) {
        mypaint_surface_draw_dab(surface_, x, y, radius, 0.7F, 0.2F, 0.1F, opacity, hardness, 1.0F,
                                 1.0F, 0.0F, 0.0F, 0.0F);
    }
    // Of all peers.
    static long& dabCount() {
        static long count = 0;
        return count;
    }

    // A brush of one size, whose opacity follows the pressure.
    void setBrush(Medium medium, float radius, float hardness, float dabsPerRadius) {
        const auto set = [this](MyPaintBrushSetting id, float value) {
            mypaint_brush_set_base_value(brush_, id, value);
        };
        mypaint_brush_from_defaults(brush_);
        set(MYPAINT_BRUSH_SETTING_RADIUS_LOGARITHMIC, std::log(radius));
        set(MYPAINT_BRUSH_SETTING_HARDNESS, hardness);
        set(MYPAINT_BRUSH_SETTING_OPAQUE, 0.8F);
        set(MYPAINT_BRUSH_SETTING_DABS_PER_BASIC_RADIUS, 0.0F);
        set(MYPAINT_BRUSH_SETTING_DABS_PER_ACTUAL_RADIUS, dabsPerRadius);
        set(MYPAINT_BRUSH_SETTING_COLOR_S, 0.8F);
        set(MYPAINT_BRUSH_SETTING_COLOR_V, 0.7F);
        if (medium == Medium::Smudge) set(MYPAINT_BRUSH_SETTING_SMUDGE, 0.9F);
    }
    void beginStroke(float x, float y) {
        mypaint_brush_reset(brush_);
        mypaint_brush_new_stroke(brush_);
        event(x, y, 0.0F, 10.0);  // takes the place without a way to it
    }
    // One event of the pen and its finished pixels.
    void event(float x, float y, float pressure, double seconds) {
        beginBatch();
        mypaint_brush_stroke_to(brush_, surface_, x, y, pressure, 0.0F, 0.0F, seconds);
        endBatch();
    }

  private:
    static MyPaintSurfaceDrawDabFunction& drawDab() {
        static MyPaintSurfaceDrawDabFunction function = nullptr;
        return function;
    }
    static int countDab(MyPaintSurface* self, float x, float y, float radius, float r, float g,
                        float b, float opaque, float hardness, float alphaEraser, float aspectRatio,
                        float angle, float lockAlpha, float colorize) {
        ++dabCount();
        return drawDab()(self, x, y, radius, r, g, b, opaque, hardness, alphaEraser, aspectRatio,
                         angle, lockAlpha, colorize);
    }

    MyPaintFixedTiledSurface* tiled_;
    MyPaintSurface* surface_;
    MyPaintBrush* brush_;
};

}  // namespace brushwork::bench

#endif
