#include "geometry/ag_spline_print.h"

#include <cstdio>
#include <ostream>

#include "geometry/ag_spline_check.h"

namespace brushwork {
namespace {

struct TypeName {
    std::int32_t type;
    const char* name;
};
constexpr TypeName typeNames[] = {{AG_NOTHING_SPECIAL, "nothing special"},
                                  {AG_LINE, "LINE"},
                                  {AG_PARABOLA, "PARABOLA"},
                                  {AG_CIRCLE, "CIRCLE"},
                                  {AG_ELLIPSE, "ELLIPSE"},
                                  {AG_HYPERBOLA, "HYPERBOLA"},
                                  {AG_C2_CUBIC, "C2_CUBIC"},
                                  {AG_POWER, "POWER"},
                                  {AG_POWER01, "POWER01"},
                                  {AG_BEZIER, "BEZIER"},
                                  {AG_BEZIER01, "BEZIER01"},
                                  {AG_POWER_STD, "POWER_STD"}};

const char* typeName(std::int32_t type) {
    for (const TypeName& entry : typeNames)
        if (entry.type == type) return entry.name;
    return "?UNKNOWN?";
}

const char* rationalName(std::int32_t rat) {
    switch (rat) {
        case AG_NOT_RATIONAL: return "not rational";
        case AG_NON_HOMOGENEOUS: return "non-homogeneous rational";
        case AG_HOMOGENEOUS: return "homogeneous rational";
        default: return "invalid rational flag";
    }
}

template <class... Values>
void line(std::ostream& out, const char* pattern, Values... values) {
    char text[128];
    std::snprintf(text, sizeof text, pattern, values...);
    out << text;
}

void printKnots(const AG_SPLINE& s, std::ostream& out) {
    const AG_NODE* node = agFirstNode(s);
    while (node) {
        const double* const t = node->t;
        std::int32_t multiplicity = 0;
        for (; node && node->t == t; node = node->next) ++multiplicity;
        if (t) line(out, "(%d) %g\n", multiplicity, *t);
    }
}

void printPoints(const AG_SPLINE& s, std::ostream& out) {
    for (const AG_NODE* node = agFirstNode(s); node != s.noden->next; node = node->next) {
        const char* gap = "";
        for (const double coordinate : node->Pw) {
            line(out, "%s%g", gap, coordinate);
            gap = " ";
        }
        out << '\n';
    }
}

}  // namespace

const char* agFormName(std::int32_t form) {
    switch (form) {
        case AG_OPEN: return "open";
        case AG_CLOSED: return "closed";
        case AG_PERIODIC: return "closed with periodic control data";
        default: return "invalid";
    }
}

void agPrintSpline(const AG_GOB* object, std::ostream& out) {
    if (!agIsOfClass(object, agSplineClass)) return;
    const AG_SPLINE& s = *static_cast<const AG_SPLINE*>(object);
    line(out, "dimension: %d\n", s.dim);
    line(out, "degree %d  spans %d\n", s.m, s.n);
    line(out, "%s\n", rationalName(s.rat));
    line(out, "B-spline type: %d (%s)\n", s.ctype, typeName(s.ctype));
    line(out, "form: %s\n", agFormName(s.form));
    line(out, "->prev %p  ->next %p\n", static_cast<const void*>(s.prev),
         static_cast<const void*>(s.next));
    const bool walkable = agNodesHoldTogether(s);
    out << "knot vector (multiplicity) value\n";
    if (walkable) printKnots(s, out);
    out << "Control points:\n";
    if (walkable) printPoints(s, out);
}

}  // namespace brushwork
