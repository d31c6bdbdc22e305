// Frames by journal, through the real program: timelines, undo and redo across frames, exports as
// another reader sees them, time-lapse, and lines that are refused.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tools/program.h"

namespace brushwork {
namespace {

using test::Outcome;
using test::runProgram;
using test::TempFolder;

Outcome run(const TempFolder& folder, const std::string& lines, const std::string& more = "",
            int version = 2) {
    std::ofstream(folder.file("film.jsonl"))
        << "{\"journal\": \"brushwork\", \"version\": " << version << ", \"seed\": 3}\n"
        << lines;
    return runProgram(folder, "run '" + folder.file("film.jsonl") + "' " + more);
}

// Three frames at 1, 4 and 6, the last up to 9; symmetry, a paper, jitter.
const char* const film = R"({"op": "canvas", "width": 160, "height": 120, "background": "#f5ecdc"}
{"op": "layer", "name": "first"}
{"op": "frame", "hold": 3}
{"op": "brush", "file": "pastel", "colour": "#b3324e", "jitter": {"angle": 20, "radius": 0.2}, "texture": {"grain": 3, "anywhere": true}}
{"op": "symmetry", "kind": "kaleidoscope", "sectors": 3, "angle": 12.5}
{"op": "stroke", "points": [[90, 62, 0.3], [120, 80, 1], [140, 66, 0.4]], "every": 4}
{"op": "frame", "hold": 2, "as": "second"}
{"op": "symmetry", "kind": "rotate", "sectors": 5, "centre": [70, 60], "separate": true}
{"op": "stroke", "layer": "second", "points": [[20, 20], [60, 50, 0.4]], "every": 4}
{"op": "brush", "file": "smudge"}
{"op": "symmetry", "kind": "mirror_both"}
{"op": "stroke", "points": [[40, 40], [100, 50]], "every": 6}
{"op": "duplicate_frame", "number": 5}
{"op": "expect_frames", "starts": [1, 4, 5], "last": 5, "shown": 5}
{"op": "move_frame", "number": 5, "to": 6}
{"op": "hold_frame", "number": 6, "hold": 4}
{"op": "symmetry", "kind": "none"}
{"op": "brush", "file": "hard", "colour": "#203060"}
{"op": "stroke", "layer": "second", "points": [[10, 100], [150, 20]], "every": 5}
{"op": "expect_frames", "starts": [1, 4, 6], "last": 9, "shown": 6}
)";

TEST(FrameOps, WorkersAndTimeLapseChangeNoFrame) {
    TempFolder folder;
    const auto first = run(folder, film, "--hashes --threads 1 --vectors scalar");
    ASSERT_EQ(first.exitCode, 0) << first.err;
    EXPECT_NE(first.out.find("timeline to 9, 6 shown"), std::string::npos) << first.out;
    for (const std::string way : {"--threads 2", "--threads 8", "--threads 8 --vectors 128"})
        EXPECT_EQ(run(folder, film, "--hashes " + way).out, first.out) << way;
    const std::string lapse = "--hashes --every 7 --steps '" + folder.file("lapse/") + "'";
    EXPECT_EQ(run(folder, film, lapse).out, first.out);
    // 20 operations: after the 7th and the 14th, and at the end.
    for (const int number : {1, 2, 3, 4})
        EXPECT_EQ(
            std::filesystem::exists(folder.file("lapse/00000" + std::to_string(number) + ".png")),
            number < 4);
}

TEST(FrameOps, UndoAndRedoGoAcrossFrames) {
    TempFolder folder;
    std::string lines = film;
    lines += R"({"op": "hash", "as": "end", "quiet": true}
{"op": "undo", "all": true}
{"op": "expect_frames", "starts": [], "last": 0}
{"op": "hash", "as": "start", "quiet": true}
)";
    for (const char* const count : {"1", "2", "3", "4", "5", "6", "7", "8"})
        lines += std::string(R"({"op": "redo", "all": true})") +
                 "\n{\"op\": \"undo\", \"steps\": " + count +
                 "}\n{\"op\": \"redo\", \"steps\": " + count + "}\n" +
                 R"({"op": "expect_hash", "as": "end"})" + "\n";
    lines += R"({"op": "undo", "all": true}
{"op": "expect_hash", "as": "start"}
{"op": "redo", "all": true}
{"op": "expect_hash", "as": "end"}
{"op": "use_frame", "number": 2}
{"op": "stroke", "layer": "first", "points": [[10, 10], [90, 90]], "every": 5}
{"op": "delete_frame", "number": 1}
{"op": "expect_frames", "starts": [4, 6], "last": 9}
{"op": "undo", "steps": 3}
{"op": "expect_hash", "as": "end"}
{"op": "forget_undo"}
{"op": "expect_hash", "as": "end"}
)";
    const auto outcome = run(folder, lines);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err << outcome.out;
}

