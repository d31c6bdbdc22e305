// The command line as a script uses it: exit codes, streams, files.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "support/temp_folder.h"

namespace brushwork {
namespace {

using test::readBytes;
using test::TempFolder;

struct Outcome {
    int exitCode = -1;
    std::string out, err;
};

std::string slurp(const std::string& path) {
    const auto bytes = readBytes(path);
    return {bytes.begin(), bytes.end()};
}

Outcome brushwork(const TempFolder& folder, const std::string& arguments,
                  const std::string& environment = "") {
    const std::string command = environment + " '" + std::string(BRUSHWORK_PROGRAM) + "' " +
                                arguments + " >'" + folder.file("out") + "' 2>'" +
                                folder.file("err") + "'";
    const int status = std::system(command.c_str());
    return {WEXITSTATUS(status), slurp(folder.file("out")), slurp(folder.file("err"))};
}

std::string picture(const std::string& name) {
    return "'" + std::string(BRUSHWORK_TEST_DATA) + "/pictures/" + name + "'";
}

// A bitmap file of noise, which takes long to reduce to 256 colours: seconds for 25 megapixels.
std::vector<std::uint8_t> noiseBitmap(std::int32_t side) {
    std::vector<std::uint8_t> bmp(54 + std::size_t{3} * std::size_t(side) * std::size_t(side));
    const auto put = [&](std::size_t at, std::uint32_t value) {
        for (int i = 0; i < 4; ++i) bmp[at + std::size_t(i)] = std::uint8_t(value >> (8 * i));
    };
    bmp[0] = 'B';
    bmp[1] = 'M';
    put(2, std::uint32_t(bmp.size()));
    put(10, 54);
    put(14, 40);
    put(18, std::uint32_t(side));
    put(22, std::uint32_t(side));
    put(26, 1 | 24 << 16);
    std::uint32_t noise = 1;
    for (std::size_t i = 54; i < bmp.size(); ++i) {
        noise = noise * 1664525U + 1013904223U;
        bmp[i] = std::uint8_t(noise >> 24);
    }
    return bmp;
}

TEST(CommandImage, InfoTellsEachPicture) {
    TempFolder folder;
    const auto text = brushwork(folder, "image info " + picture("rocket.jpg"));
    EXPECT_EQ(text.exitCode, 0) << text.err;
    EXPECT_NE(text.out.find("JPEG 640 x 427"), std::string::npos) << text.out;
    EXPECT_EQ(text.err, "");

    const auto json =
        brushwork(folder, "image info --json " + picture("rocket.jpg") + " " + picture("no-such") +
                              " " + picture("shortfile.bmp") + " " + picture("cup-dpi300x150.jpg"));
    EXPECT_EQ(json.exitCode, 4) << "the first failure's code";
    const auto parsed = nlohmann::json::parse(json.out);
    ASSERT_EQ(parsed.size(), 4U);
    EXPECT_EQ(parsed[0]["width"], 640);
    EXPECT_TRUE(parsed[1].contains("error"));
    EXPECT_TRUE(parsed[2].contains("error"));
    EXPECT_EQ(parsed[3]["xResolution"], 300.0);
    EXPECT_EQ(parsed[3]["yResolution"], 150.0);
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(CommandImage, QuickInfoReadsHeadersOnly) {
    TempFolder folder;
    const std::string cut = picture("broken-truncated-baseline.jpg");
    EXPECT_EQ(brushwork(folder, "image info " + cut).exitCode, 3);
    const auto quick = brushwork(folder, "image info --quick --json " + cut);
    EXPECT_EQ(quick.exitCode, 0);
    EXPECT_FALSE(nlohmann::json::parse(quick.out)[0].contains("format"));
}

TEST(CommandImage, ConvertKeepsColoursUnderAlpha) {
    TempFolder folder;
    const auto convert = [&](const std::string& from, const std::string& to) {
        const auto outcome = brushwork(folder, "image convert " + from + " '" + to + "'");
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    };
    // Straight alpha goes to PNG and comes back: what alpha leaves of a colour is the same.
    convert(picture("cup-rgba-zip.tif"), folder.file("a.png"));
    convert("'" + folder.file("a.png") + "'", folder.file("b.tif"));
    convert("'" + folder.file("b.tif") + "'", folder.file("c.png"));
    EXPECT_EQ(readBytes(folder.file("a.png")).size() > 1000, true);
    convert("'" + folder.file("c.png") + "'", folder.file("d.tif"));
    EXPECT_EQ(readBytes(folder.file("b.tif")), readBytes(folder.file("d.tif")))
        << "after one premultiplication nothing more is lost";
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(CommandImage, ConvertTakesFormatQualityAndResolution) {
    TempFolder folder;
    const std::string out = folder.file("out.dat");
    EXPECT_EQ(
        brushwork(folder, "image convert " + picture("rocket.jpg") + " '" + out + "'").exitCode, 2)
        << "no format to be told from the name";
    const auto json = brushwork(folder, "image convert " + picture("rocket.jpg") + " '" + out +
                                            "' --format jpeg --quality 10 --dpi 300 --json");
    ASSERT_EQ(json.exitCode, 0) << json.err;
    EXPECT_EQ(nlohmann::json::parse(json.out)["format"], "JPEG");
    const auto info = brushwork(folder, "image info --json '" + out + "'");
    EXPECT_EQ(nlohmann::json::parse(info.out)[0]["xResolution"], 300.0);
    const auto small = readBytes(out).size();
    brushwork(folder, "image convert " + picture("rocket.jpg") + " '" + out + "' --format JPEG");
    EXPECT_LT(small * 2, readBytes(out).size());
}

TEST(CommandImage, ManyFilesGoOnPastBadOnes) {
    TempFolder folder;
    std::filesystem::create_directory(folder.file("made"));
    const std::string into = " --into '" + folder.file("made") + "'";
    const char* const good[] = {"rocket.jpg",   "chelsea.png",       "cup-rgba-zip.tif",
                                "pal8.bmp",     "camera.png",        "cam-g4.tif",
                                "tiny-7x5.jpg", "cat-anim4-opt.gif", "tbbn3p08.png"};
    std::string files = picture("shortfile.bmp") + " ";
    for (const char* name : good) files += picture(name) + " ";
    files += picture("missing.png") + " " + picture("xcsn0g01.png");
    for (const char* name : good)
        brushwork(folder,
                  "image convert " + picture(name) + " '" + folder.file(name) + "' --format tiff");
    for (const char* jobs : {"", " --jobs 1", " --jobs 12"}) {
        const auto outcome =
            brushwork(folder, "image convert " + files + into + " --format tiff" + jobs);
        EXPECT_EQ(outcome.exitCode, 3) << "of the first file that failed";
        EXPECT_NE(outcome.err.find("9 of 12 converted, 3 failed\n"), std::string::npos)
            << outcome.err;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 4) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        // Each is what converting it alone gives.
        for (const char* name : good) {
            const auto made = folder.file("made/") +
                              std::filesystem::path(name).replace_extension("tif").string();
            EXPECT_TRUE(readBytes(made) == readBytes(folder.file(name))) << name;
            std::filesystem::remove(made);
        }
        EXPECT_TRUE(std::filesystem::is_empty(folder.file("made")));
        EXPECT_TRUE(folder.leftovers().empty());
    }
    const auto json = brushwork(folder, "image convert " + picture("tiny-7x5.jpg") + " " +
                                            picture("missing.png") + into + " --format png --json");
    EXPECT_EQ(json.exitCode, 4);
    const auto parsed = nlohmann::json::parse(json.out);
    ASSERT_EQ(parsed.size(), 2U);
    EXPECT_EQ(parsed[0]["width"], 7);
    EXPECT_EQ(parsed[0]["format"], "PNG");
    EXPECT_TRUE(parsed[1].contains("error"));
    EXPECT_TRUE(parsed[1].contains("input"));
}

// Never more helpers at once than asked for: each notes its coming and going.
TEST(CommandImage, HelpersAtOnceAreBounded) {
    TempFolder folder;
    std::filesystem::create_directory(folder.file("bin"));
    std::filesystem::create_directory(folder.file("made"));
    const std::string program = folder.file("bin/brushwork");
    std::filesystem::copy_file(BRUSHWORK_PROGRAM, program);
    const std::string helper = folder.file("bin/InkAtelierBridge");
    std::ofstream(helper) << "#!/bin/sh\necho + >>'" + folder.file("log") + "'\nsleep 0.03\n'" +
                                 BRUSHWORK_HELPER + "' \"$@\"\nvalue=$?\necho - >>'" +
                                 folder.file("log") + "'\nexit $value\n";
    std::filesystem::permissions(helper, std::filesystem::perms::owner_all);
    std::string files;
    for (int i = 0; i < 12; ++i) {
        const std::string name = folder.file("p" + std::to_string(i) + ".jpg");
        std::filesystem::copy_file(std::string(BRUSHWORK_TEST_DATA) + "/pictures/tiny-7x5.jpg",
                                   name);
        files += " '" + name + "'";
    }
    for (const int jobs : {1, 3}) {
        std::filesystem::remove(folder.file("log"));
        const std::string command = "'" + program + "' image convert" + files + " --into '" +
                                    folder.file("made") + "' --format png --jobs " +
                                    std::to_string(jobs) + " 2>/dev/null";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 0);
        int running = 0, most = 0, runs = 0;
        for (const char c : slurp(folder.file("log"))) {
            if (c == '+') {
                ++runs;
                most = std::max(most, ++running);
            }
            if (c == '-') --running;
        }
        EXPECT_LE(most, jobs);
        EXPECT_GE(most, std::min(jobs, 2));
        EXPECT_EQ(runs, 24) << "one to read and one to write each";
    }
    EXPECT_TRUE(folder.leftovers().empty());
}

// The end comes at many places: while helpers start, read, hand over and write, and between them.
TEST(CommandImage, EndedBySignalItEndsItsHelpersAndLeavesNothing) {
    TempFolder folder;
    std::filesystem::create_directory(folder.file("made"));
    std::string files;
    for (int i = 0; i < 40; ++i) {
        const std::string name = folder.file("noise" + std::to_string(i) + ".bmp");
        test::writeBytes(name, noiseBitmap(i == 0 ? 5000 : 500));
        files += " '" + name + "'";
    }
    const std::string command = "'" + std::string(BRUSHWORK_PROGRAM) + "' image convert" + files +
                                " --into '" + folder.file("made") + "' --format gif --jobs 4 2>'" +
                                folder.file("err") + "' & ";
    for (int wait = 0; wait < 24; ++wait) {
        const std::string seconds = std::to_string(0.012 * wait);
        const std::string end = "sleep " + seconds + "; kill -TERM $!; wait $!";
        EXPECT_EQ(WEXITSTATUS(std::system((command + end).c_str())), 128 + 15) << seconds;
        // A helper that writes to a slow disk may outlive the program for a moment.
        for (int i = 0; i < 400 && !folder.leftovers().empty(); ++i) std::system("sleep 0.02");
        EXPECT_EQ(folder.leftovers(), std::vector<std::string>{}) << seconds;
        EXPECT_EQ(slurp(folder.file("err")), "") << "what the end made fail is no news";
        // Whole pictures may be there, begun ones not.
        for (const auto& made : std::filesystem::directory_iterator(folder.file("made"))) {
            EXPECT_EQ(made.path().extension(), ".gif");
            std::filesystem::remove(made.path());
        }
    }
}

TEST(CommandImage, OutOfTimeIsALimit) {
    TempFolder folder;
    test::writeBytes(folder.file("noise.bmp"), noiseBitmap(5000));
    const std::string arguments =
        "image convert '" + folder.file("noise.bmp") + "' '" + folder.file("noise.gif") + "'";
    const auto outcome = brushwork(folder, arguments, "INKATELIER_BRIDGE_CPU_SECONDS=1");
    EXPECT_EQ(outcome.exitCode, 5) << outcome.err;
    EXPECT_FALSE(std::filesystem::exists(folder.file("noise.gif")));
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(CommandImage, LostOutputIsAFailure) {
    TempFolder folder;
    std::string many;
    for (int i = 0; i < 60; ++i) many += " " + picture("tiny-7x5.jpg");
    for (const std::string& arguments :
         {std::string("--help"), "image info --json" + many, "image info" + many}) {
        const std::string command =
            "'" + std::string(BRUSHWORK_PROGRAM) + "' " + arguments + " >/dev/full 2>/dev/null";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 4) << arguments;
    }
}

// Whoever starts the program may have it ignore the ends of its children.
TEST(CommandImage, WorksWhereEndedChildrenAreIgnored) {
    TempFolder folder;
    const std::string command = "trap '' CHLD; exec '" + std::string(BRUSHWORK_PROGRAM) +
                                "' image info " + picture("tiny-7x5.jpg") + " >/dev/null";
    EXPECT_EQ(WEXITSTATUS(std::system(("bash -c \"" + command + "\"").c_str())), 0);
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(CommandImage, ExitCodesSayWhatWentWrong) {
    TempFolder folder;
    const std::string rocket = picture("rocket.jpg");
    const auto code = [&](const std::string& arguments, const std::string& environment = "") {
        const auto outcome = brushwork(folder, arguments, environment);
        if (outcome.exitCode != 0 && outcome.exitCode != 2) {
            EXPECT_EQ(outcome.err.rfind("brushwork: ", 0), 0U) << arguments << ": " << outcome.err;
            EXPECT_EQ(outcome.out, "") << arguments;
        }
        return outcome.exitCode;
    };
    EXPECT_EQ(code("--help"), 0);
    EXPECT_EQ(code("image convert --help"), 0);
    EXPECT_EQ(code("--version"), 0);
    EXPECT_EQ(code(""), 2);
    EXPECT_EQ(code("image"), 2);
    EXPECT_EQ(code("image info"), 2);
    EXPECT_EQ(code("image paint x"), 2);
    EXPECT_EQ(code("image convert " + rocket + " x.png --quality 101"), 2);
    EXPECT_EQ(code("image convert " + rocket + " x.png --quality ten"), 2);
    EXPECT_EQ(code("image convert " + rocket + " x.png --dpi 0"), 2);
    EXPECT_EQ(code("image convert " + rocket + " x --format webp"), 2);
    EXPECT_EQ(code("image info '" + std::string(BRUSHWORK_TEST_DATA) + "/README.md'"), 3);
    EXPECT_EQ(code("image info " + picture("xcsn0g01.png")), 3);
    EXPECT_EQ(code("image info " + picture("missing.png")), 4);
    EXPECT_EQ(code("image info '" + folder.temporary().string() + "'"), 4) << "a folder";
    EXPECT_EQ(code("image convert " + rocket + " '" + folder.file("no/such/x.png") + "'"), 4);
    EXPECT_EQ(code("image info " + rocket, "INKATELIER_BRIDGE_PIXELS_MIB=1"), 5);
    EXPECT_EQ(code("image info " + rocket, "TMPDIR=/no/such/folder"), 4);
    EXPECT_EQ(code("image convert " + rocket + " x.png --dpi nan"), 2);
    EXPECT_EQ(code("image convert " + rocket), 2);
    EXPECT_EQ(code("image convert " + rocket + " " + rocket + " x.png"), 2);
    EXPECT_EQ(code("image convert " + rocket + " --into /no/such --format png"), 4);
    EXPECT_EQ(code("image convert " + rocket + " --into ."), 2) << "no format";
    EXPECT_EQ(code("image convert " + rocket + " --into . --format png --jobs 0"), 2);
    EXPECT_EQ(code("image convert " + rocket + " " + rocket + " --into . --format png"), 2)
        << "two for one place";
    EXPECT_EQ(code("image info '[a,b]'"), 4) << "one file of that name, not two";
    EXPECT_TRUE(folder.leftovers().empty());
}

}  // namespace
}  // namespace brushwork
