#include "image/swap/swap_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "foundation/services/log.h"
#include "image/swap/run_length.h"
#include "platform/file_calls.h"

namespace brushwork {
namespace {

using Bytes = std::vector<std::uint8_t>;
using platform::PositionedFile;

constexpr char writeText[] =
    "An error has been encountered while writing to\nan Image Swap File. The error is:\n";
constexpr char readText[] =
    "An error has been encountered while reading from\nan Image Swap File. The error is:\n";

class SwapFiles : public testing::Test {
  protected:
    SwapFiles() {
        root_ = std::filesystem::temp_directory_path() /
                ("swap_file_test" + std::to_string(platform::processId()));
        std::filesystem::create_directories(root_);
        setLogSink([this](std::string_view text) { texts_.emplace_back(text); });
    }
    ~SwapFiles() override {
        setLogSink({});
        std::filesystem::remove_all(root_);
    }

    std::u16string in(const char* name) { return (root_ / name).u16string(); }
    std::function<SwapDirectories()> here() {
        return [this] { return SwapDirectories{root_.u16string(), in("second"), in("last")}; };
    }
    std::size_t fileCount() const {
        const std::filesystem::directory_iterator all(root_);
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }
    std::size_t told(std::string_view start) const {
        return static_cast<std::size_t>(
            std::count_if(texts_.begin(), texts_.end(), [start](const std::string& text) {
                return text.compare(0, start.size(), start) == 0;
            }));
    }
    static Bytes fileBytes(const SwapFile& file, const SwapRecord& record) {
        PositionedFile reader;
        EXPECT_TRUE(reader.open(file.name(), PositionedFile::Mode::Read));
        Bytes bytes(record.storedSize);
        EXPECT_EQ(reader.readAt(record.offset, bytes.data(), bytes.size()), bytes.size());
        return bytes;
    }
    static void truncate(const SwapFile& file, std::uint64_t size) {
        PositionedFile writer;
        ASSERT_TRUE(writer.open(file.name(), PositionedFile::Mode::ReadWrite));
        ASSERT_TRUE(writer.resize(size));
    }

    std::filesystem::path root_;
    std::vector<std::string> texts_;
};

Bytes noise(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(size);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 8);
    return bytes;
}

// Between blank and noise, so that all size classes come up.
Bytes someOf(std::mt19937& random, std::size_t size) {
    Bytes bytes = noise(size, static_cast<unsigned>(random()));
    const std::size_t noisy = random() % 5 == 0 ? size : random() % (size / 3);
    const auto value = static_cast<std::uint8_t>(random());
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(noisy), bytes.end(), value);
    return bytes;
}

TEST_F(SwapFiles, ThePlainSequenceOfPages) {
    SwapFile file(SwapFile::fourChannels, here());
    EXPECT_EQ(fileCount(), 0U);
    Bytes pixels(65536);
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(i % 4);
    SwapRecord* packed = file.write(pixels.data());
    Bytes expected;
    for (std::uint8_t plane = 0; plane < 4; ++plane)
        for (int run = 0; run < 128; ++run) expected.insert(expected.end(), {128, plane});
    EXPECT_EQ(fileBytes(file, *packed), expected);
    const Bytes raw = noise(65536, 1);
    SwapRecord* second = file.write(raw.data());
    EXPECT_EQ(second->offset, expected.size());
    EXPECT_EQ(second->storedSize, 65536U);
    EXPECT_EQ(fileBytes(file, *second), raw);
    EXPECT_EQ(file.endOfFile(), expected.size() + 65536);
    // The file starts anew with the last record, and goes when it is closed.
    file.free(packed);
    file.closeIfUnused();
    EXPECT_EQ(fileCount(), 1U);
    file.free(second);
    EXPECT_EQ(file.endOfFile(), 0U);
    PositionedFile reader;
    ASSERT_TRUE(reader.open(file.name(), PositionedFile::Mode::Read));
    EXPECT_EQ(reader.size(), expected.size() + 65536);
    reader.close();
    file.closeIfUnused();
    EXPECT_EQ(fileCount(), 0U);
    EXPECT_TRUE(texts_.empty());
}