TEST(FrameOps, HoldsMoveWhatComesBehind) {
    TempFolder folder;
    const auto outcome = run(folder, R"(
{"op": "canvas", "width": 20, "height": 10}
{"op": "frame", "number": 2, "hold": 3}
{"op": "frame"}
{"op": "frame", "hold": 2}
{"op": "expect_frames", "starts": [2, 5, 6], "last": 7, "shown": 6}
{"op": "hold_frame", "number": 3, "hold": 5}
{"op": "expect_frames", "starts": [2, 7, 8], "last": 9, "shown": 6}
{"op": "hold_frame", "number": 7, "hold": 4}
{"op": "expect_frames", "starts": [2, 7, 11], "last": 12, "shown": 6}
{"op": "hold_frame", "number": 2, "hold": 1}
{"op": "expect_frames", "starts": [2, 3, 7], "last": 8}
{"op": "hold_frame", "number": 8, "hold": 1}
{"op": "expect_frames", "starts": [2, 3, 7], "last": 7}
{"op": "frame", "number": 4, "hold": 3}
{"op": "expect_frames", "starts": [2, 3, 4, 7], "last": 7, "shown": 4}
{"op": "undo", "steps": 3}
{"op": "expect_frames", "starts": [2, 7, 11], "last": 12}
{"op": "undo", "steps": 2}
{"op": "expect_frames", "starts": [2, 5, 6], "last": 7, "shown": 6}
{"op": "hold_frame", "hold": 995}
{"op": "expect_frames", "starts": [2, 5, 6], "last": 1000}
{"op": "hold_frame", "number": 5, "hold": 2, "fails": true}
{"op": "frame", "fails": true}
{"op": "expect_frames", "starts": [2, 5, 6], "last": 1000}
)");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

TEST(FrameOps, AnotherReaderSeesTheHolds) {
    TempFolder folder;
    const std::string gif = folder.file("film.gif");
    const auto outcome =
        run(folder, film,
            "--gif '" + gif + "' --rate 24 --plays 4 --frames '" + folder.file("frames/f") + "'");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    for (int number = 1; number <= 9; ++number)
        EXPECT_TRUE(
            std::filesystem::exists(folder.file("frames/f000" + std::to_string(number) + ".png")));
    const auto held = [&](const char* a, const char* b) {
        return test::readBytes(folder.file(a)) == test::readBytes(folder.file(b));
    };
    EXPECT_TRUE(held("frames/f0001.png", "frames/f0003.png"));
    EXPECT_FALSE(held("frames/f0003.png", "frames/f0004.png"));
    EXPECT_FALSE(held("frames/f0005.png", "frames/f0006.png"));

    const std::string command = "/usr/bin/python3 '" + std::string(BRUSHWORK_TEST_TOOLS) +
                                "/pillow_timing.py' '" + gif + "' >'" + folder.file("out") + "'";
    const int status = std::system(command.c_str());
    if (WEXITSTATUS(status) == 2) GTEST_SKIP() << "no Pillow";
    ASSERT_EQ(status, 0);
    // 3, 2 and 4 numbers at 24 a second, in whole hundredths that add up to 37.5.
    EXPECT_EQ(test::textOf(folder.file("out")), "130 80 170\n160 120 3\n");
}

TEST(FrameOps, LinesThatAreRefusedChangeNothing) {
    TempFolder folder;
    const auto refused = [&](const std::string& line, const std::string& words, int version = 2) {
        const auto outcome = run(folder, film + line + "\n", "", version);
        EXPECT_EQ(outcome.exitCode, 3) << line;
        EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
    };
    refused(R"({"op": "frame", "number": 0})", "film.jsonl:22:27: \"number\"");
    refused(R"({"op": "frame", "hold": 1001})", "22:25: \"hold\"");
    refused(R"({"op": "use_frame"})", "\"number\" is missing");
    refused(R"({"op": "move_frame", "to": 3.5})", "22:28: \"to\"");
    refused(R"({"op": "frame", "canvas": "none"})", "22:27: \"canvas\"");
    refused(R"({"op": "expect_frames", "starts": [1, 0]})", "22:39: \"starts\"");
    refused(R"({"op": "save_gif", "file": "a.gif", "rate": 0})", "22:45: \"rate\"");
    refused("", "film.jsonl:4:8: \"frame\" is for journals of version 2", 1);
    refused("", "film.jsonl:9:", 1);

    std::string lines = film;
    lines += "{\"op\": \"hash\", \"as\": \"before\", \"quiet\": true}\n";
    for (const char* const line :
         {R"("frame", "number": 4)", R"("frame", "number": 999, "hold": 3)",
          R"("delete_frame", "number": 10)", R"("duplicate_frame", "number": 10)",
          R"("move_frame", "number": 10, "to": 2)", R"("hold_frame", "hold": 1000)",
          R"("close_canvas", "canvas": "a")", R"("save_gif", "file": "film.jsonl/a.gif")",
          R"("save_frames", "prefix": "film.jsonl/a")", R"("expect_frames", "starts": [1, 4])",
          R"("expect_frames", "shown": 2)"})
        lines += std::string("{\"op\": ") + line + ", \"fails\": true}\n";
    lines += "{\"op\": \"expect_hash\", \"as\": \"before\"}\n";
    lines.insert(lines.find("\"width\""), "\"name\": \"a\", ");
    const auto outcome = run(folder, lines);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err << outcome.out;
    const auto without = run(folder, R"({"op": "canvas", "width": 9, "height": 9}
{"op": "use_frame", "number": 1})");
    EXPECT_EQ(without.exitCode, 1);
    EXPECT_NE(without.err.find(":3: use_frame: there are no frames yet"), std::string::npos);
}

}  // namespace
}  // namespace brushwork
