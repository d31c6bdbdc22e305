// PaintManager: the one object through which a host paints.
//
//     PntUndoDatabase undo;
//     setUndoDatabase(&undo);
//     PaintManager manager;
//     manager.newCanvas(1024, 768);
//     manager.newLayer();
//     manager.setBrush(BrushParameters::defaults(), StrokeParameters());
//     manager.beginStroke();
//     manager.addPoint({100.0f, 100.0f, 1.0f});
//     manager.addPoint({500.0f, 300.0f, 1.0f});
//     manager.endStroke();
//
// Its operations come from families, a header each. All of them run one routine around an edit: an
// open multi-layer transform is committed, texture and pattern brushes are put aside, an undo
// record is made and filed, the edit is done, and idle work is scheduled.
//
// One thread, the host's. Nothing throws: what can't be done changes nothing and answers -1, 0,
// false or an empty value. A host may have one manager at a time.
#pragma once

#include <memory>

#include "brushwork/adjust_family.h"
#include "brushwork/attribute_family.h"
#include "brushwork/brush_family.h"
#include "brushwork/canvas_family.h"
#include "brushwork/export.h"
#include "brushwork/fill_family.h"
#include "brushwork/layer_family.h"
#include "brushwork/order_family.h"
#include "brushwork/pixel_family.h"
#include "brushwork/query_family.h"
#include "brushwork/selection_family.h"
#include "brushwork/shape_family.h"
#include "brushwork/stroke_family.h"
#include "brushwork/transform_family.h"
#include "brushwork/undo_family.h"

namespace brushwork {

// Owns the state that the families share; their base, so that it outlives them.
class BRUSHWORK_API PaintManagerState {
  protected:
    PaintManagerState();
    ~PaintManagerState();
    std::unique_ptr<FacadeState> owned_;
};

class BRUSHWORK_API PaintManager : private PaintManagerState,
                                   public CanvasFamily,
                                   public LayerFamily,
                                   public OrderFamily,
                                   public AttributeFamily,
                                   public PixelFamily,
                                   public TransformFamily,
                                   public StrokeFamily,
                                   public BrushFamily,
                                   public SelectionFamily,
                                   public FillFamily,
                                   public ShapeFamily,
                                   public AdjustFamily,
                                   public QueryFamily,
                                   public UndoFamily {
  public:
    PaintManager();
    ~PaintManager();
    PaintManager(const PaintManager&) = delete;
    PaintManager& operator=(const PaintManager&) = delete;

    // For the engine's layers above.
    [[nodiscard]] FacadeState& state() { return *owned_; }
};

}  // namespace brushwork
