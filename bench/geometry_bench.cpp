// Evaluation of compact splines, nanoseconds a point: low degrees unrolled, the plain recurrence
// beside them, derivatives, parameters that walk and parameters that jump. One thread.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench_clock.h"
#include "brushwork/ref.h"
#include "geometry/ag_compact_spline.h"
#include "geometry/ag_de_boor.h"

namespace {

using namespace brushwork;
using znAG::agCompactSpline;

constexpr int evaluations = 200000;
constexpr std::int32_t spans = 50;

double sum = 0.0;  // printed, so that no evaluation is left out

Ref<agCompactSpline> wave(std::int32_t degree, bool rational) {
    auto spline = makeRef<agCompactSpline>(spans, degree, 0, 2, rational);
    if (spline->spans() == 0) std::abort();
    for (std::int32_t k = -degree; k <= spans + degree; ++k) spline->setKnot(k, k);
    for (std::int32_t i = 0; i < spline->pointCount(); ++i) {
        const double weight = rational ? 1.0 + i % 3 : 1.0;
        spline->point(i)[0] = i * weight;
        spline->point(i)[1] = (i * 37 % 11) * weight;
        if (rational) spline->point(i)[2] = weight;
    }
    return spline;
}

std::vector<double> parameters(bool jumping) {
    std::vector<double> t(evaluations);
    std::uint32_t state = 1;
    for (int i = 0; i < evaluations; ++i) {
        state = state * 1664525u + 1013904223u;
        const double part = jumping ? state / 4294967296.0 : double(i) / evaluations;
        t[static_cast<std::size_t>(i)] = part * spans;
    }
    return t;
}

void addAll(bench::Rounds& rounds, std::int32_t degree, bool rational, bool jumping) {
    const std::string name = "degree " + std::to_string(degree) + (rational ? " rational" : "") +
                             (jumping ? ", jumping" : "");
    const auto spline = wave(degree, rational);
    const std::vector<double> ts = parameters(jumping);
    rounds.add(name, [spline, ts] {
        double p[2];
        for (const double t : ts) {
            spline->evaluate(t, p);
            sum += p[0];
        }
    });
    rounds.add(name + ", two derivatives", [spline, ts] {
        double p[2], d[2], dd[2];
        for (const double t : ts) {
            spline->evaluate(t, p, d, dd);
            sum += p[0] + d[1] + dd[0];
        }
    });
}

// The recurrence alone, the span given.
void addPlain(bench::Rounds& rounds, std::int32_t degree) {
    const auto spline = wave(degree, false);
    const std::vector<double> ts = parameters(false);
    rounds.add("degree " + std::to_string(degree) + ", plain recurrence", [spline, ts, degree] {
        const znAG::AgCompactView view = spline->view();
        std::vector<double> work(
            agDeBoorWork(static_cast<std::size_t>(degree), static_cast<std::size_t>(view.stride)));
        double p[2];
        std::int32_t span = 0;
        for (const double t : ts) {
            span = agFindSpan(view, t, span);
            agDeBoorPlain({static_cast<std::size_t>(degree), static_cast<std::size_t>(view.stride),
                           view.knots + (span - degree + 1), view.points + span * view.stride},
                          t, work.data(), p, nullptr, nullptr);
            sum += p[0];
        }
    });
}

}  // namespace

int main() {
    bench::Rounds rounds;
    for (const std::int32_t degree : {1, 2, 3, 5}) addAll(rounds, degree, false, false);
    addAll(rounds, 3, true, false);
    addAll(rounds, 3, false, true);
    addPlain(rounds, 3);
    rounds.run(11, 61);
    for (const bench::Job& job : rounds.jobs())
        std::printf("  %-46s %7.1f ns\n", job.name.c_str(), job.median() * 1e9 / evaluations);
    std::printf("  (sum %g)\n", sum);
    return 0;
}