// Where a record must lie, by the rules for reuse in their plainest form.
struct Places {
    std::map<std::int64_t, std::vector<std::uint64_t>> freed;  // by class, the latest last
    std::map<std::uint64_t, std::int64_t> classes;             // of each place once freed
    std::uint64_t end = 0;

    std::uint64_t take(std::int64_t size, std::int64_t unit) {
        const std::int64_t wanted = (size + unit - 1) / unit;
        for (std::int64_t c = wanted; c <= wanted + 2; ++c)
            if (auto& places = freed[c]; !places.empty()) {
                const std::uint64_t place = places.back();
                places.pop_back();
                return place;
            }
        const std::uint64_t place = end;
        end += static_cast<std::uint64_t>(size);
        return place;
    }
    void give(std::uint64_t place, std::int64_t size, std::int64_t unit) {
        const std::int64_t c = classes.emplace(place, size / unit).first->second;
        if (c > 0) freed[c].push_back(place);
    }
};

TEST_F(SwapFiles, RandomOperationsAgainstAMap) {
    const std::uint32_t recordsBefore = swapRecordsInUse();
    for (const SwapFile::Form& form :
         {SwapFile::fourChannels, SwapFile::oneChannel, SwapFile::Form{16384, false, false}}) {
        constexpr unsigned seed = 2024;
        std::mt19937 random(seed);
        SwapFile file(form, here());
        std::map<std::uint32_t, std::pair<SwapRecord*, Bytes>> model;
        Places places;
        int reused = 0;
        for (int step = 0; step < 1500; ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " size " +
                         std::to_string(form.objectSize) + " step " + std::to_string(step));
            const bool shrinking = step % 300 > 220;
            if (model.empty() || random() % 10 < (shrinking ? 1U : 5U)) {
                Bytes page = someOf(random, form.objectSize);
                const std::uint64_t end = file.endOfFile();
                SwapRecord* record = file.write(page.data());
                ASSERT_NE(record, nullptr);
                ASSERT_EQ(record->offset, places.take(record->storedSize, form.objectSize >> 10));
                ASSERT_EQ(file.endOfFile(), places.end);
                reused += file.endOfFile() == end;
                ASSERT_TRUE(model.emplace(record->id, std::pair{record, std::move(page)}).second);
                continue;
            }
            auto at =
                std::next(model.begin(), static_cast<std::ptrdiff_t>(random() % model.size()));
            auto& [record, page] = at->second;
            if (random() % 2) {
                Bytes back(form.objectSize, 0x5A);
                ASSERT_EQ(file.read(*record, back.data()), back.size());
                ASSERT_TRUE(back == page);
            } else {
                places.give(record->offset, record->storedSize, form.objectSize >> 10);
                file.free(record);
                model.erase(at);
                if (model.empty()) places = {};
            }
            ASSERT_EQ(file.recordCount(), model.size());
        }
        EXPECT_GT(reused, 50);
        for (auto& [id, entry] : model) {
            Bytes back(form.objectSize);
            ASSERT_EQ(file.read(*entry.first, back.data()), back.size());
            ASSERT_TRUE(back == entry.second);
            file.free(entry.first);
        }
        EXPECT_EQ(file.endOfFile(), 0U);
    }
    EXPECT_EQ(swapRecordsInUse(), recordsBefore);
    EXPECT_TRUE(texts_.empty());
    EXPECT_EQ(fileCount(), 0U);
}

