// Journals through the real program: the same pixels whatever draws them, undo and redo to the same
// digests, expectations that fail.
#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "tools/program.h"

namespace brushwork {
namespace {

using test::runProgram;
using test::TempFolder;
using test::writeJournal;

// Every kind of thing that a journal can do, short enough for sanitizers.
const char* const everything =
    R"({"op": "canvas", "width": 320, "height": 240, "background": "#fdf6e3"}
{"op": "layer", "name": "ground"}
{"op": "gradient", "from": [0, 0], "to": [320, 240], "from_colour": "#203060", "to_colour": "#f0a060"}
{"op": "layer", "name": "ink"}
{"op": "brush", "file": "hard", "colour": "#c02010", "jitter": {"angle": 20, "radius": 0.2}}
{"op": "stroke", "points": [[20, 20, 0.2], [150, 200, 0.9], [300, 40, 0.5]], "every": 5}
{"op": "curve", "name": "arc", "kind": "ellipse", "centre": [160, 120], "radii": [100, 70]}
{"op": "brush", "file": "pastel", "colour": "#20a040"}
{"op": "trace", "curve": "arc", "pressures": [0.3, 1, 0.3]}
{"op": "brush", "file": "smudge"}
{"op": "stroke", "points": [[40, 120], [280, 120, 0.6]], "every": 6}
{"op": "select_polygon", "points": [[60, 20], [300, 60], [200, 220]]}
{"op": "brush", "file": "marker", "colour": "#4050ff"}
{"op": "symmetry", "kind": "kaleidoscope", "sectors": 3}
{"op": "stroke", "points": [[60, 60], [200, 100, 0.5]], "every": 6}
{"op": "symmetry", "kind": "none"}
{"op": "select", "what": "none"}
{"op": "brush", "file": "airbrush", "colour": "#ffffff"}
{"op": "begin_stroke"}
{"op": "points", "points": [[100, 180], [104, 180]]}
{"op": "wait", "milliseconds": 200}
{"op": "end_stroke"}
{"op": "shape", "name": "disc", "curves": ["arc"], "fill_gradient": {"from": [60, 50], "to": [260, 190], "from_colour": [1, 0, 0, 0.5]}, "line": {"width": 6}, "as": "shapes"}
{"op": "set", "layer": "shapes", "mode": "SoftLight", "opacity": 0.8}
{"op": "group", "name": "all", "layers": ["ink", "shapes"]}
{"op": "use_layer", "layer": "ground"}
{"op": "adjust", "kind": "shift", "hue": 40, "saturation": 0.3}
{"op": "transform", "layers": ["ink"], "scale": [0.8, 1.1], "rotation": 15, "pivot": [160, 120]}
{"op": "layer", "name": "mask", "role": "mask", "above": "ground"}
{"op": "brush", "file": "soft", "colour": "#ffffff"}
{"op": "stroke", "points": [[20, 120], [300, 100]], "every": 6}
{"op": "flood", "layer": "ground", "at": [5, 5], "colour": "#ffffff", "tolerance": 0.2}
{"op": "blur", "layer": "ink", "radius": 2}
)";

TEST(CommandRun, WorkersAndVectorsChangeNoPixel) {
    TempFolder folder;
    const std::string script = writeJournal(folder, "all.jsonl", everything);
    const auto first = runProgram(
        folder, "run " + script + " --fast --hashes --seed 5 --threads 1 --vectors scalar");
    ASSERT_EQ(first.exitCode, 0) << first.err;
    EXPECT_GT(first.out.size(), 4000u);
    for (const char* const way : {"--threads 2 --vectors scalar", "--threads 8 --vectors scalar",
                                  "--threads 1 --vectors 128", "--threads 8 --vectors 128",
                                  "--threads 2 --vectors 256", "--threads 8 --vectors 256"}) {
        const auto other = runProgram(folder, "run " + script + " --fast --hashes --seed 5 " + way);
        EXPECT_EQ(other.out, first.out) << way;
    }
    const auto otherSeed = runProgram(folder, "run " + script + " --fast --hashes --seed 6");
    EXPECT_NE(otherSeed.out, first.out) << "the seed plays no part";
    EXPECT_TRUE(folder.leftovers().empty());
}

// Walks back and forth over all steps, and over random stretches of them, to known documents.
TEST(CommandRun, UndoAndRedoComeToTheSameDocuments) {
    TempFolder folder;
    std::string lines;
    int steps = 0;
    std::string rest = everything;
    while (!rest.empty()) {
        const auto end = rest.find('\n') + 1;
        lines += rest.substr(0, end);
        rest.erase(0, end);
    }
    lines += R"({"op": "hash", "as": "end", "quiet": true})"
             "\n";
    lines += R"({"op": "undo", "all": true})"
             "\n"
             R"({"op": "hash", "as": "start", "quiet": true})"
             "\n";
    lines += R"({"op": "redo", "all": true})"
             "\n"
             R"({"op": "expect_hash", "as": "end"})"
             "\n";
    std::mt19937 random(3);
    for (int round = 0; round < 12; ++round) {
        const std::string count = std::to_string(random() % 6 + 1);
        lines += "{\"op\": \"undo\", \"steps\": " + count + "}\n";
        lines += "{\"op\": \"redo\", \"steps\": " + count + "}\n";
        lines += R"({"op": "expect_hash", "as": "end"})"
                 "\n";
        ++steps;
    }
    lines += R"({"op": "undo", "all": true})"
             "\n"
             R"({"op": "expect_hash", "as": "start"})"
             "\n";
    lines += R"({"op": "redo", "all": true})"
             "\n"
             R"({"op": "undo_limit", "levels": 5})"
             "\n";
    lines += R"({"op": "expect_hash", "as": "end"})"
             "\n"
             R"({"op": "expect_count", "of": "undo", "is": 5})"
             "\n";
    lines += R"({"op": "undo", "steps": 6, "fails": true})"
             "\n";
    lines += R"({"op": "undo", "all": true})"
             "\n"
             R"({"op": "redo", "all": true})"
             "\n";
    lines += R"({"op": "expect_hash", "as": "end"})"
             "\n"
             R"({"op": "forget_undo"})"
             "\n";
    lines += R"({"op": "expect_hash", "as": "end"})"
             "\n"
             R"({"op": "expect_count", "of": "undo", "is": 0})"
             "\n";
    const auto outcome =
        runProgram(folder, "run " + writeJournal(folder, "u.jsonl", lines) + " --fast");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err << outcome.out;
    EXPECT_EQ(steps, 12);
}

// A surface of the host's shows what the engine's own pixels show.
TEST(CommandRun, SurfacesOfTheHostChangeNothing) {
    TempFolder folder;
    std::string onSurface = everything;
    onSurface.insert(onSurface.find("\"background\""), "\"surface\": true, ");
    const auto own = runProgram(
        folder, "run " + writeJournal(folder, "own.jsonl", everything) + " --fast --hashes");
    const auto host = runProgram(
        folder, "run " + writeJournal(folder, "host.jsonl", onSurface) + " --fast --hashes");
    ASSERT_EQ(own.exitCode, 0) << own.err;
    EXPECT_EQ(own.out, host.out);
}

TEST(CommandRun, SizesOfTheCanvasAreTakenBack) {
    TempFolder folder;
    const auto outcome = runProgram(folder, "run " + writeJournal(folder, "s.jsonl", R"(
{"op": "canvas", "width": 90, "height": 60}
{"op": "layer"}
{"op": "line", "from": [10, 10], "to": [70, 30]}
{"op": "hash", "as": "small", "quiet": true}
{"op": "rotate_canvas", "to": "left"}
{"op": "expect_count", "of": "width", "is": 60}
{"op": "hash", "as": "turned", "quiet": true}
{"op": "scale_canvas", "factor": 2}
{"op": "expect_count", "of": "height", "is": 180}
{"op": "undo"}
{"op": "expect_hash", "as": "turned"}
{"op": "undo"}
{"op": "expect_hash", "as": "small"}
{"op": "redo"}
{"op": "expect_hash", "as": "turned"}
{"op": "rotate_canvas", "to": "right"}
{"op": "expect_hash", "as": "small"}
)"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

TEST(CommandRun, ExpectationsFailWithLineAndCause) {
    TempFolder folder;
    const std::string start =
        R"({"op": "canvas", "width": 40, "height": 30, "background": "#ffffff"}
{"op": "layer", "name": "a"}
{"op": "fill", "colour": "#ff0000"}
)";
    const auto fails = [&](const std::string& line, const std::string& words) {
        const auto outcome =
            runProgram(folder, "run " + writeJournal(folder, "f.jsonl", start + line + "\n"));
        EXPECT_EQ(outcome.exitCode, 1) << line;
        EXPECT_NE(outcome.err.find(":5: "), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
    };
    fails(R"({"op": "expect_pixel", "at": [5, 5], "colour": "#00ff00"})", "255 0 0 255");
    fails(R"({"op": "expect_count", "of": "layers", "is": 3})", "layers: 1, not 3");
    fails(R"({"op": "expect_layer", "layer": "a", "visible": false})", "visible");
    fails(R"({"op": "redo"})", "only 0 steps");
    fails(R"({"op": "undo", "fails": true})", "should have failed");
    fails(R"({"op": "end_stroke"})", "no stroke is open");
    fails(R"({"op": "brush", "file": "no-such"})", "no-such");
    const auto good = runProgram(folder, "run " + writeJournal(folder, "g.jsonl", start + R"(
{"op": "expect_pixel", "at": [5, 5], "colour": "#ff0000"}
{"op": "expect_layer", "bounds": [0, 0, 40, 30], "mode": "Normal", "opacity": 1, "blank": false}
)"));
    EXPECT_EQ(good.exitCode, 0) << good.err;
}

// Nothing that the engine passes over in silence counts as done.
TEST(CommandRun, EditsThatCantBeDoneFail) {
    TempFolder folder;
    std::string lines = R"({"op": "canvas", "width": 40, "height": 30}
{"op": "curve", "name": "c", "kind": "box", "box": [5, 5, 20, 10]}
{"op": "layer", "name": "paint"}
{"op": "layer", "name": "locked"}
{"op": "fill", "colour": "#ff0000"}
{"op": "set", "layer": "locked", "locked": true}
{"op": "layer", "name": "mask", "role": "mask"}
{"op": "group", "name": "group"}
{"op": "shape", "curves": ["c"], "as": "shapes"}
{"op": "hash", "as": "before", "quiet": true}
)";
    const auto fails = [&](const std::string& start, const std::string& layer) {
        lines += start + (layer.empty() ? "" : ", \"layer\": \"" + layer + "\"") +
                 ", \"fails\": true}\n";
    };
    const std::string edits[] = {R"({"op": "clear")",
                                 R"({"op": "clear", "box": [1, 1, 5, 5])",
                                 R"({"op": "fill", "colour": "#00ff00")",
                                 R"({"op": "flip", "way": "both")",
                                 R"({"op": "turn", "to": "left")",
                                 R"({"op": "blur")",
                                 R"({"op": "sharpen")",
                                 R"({"op": "shrink_wrap", "colour": "#00ff00")"};
    for (const std::string& edit : edits)
        for (const char* const layer : {"locked", "group", "shapes"}) fails(edit, layer);
    for (const char* const edit :
         {R"({"op": "blur")", R"({"op": "shrink_wrap", "colour": "#00ff00")"})
        fails(edit, "mask");
    fails(R"({"op": "invert")", "paint");
    fails(R"({"op": "scale_canvas", "factor": 2)", "");
    fails(R"({"op": "end_step")", "");
    lines += R"({"op": "expect_hash", "as": "before"}
{"op": "begin_stroke", "layer": "paint"}
)";
    for (const std::string& edit : edits) fails(edit, "paint");
    for (const char* const edit :
         {R"({"op": "select", "what": "all")", R"({"op": "select_box", "box": [1, 1, 5, 5])",
          R"({"op": "select_pixels", "layer": "locked")", R"({"op": "flip_canvas", "way": "both")",
          R"({"op": "rotate_canvas", "to": "left")", R"({"op": "clear_layers")"})
        fails(edit, "");
    lines += R"({"op": "cancel_stroke"}
{"op": "use_layer", "layer": "shapes"}
{"op": "expect_hash", "as": "before"}
)";
    const auto outcome = runProgram(folder, "run " + writeJournal(folder, "e.jsonl", lines));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

TEST(CommandRun, ComesByStandardInputAndLooksAtNamesFirst) {
    TempFolder folder;
    const std::string script = writeJournal(folder, "s.jsonl", R"(
{"op": "canvas", "width": 40, "height": 30}
{"op": "note", "text": "begun"}
)");
    const auto piped = runProgram(folder, "run - <" + script);
    EXPECT_EQ(piped.exitCode, 0) << piped.err;
    EXPECT_EQ(piped.out, "begun\n");
    const auto ending =
        runProgram(folder, "run " + script + " --out '" + folder.file("x.pgn") + "'");
    EXPECT_EQ(ending.exitCode, 2);
    EXPECT_EQ(ending.out, "") << "it ran before";
    EXPECT_EQ(runProgram(folder, "run " + script + " --seed -1").exitCode, 2);
    const auto unknown = runProgram(folder, "rum " + script);
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_NE(unknown.err.find("no command rum"), std::string::npos) << unknown.err;
}

TEST(CommandRun, ShapesOfOneLayerStayTogether) {
    TempFolder folder;
    const auto outcome = runProgram(folder, "run " + writeJournal(folder, "two.jsonl", R"(
{"op": "canvas", "width": 90, "height": 60, "background": "#ffffff"}
{"op": "curve", "name": "left", "kind": "box", "box": [10, 10, 20, 20]}
{"op": "curve", "name": "right", "kind": "box", "box": [50, 10, 20, 20]}
{"op": "shape", "name": "l", "curves": ["left"], "fill": "#ff0000", "as": "shapes"}
{"op": "shape", "name": "r", "curves": ["right"], "fill": "#0000ff"}
{"op": "expect_count", "of": "shapes", "is": 2, "layer": "shapes"}
{"op": "expect_pixel", "at": [20, 20], "colour": "#ff0000"}
{"op": "expect_pixel", "at": [60, 20], "colour": "#0000ff"}
{"op": "undo"}
{"op": "expect_count", "of": "shapes", "is": 1, "layer": "shapes"}
{"op": "redo"}
{"op": "delete_shapes", "shapes": ["l"]}
{"op": "expect_pixel", "at": [20, 20], "colour": "#ffffff"}
{"op": "undo"}
{"op": "expect_pixel", "at": [20, 20], "colour": "#ff0000"}
{"op": "curve", "name": "diamond", "kind": "straight", "closed": true, "points": [[70, 25], [85, 40], [70, 55], [55, 40]]}
{"op": "shape", "name": "d", "curves": ["diamond"], "fill": "#00ff00"}
{"op": "expect_pixel", "at": [70, 39], "colour": "#00ff00"}
{"op": "expect_pixel", "at": [70, 40], "colour": "#00ff00"}
)"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

TEST(CommandRun, SavesThroughTheHelper) {
    TempFolder folder;
    const auto outcome = runProgram(folder, "run " + writeJournal(folder, "p.jsonl", R"(
{"op": "canvas", "width": 40, "height": 30, "background": "#ffffff"}
{"op": "layer", "name": "a"}
{"op": "fill", "colour": [1, 0, 0, 0.5]}
{"op": "hash", "as": "first", "quiet": true}
{"op": "save", "file": "one.png"}
{"op": "canvas", "width": 40, "height": 30, "background": "#ffffff"}
{"op": "image_layer", "file": "one.png", "name": "b"}
{"op": "expect_pixel", "at": [3, 3], "colour": [1, 0.5, 0.5]}
{"op": "save", "file": "nowhere/x.png", "fails": true}
)") + " --out '" + folder.file("two.bmp") + "'");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(test::readBytes(folder.file("two.bmp")).size() > 40 * 30 * 3, true);
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(CommandPaint, PaintsARecordedPen) {
    TempFolder folder;
    std::string events;
    for (int n = 0; n < 60; ++n) {
        char line[80];
        std::snprintf(line, sizeof line, "%.3f %d %d %.3f\n", n * 0.01, 10 + n, 10 + n / 2,
                      n % 30 == 29 ? 0.0 : 0.5);
        events += line;
    }
    std::ofstream(folder.file("pen.dat")) << events;
    const auto paint = [&](const std::string& more) {
        return runProgram(folder, "paint '" + folder.file("pen.dat") + "' --size 90x60 --out '" +
                                      folder.file("pen.png") + "' " + more);
    };
    const auto good = paint("--brush hard --colour '#203040'");
    EXPECT_EQ(good.exitCode, 0) << good.err;
    EXPECT_NE(good.out.find("2 strokes, 58 points"), std::string::npos) << good.out;
    // The recording goes down from the upper left corner.
    const auto check = runProgram(folder, "run " + writeJournal(folder, "c.jsonl", R"(
{"op": "canvas", "width": 90, "height": 60}
{"op": "image_layer", "file": "pen.png"}
{"op": "expect_pixel", "at": [20, 44], "colour": "#203040", "tolerance": 30}
{"op": "expect_pixel", "at": [20, 10], "colour": "#ffffff"}
)"));
    EXPECT_EQ(check.exitCode, 0) << check.err;
    EXPECT_EQ(paint("--brush no-such").exitCode, 4);
    for (const char* const size : {"90by60", "0x60", "90x16385", "4294967386x60", "90x60x", "x"})
        EXPECT_EQ(paint(std::string("--brush hard --size ") + size).exitCode, 2) << size;
    std::ofstream(folder.file("pen.dat")) << "0 1 2 0.5\n0.1 1 2\n";
    const auto bad = paint("--brush hard");
    EXPECT_EQ(bad.exitCode, 3);
    EXPECT_NE(bad.err.find("pen.dat:2: four numbers"), std::string::npos) << bad.err;
}

TEST(CommandBrushes, AllShippedBrushesCanBeRead) {
    TempFolder folder;
    const auto list = runProgram(folder, "brushes");
    EXPECT_EQ(list.exitCode, 0) << list.err;
    for (const char* const name : {"hard", "soft", "marker", "marker-colourless", "smudge",
                                   "pastel", "glow", "eraser", "airbrush", "calligraphic"})
        EXPECT_NE(list.out.find(std::string(name) + " "), std::string::npos) << name;
}

}  // namespace
}  // namespace brushwork
