// The client with the real helper and with helpers that fail in every way.
#include "brushwork/bridge_client.h"

#include <signal.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <thread>

#include "bridge/bitmap.h"
#include "bridge/spawn_bridge.h"
#include "client_run.h"
#include "image/memory/memory_manager.h"
#include "image/smart/il_smart_image.h"
#include "image/work/il_sp_memory_img.h"

namespace brushwork {
namespace {

using test::HelperProgram;
using test::picture;
using test::pixelsOf;
using test::readBytes;
using test::shellHelper;
using test::TempFolder;
using test::wide;
using test::writeBytes;
using Bytes = std::vector<std::uint8_t>;

// What this process decodes, in the form of the pixel file.
Bytes decodedHere(const std::string& path, platform::PixelFormat format) {
    auto bitmap = Gdiplus::Bitmap::fromFile(platform::fromUtf8(path));
    const std::size_t rowBytes = static_cast<std::size_t>(bitmap.width()) * 4;
    const auto height = static_cast<std::size_t>(bitmap.height());
    struct Rows final : platform::RowSink {
        Bytes bytes;
        std::size_t rowBytes = 0, height = 0;
        bool putRows(std::int32_t y, std::int32_t count, const std::uint8_t* bgra) override {
            for (std::int32_t i = 0; i < count; ++i)
                std::copy_n(bgra + rowBytes * static_cast<std::size_t>(i), rowBytes,
                            &bytes[rowBytes * (height - 1 - static_cast<std::size_t>(y + i))]);
            return true;
        }
    } rows;
    rows.bytes.resize(rowBytes * height);
    rows.rowBytes = rowBytes;
    rows.height = height;
    EXPECT_TRUE(bitmap.readRows(format, rows));
    return rows.bytes;
}

Ref<ilSPMemoryImg> randomImage(std::int32_t width, std::int32_t height, unsigned seed) {
    std::mt19937 random(seed);
    Ref<ilSPMemoryImg> image(new ilSPMemoryImg(width, height, 4));
    for (std::size_t i = 0; i < image->byteSize(); ++i)
        image->data()[i] = static_cast<std::uint8_t>(random());
    return image;
}

TEST(BridgeClient, OpensWhatThisProcessDecodes) {
    TempFolder folder;
    const HelperProgram helper;
    for (const char* name : {"rocket.jpg", "chelsea.png", "tbbn3p08.png", "cup-rgba-zip.tif",
                             "cup-interlaced.gif", "rgba32abf.bmp", "tiny-7x5.jpg"}) {
        const std::string path = picture(name);
        const bool isPng = path.ends_with(".png");
        ImageFileParams params;
        const auto image = openFromFileThroughBridge(wide(path), "", &params);
        ASSERT_TRUE(image) << name;
        EXPECT_EQ(params.channels, 4);
        EXPECT_EQ(image->channels(), 4);
        EXPECT_EQ(image->sizeX(), params.width);
        EXPECT_EQ(image->sizeY(), params.height);
        EXPECT_TRUE(pixelsOf(*image) == decodedHere(path, isPng ? platform::PixelFormat::Pargb32
                                                                : platform::PixelFormat::Argb32))
            << name;
        std::int32_t width = 0, height = 0;
        EXPECT_TRUE(getSizeThroughBridge(wide(path), width, height));
        EXPECT_EQ(width, params.width);
        EXPECT_EQ(height, params.height);
    }
    ImageFileParams params;
    EXPECT_TRUE(openFromFileThroughBridge(wide(picture("cup-dpi300x150.jpg")), "", &params));
    EXPECT_NEAR(params.xResolution, 300.0, 0.01);
    EXPECT_NEAR(params.yResolution, 150.0, 0.01);
    EXPECT_TRUE(folder.leftovers().empty());
}

// More rows than one strip, and a last strip that isn't full.
TEST(BridgeClient, SavesAndOpensAgain) {
    TempFolder folder;
    const HelperProgram helper;
    for (const std::int32_t height : {1, 256, 601}) {
        const auto image = randomImage(37, height, 7);
        ImageFileParams params;
        params.resolutionUnit = DotsPerCentimetre;
        params.xResolution = params.yResolution = 100.0;
        const std::string file = folder.file("saved.tif");
        ASSERT_TRUE(saveToFileThroughBridge(image.get(), wide(file), "TIFF", &params));
        const auto back = openFromFileThroughBridge(wide(file), "", &params);
        ASSERT_TRUE(back);
        EXPECT_EQ(pixelsOf(*back), pixelsOf(*image));
        EXPECT_NEAR(params.xResolution, 254.0, 0.01);
        // A smart image goes out by the same road.
        ASSERT_TRUE(saveToFileThroughBridge(back.get(), wide(folder.file("b.tif")), "TIFF"));
        EXPECT_EQ(decodedHere(file, platform::PixelFormat::Argb32),
                  decodedHere(folder.file("b.tif"), platform::PixelFormat::Argb32));
    }
    EXPECT_TRUE(folder.leftovers().empty());
}

// The engine's own form: red first, premultiplied, whatever the file holds.
TEST(BridgeClient, PicturesOfHostsAreAsLayersHaveThem) {
    TempFolder folder;
    const HelperProgram helper;
    for (const char* name : {"rocket.jpg", "tbbn3p08.png", "cup-rgba-zip.tif", "rgba32abf.bmp"}) {
        ImageFileParams params;
        const ImageRef picture = openPictureThroughBridge(wide(test::picture(name)), &params);
        ASSERT_TRUE(picture) << name;
        const ilTile box = flatTile(0, 0, params.width, params.height);
        Bytes pixels(std::size_t{4} * static_cast<std::size_t>(box.nx) *
                     static_cast<std::size_t>(box.ny));
        ASSERT_TRUE(picture.read(box, pixels.data()));
        Bytes wanted = decodedHere(test::picture(name), platform::PixelFormat::Pargb32);
        for (std::size_t n = 0; n < wanted.size(); n += 4) std::swap(wanted[n], wanted[n + 2]);
        EXPECT_TRUE(pixels == wanted) << name;

        const std::string file = folder.file("saved.png");
        ASSERT_TRUE(savePictureThroughBridge(picture, box.nx, box.ny, wide(file), "PNG"));
        const ImageRef back = openPictureThroughBridge(wide(file));
        Bytes again(pixels.size());
        ASSERT_TRUE(back.read(box, again.data()));
        EXPECT_TRUE(again == pixels) << name;
    }
    ImageFileParams params;
    EXPECT_FALSE(openPictureThroughBridge(wide(picture("missing.png")), &params));
    EXPECT_EQ(params.width, 0);
    const znString::IString path = wide(folder.file("x.png"));
    EXPECT_FALSE(savePictureThroughBridge({}, 4, 4, path, "PNG"));
    EXPECT_FALSE(savePictureThroughBridge(ImageRef::make(1), 4, 4, path, "PNG"));
    EXPECT_FALSE(savePictureThroughBridge(ImageRef::make(4), 0, 4, path, "PNG"));
    EXPECT_FALSE(savePictureThroughBridge(ImageRef::make(4), 4, 4, path, "png"));
    EXPECT_FALSE(std::filesystem::exists(folder.file("x.png")));
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(BridgeClient, RefusesWhatCantBe) {
    TempFolder folder;
    // A helper that notes that it was started.
    const HelperProgram helper(shellHelper(folder, "touch '" + folder.file("started") + "'"));
    const Ref<ilSPMemoryImg> none(new ilSPMemoryImg(0, 5, 4));
    EXPECT_FALSE(saveToFileThroughBridge(none.get(), wide(folder.file("x.png")), "PNG"));
    EXPECT_FALSE(saveToFileThroughBridge(nullptr, wide(folder.file("x.png")), "PNG"));
    const std::string longPath(300, 'x');
    std::int32_t width = 7, height = 8;
    EXPECT_FALSE(getSizeThroughBridge(wide(longPath), width, height));
    EXPECT_FALSE(openFromFileThroughBridge(wide(longPath), ""));
    const auto image = randomImage(3, 3, 1);
    EXPECT_FALSE(saveToFileThroughBridge(image.get(), wide(longPath), "PNG"));
    EXPECT_FALSE(std::filesystem::exists(folder.file("started")));
    EXPECT_EQ(width, 7);
    EXPECT_EQ(height, 8);
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(BridgeClient, FailuresOfTheRealHelperLeaveNothing) {
    TempFolder folder;
    const HelperProgram helper;
    const auto image = randomImage(3, 3, 1);
    std::int32_t width = 7, height = 8;
    EXPECT_FALSE(getSizeThroughBridge(wide(picture("missing.png")), width, height));
    EXPECT_FALSE(openFromFileThroughBridge(wide(picture("broken-truncated-baseline.jpg")), ""));
    EXPECT_FALSE(saveToFileThroughBridge(image.get(), wide(folder.file("x.png")), "png"));
    EXPECT_FALSE(saveToFileThroughBridge(image.get(), wide(folder.file("no/such/x")), "PNG"));
    EXPECT_EQ(width, 7);
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(BridgeClient, WithoutAHelperEverythingFailsAtOnce) {
    TempFolder folder;
    const HelperProgram helper(folder.file("no-helper"));
    // Even a file that came and went would be seen by the directory's time.
    const auto before = std::filesystem::last_write_time(folder.temporary());
    const auto image = randomImage(3, 3, 1);
    std::int32_t width = 0, height = 0;
    EXPECT_FALSE(getSizeThroughBridge(wide(picture("rocket.jpg")), width, height));
    EXPECT_FALSE(openFromFileThroughBridge(wide(picture("rocket.jpg")), ""));
    EXPECT_FALSE(saveToFileThroughBridge(image.get(), wide(folder.file("x.png")), "PNG"));
    EXPECT_EQ(std::filesystem::last_write_time(folder.temporary()), before);
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(BridgeClient, SurvivesHelpersThatDie) {
    TempFolder folder;
    const auto image = randomImage(5, 4, 1);
    const char* const endings[] = {
        "kill -SEGV $$",
        "kill -KILL $$",
        "exit 1",
        "exit 255",
        ": >\"$answer\"",                              // an empty answer
        "head -c 1799 \"$2\" >\"$answer\"",            // one byte short
        "cp \"$2\" \"$answer\"; rm \"$2\"; exit 255",  // and the request is gone
    };
    for (const char* ending : endings) {
        const HelperProgram helper(shellHelper(folder, ending));
        std::int32_t width = 0, height = 0;
        EXPECT_FALSE(getSizeThroughBridge(wide(picture("rocket.jpg")), width, height)) << ending;
        EXPECT_FALSE(openFromFileThroughBridge(wide(picture("rocket.jpg")), "")) << ending;
        // Only the last one echoes what it was asked.
        EXPECT_EQ(saveToFileThroughBridge(image.get(), wide(folder.file("x.png")), "PNG"),
                  ending == endings[6])
            << ending;
        EXPECT_TRUE(folder.leftovers().empty()) << ending;
    }
    // What can't be started at all.
    writeBytes(folder.file("data"), {1, 2, 3});
    const HelperProgram helper(folder.file("data"));
    EXPECT_FALSE(openFromFileThroughBridge(wide(picture("rocket.jpg")), ""));
    EXPECT_TRUE(folder.leftovers().empty());
}

TEST(BridgeClient, WaitsForAHelperThatHangsUntilItIsKilled) {
    TempFolder folder;
    const std::string pidFile = folder.file("pid");
    const HelperProgram helper(shellHelper(folder, "echo $$ >'" + pidFile + ".new'; mv '" +
                                                       pidFile + ".new' '" + pidFile +
                                                       "'; exec sleep 300"));
    std::thread killer([&] {
        while (!std::filesystem::exists(pidFile))
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        pid_t pid = 0;
        std::ifstream(pidFile) >> pid;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        if (pid > 1) ::kill(pid, SIGKILL);
    });
    EXPECT_FALSE(openFromFileThroughBridge(wide(picture("rocket.jpg")), ""));
    killer.join();
    EXPECT_TRUE(folder.leftovers().empty());
}

// Saving asks for an echo of the size; other commands don't know it beforehand.
TEST(BridgeClient, AnswersOfAnotherSizeFailSaving) {
    TempFolder folder;
    const auto image = randomImage(5, 4, 1);
    const std::string head = "rest() { dd if=\"$2\" bs=1 skip=$1 2>/dev/null; }\n";
    const auto saves = [&](const std::string& lines) {
        const HelperProgram helper(shellHelper(folder, head + lines));
        const bool saved = saveToFileThroughBridge(image.get(), wide(folder.file("x.png")), "PNG");
        EXPECT_TRUE(folder.leftovers().empty()) << lines;
        return saved;
    };
    EXPECT_TRUE(saves("cp \"$2\" \"$answer\""));
    EXPECT_TRUE(saves("{ cat \"$2\"; echo more; } >\"$answer\"")) << "a longer file passes";
    EXPECT_FALSE(saves("{ printf '\\006\\0\\0\\0'; rest 4 \"$2\"; } >\"$answer\""));
    EXPECT_FALSE(saves("{ head -c 4 \"$2\"; printf '\\0\\0\\0\\0'; rest 8 \"$2\"; } >\"$answer\""));
    EXPECT_FALSE(saves("{ head -c 8 \"$2\"; printf '\\003'; rest 9 \"$2\"; } >\"$answer\""));
}

TEST(SpawnBridge, OnlySavingAsksForAnEcho) {
    TempFolder folder;
    const HelperProgram helper(shellHelper(folder, "head -c 1800 /dev/zero >\"$answer\""));
    const auto spawns = [&](const char* command, std::int32_t width) {
        auto request = test::makeRequest(command, "x", folder.file("answer"));
        request.setSize(width, 0);
        RequestRecord response;
        SpawnReport report;
        const bool answered = spawnBridge(request, response, &report);
        EXPECT_TRUE(report.started);
        EXPECT_TRUE(std::filesystem::remove(folder.file("answer"))) << "the caller's to delete";
        EXPECT_TRUE(folder.leftovers().empty());
        return answered;
    };
    for (const char* command : {"SaveToFile", "savetofile", "SaveToClipboard", "SAVETOCLIPBOARD"}) {
        EXPECT_FALSE(spawns(command, 1)) << command;
        EXPECT_TRUE(spawns(command, 0)) << command;
    }
    for (const char* command : {"OpenFromFile", "GetSize", "SaveToFiles", ""})
        EXPECT_TRUE(spawns(command, 1)) << command;
}

struct Answer {
    std::int32_t width = 0, height = 0, channels = 4;
    std::size_t pixelBytes = 0;
};

// A helper that gives this answer, with that many bytes of pixels: 1, 2, 3...
Ref<ilSmartImage> openAnswer(const TempFolder& folder, const Answer& answer,
                             ImageFileParams& params) {
    RequestRecord record;
    record.setSize(answer.width, answer.height);
    record.setChannels(answer.channels);
    record.setResolution(72.0, 73.0);
    const std::string pixels = (folder.temporary() / "KVRpixels.tmp").string();
    EXPECT_TRUE(record.setPixelsPath(wide(pixels)));
    EXPECT_TRUE(writeRecord(wide(folder.file("answer")), record));
    Bytes bytes(answer.pixelBytes);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i + 1);
    writeBytes(folder.file("pixels"), bytes);
    const HelperProgram helper(
        shellHelper(folder, "cp '" + folder.file("answer") + "' \"$answer\"; cp '" +
                                folder.file("pixels") + "' '" + pixels + "'"));
    params = {};
    return openFromFileThroughBridge(wide(picture("rocket.jpg")), "PNG", &params);
}

TEST(BridgeClient, ShortPixelsGiveNoImageButTheParameters) {
    TempFolder folder;
    ImageFileParams params;
    const auto whole = openAnswer(folder, {3, 300, 4, 3600}, params);
    ASSERT_TRUE(whole);
    EXPECT_EQ(pixelsOf(*whole), readBytes(folder.file("pixels")));
    EXPECT_TRUE(folder.leftovers().empty());

    for (const std::size_t bytes : {0U, 1U, 3599U}) {
        EXPECT_FALSE(openAnswer(folder, {3, 300, 4, bytes}, params));
        EXPECT_EQ(params.height, 300);
        EXPECT_EQ(params.yResolution, 73.0);
        EXPECT_TRUE(folder.leftovers().empty());
    }
}

TEST(BridgeClient, HostileAnswersGiveNoImage) {
    TempFolder folder;
    ImageFileParams params;
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    const Answer answers[] = {{0, 5, 4, 64},          {5, -1, 4, 64}, {most, most, 4, 64},
                              {102401, 1, 4, 500000}, {2, 2, 0, 64},  {2, 2, 3, 64},
                              {2, 2, most, 64},       {2, 2, -4, 64}};
    for (const Answer& answer : answers) {
        EXPECT_FALSE(openAnswer(folder, answer, params)) << answer.width << " " << answer.channels;
        EXPECT_EQ(params.width, answer.width);
        EXPECT_TRUE(folder.leftovers().empty());
    }
    // Pixels of one channel lie at the start of strips of four bytes a pixel.
    const auto grey = openAnswer(folder, {2, 2, 1, 16}, params);
    ASSERT_TRUE(grey);
    EXPECT_EQ(pixelsOf(*grey), (Bytes{1, 2, 3, 4}));
}

// Many clients at once; BRUSHWORK_STRESS_SECONDS runs it longer.
TEST(BridgeClient, SixteenClientsLeaveNothingBehind) {
    TempFolder folder;
    const HelperProgram helper;
    const char* const asked = std::getenv("BRUSHWORK_STRESS_SECONDS");
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::milliseconds(asked ? 1000 * std::atoi(asked) : 1500);
    BworkMemory::instance().enable(true);  // images belong to many threads from now on
    const Bytes expected = decodedHere(picture("chelsea.png"), platform::PixelFormat::Pargb32);
    std::atomic<int> rounds{0}, wrong{0};
    std::vector<std::thread> clients;
    for (unsigned i = 0; i < 16; ++i)
        clients.emplace_back([&, i] {
            const std::string saved = folder.file("saved" + std::to_string(i) + ".tif");
            do {
                std::int32_t width = 0, height = 0;
                const auto image = openFromFileThroughBridge(wide(picture("chelsea.png")), "");
                bool right = image && pixelsOf(*image) == expected;
                right = right && saveToFileThroughBridge(image.get(), wide(saved), "TIFF");
                right = right && getSizeThroughBridge(wide(saved), width, height) && width == 451;
                right =
                    right && !openFromFileThroughBridge(wide(picture("broken-truncated.gif")), "");
                wrong += right ? 0 : 1;
                ++rounds;
            } while (std::chrono::steady_clock::now() < end);
        });
    for (auto& client : clients) client.join();
    BworkMemory::instance().enable(false);
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(folder.leftovers().empty());
    RecordProperty("rounds", rounds);
    if (asked) std::printf("%d rounds of four requests\n", rounds.load());
}

}  // namespace
}  // namespace brushwork