TEST_F(SwapFiles, WritingIsTriedAgainUntilItSucceedsOrSomebodyEndsIt) {
    const auto missing = [this] { return SwapDirectories{in("later"), in("second"), in("last")}; };
    SwapFile file(SwapFile::oneChannel, missing);
    const Bytes page = noise(16384, 4);
    std::vector<SwapTrouble> troubles;
    file.setQuestion([&](const SwapTrouble& trouble) {
        troubles.push_back(trouble);
        return trouble.tries < 13 ? SwapAnswer::Retry : SwapAnswer::GiveUp;
    });
    EXPECT_EQ(file.write(page.data()), nullptr);
    EXPECT_EQ(file.recordCount(), 0U);
    ASSERT_EQ(troubles.size(), 13U);
    for (std::uint32_t i = 0; i < 13; ++i) {
        EXPECT_EQ(troubles[i].tries, i + 1);
        EXPECT_EQ(troubles[i].wait.count(), std::min(1000, 1 << i));
    }
    EXPECT_EQ(told(writeText), 13U);
    EXPECT_EQ(told("SwapFile::Open: ("), 13U);
    EXPECT_NE(texts_[0].find("SIDTMP"), std::string::npos);
    EXPECT_NE(texts_[1].find("\nTry to free up some disk space,\nand Press Yes to retry -- or to "
                             "abort, press No\nSaving your canvas is recommended after this "
                             "situation."),
              std::string::npos);
    // The default waits by itself; here the log makes room at its third text.
    file.setQuestion({});
    int left = 3;
    setLogSink([&](std::string_view text) {
        if (text.substr(0, std::size(writeText) - 1) == writeText && --left == 0)
            std::filesystem::create_directory(root_ / "later");
    });
    SwapRecord* record = file.write(page.data());
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(left, 0);
    EXPECT_EQ(file.failedWrites(), 16U);
    Bytes back(16384);
    EXPECT_EQ(file.read(*record, back.data()), back.size());
    EXPECT_TRUE(back == page);
    file.free(record);
}

TEST_F(SwapFiles, DirectoriesAreTriedInTheirOrder) {
    const std::pair<const char*, const char*> steps[] = {
        {"last", "SIDTMP"}, {"second", "SID"}, {"first", "SID"}};
    for (const auto& [directory, prefix] : steps) {
        std::filesystem::create_directory(root_ / directory);
        SwapFile file(SwapFile::oneChannel, [this] {
            return SwapDirectories{in("first"), in("second"), in("last")};
        });
        ASSERT_TRUE(file.open());
        const std::filesystem::path made(file.name());
        EXPECT_EQ(made.parent_path(), root_ / directory);
        EXPECT_EQ(made.filename().string().rfind(prefix, 0), 0U);
        const std::u16string name = file.name();
        EXPECT_TRUE(file.open());
        EXPECT_EQ(file.name(), name);
    }
    EXPECT_TRUE(texts_.empty());
}

TEST_F(SwapFiles, WhatCannotBeReadIsZero) {
    SwapFile file(SwapFile::fourChannels, here());
    const Bytes raw = noise(65536, 9);
    Bytes blank(65536, 0x77);
    SwapRecord* first = file.write(raw.data());
    SwapRecord* packed = file.write(blank.data());
    ASSERT_EQ(packed->storedSize, 1024U);
    truncate(file, packed->offset + 513);  // the last packet is cut
    Bytes back(65536, 0x5A);
    EXPECT_EQ(file.read(*packed, back.data()), 32768U);
    for (std::size_t i = 0; i < back.size(); ++i) ASSERT_EQ(back[i], i % 4 < 2 ? 0x77 : 0) << i;
    EXPECT_EQ(told(readText), 10U);
    EXPECT_NE(texts_[0].find("\nBytesRead = 32768, ObjectSize = 65536, FilePos = 65536\n,written = "
                             "1024\nPress Yes to retry -- or to abort, press No\nSaving your "
                             "canvas is recommended after this situation."),
              std::string::npos);
    truncate(file, 1000);
    EXPECT_EQ(file.read(*first, back.data()), 1000U);
    EXPECT_TRUE(std::equal(raw.begin(), raw.begin() + 1000, back.begin()));
    EXPECT_EQ(std::count(back.begin() + 1000, back.end(), 0), 64536);
    EXPECT_EQ(file.failedReads(), 2U);
    // A place that was lost serves again.
    file.free(packed);
    SwapRecord* again = file.write(blank.data());
    EXPECT_EQ(again, packed);
    EXPECT_EQ(file.read(*again, back.data()), back.size());
    EXPECT_TRUE(back == blank);
    file.free(again);
    file.free(first);
}

TEST_F(SwapFiles, TheFailureFlagIsTold) {
    std::int32_t flag = 0;
    SwapFile file(SwapFile::oneChannel, here(), [&flag] { return flag; });
    const Bytes page(16384, 1);
    SwapRecord* first = file.write(page.data());
    EXPECT_TRUE(texts_.empty());
    flag = 3;
    SwapRecord* second = file.write(page.data());
    EXPECT_EQ(texts_, std::vector<std::string>{"SID: Paging Out 3\n"});
    file.free(first);
    file.free(second);
}

}  // namespace
}  // namespace brushwork
