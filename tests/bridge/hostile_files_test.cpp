// Damaged pictures by the thousand: no crash, no leak (the sanitizer looks), nothing left behind,
// none over five seconds. The seed is printed with every failure; it and the index make the file.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <random>

#include "bridge_run.h"
#include "platform/sanitizers.h"

namespace brushwork {
namespace {

using test::makeRequest;
using test::readBytes;
using test::runRequest;
using test::takePixels;
using test::TempFolder;
using test::Where;
using test::writeBytes;
using Bytes = std::vector<std::uint8_t>;

constexpr int filesPerFormat = platform::addressSanitized ? 4200 : 400;
constexpr unsigned seed = 20261;
constexpr double mostSeconds = 5.0;

const std::filesystem::path* corpus() {
    static const char* const name = ::getenv("BRUSHWORK_CORPUS");
    static const auto path = std::filesystem::path(name ? name : "") / "images";
    return name ? &path : nullptr;
}

// Real pictures to start from, the smaller ones: they mutate best.
std::vector<Bytes> seedsOf(const std::string& extension) {
    std::vector<std::filesystem::path> files;
    const auto collect = [&](const std::filesystem::path& folder) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            if (entry.is_regular_file() &&
                entry.path().extension().string().starts_with(extension) &&
                entry.file_size() < 40000)
                files.push_back(entry.path());
    };
    collect(std::filesystem::path(BRUSHWORK_TEST_DATA) / "pictures");
    if (corpus()) collect(*corpus());
    std::sort(files.begin(), files.end());
    std::vector<Bytes> seeds;
    for (const auto& file : files) seeds.push_back(readBytes(file.string()));
    return seeds;
}

Bytes mutate(const std::vector<Bytes>& seeds, std::mt19937& random) {
    const auto pick = [&](std::size_t count) { return random() % count; };
    Bytes bytes = seeds[pick(seeds.size())];
    static constexpr std::uint8_t edges[] = {0, 1, 0x7F, 0x80, 0xFF};
    for (std::size_t steps = 1 + pick(6); steps > 0 && !bytes.empty(); --steps) {
        // Headers are worth more than data.
        const std::size_t reach = pick(2) ? std::min<std::size_t>(bytes.size(), 256) : bytes.size();
        const std::size_t at = pick(reach);
        switch (pick(7)) {
            case 0: bytes[at] ^= static_cast<std::uint8_t>(1U << pick(8)); break;
            case 1: bytes[at] = static_cast<std::uint8_t>(random()); break;
            case 2:
                for (std::size_t i = at; i < std::min(bytes.size(), at + 4); ++i)
                    bytes[i] = edges[pick(5)];
                break;
            case 3: bytes.resize(pick(8) ? bytes.size() : at); break;
            case 4: {
                const std::size_t from = pick(bytes.size());
                const std::size_t count =
                    std::min<std::size_t>({1 + pick(64), bytes.size() - from, bytes.size() - at});
                std::copy_n(Bytes(bytes).begin() + long(from), count, bytes.begin() + long(at));
                break;
            }
            case 5: bytes.erase(bytes.begin() + long(at)); break;
            default: {
                const Bytes& other = seeds[pick(seeds.size())];
                if (other.empty()) break;
                const std::size_t from = pick(other.size());
                const std::size_t count =
                    std::min<std::size_t>({1 + pick(200), other.size() - from, bytes.size() - at});
                std::copy_n(other.begin() + long(from), count, bytes.begin() + long(at));
            }
        }
    }
    return bytes;
}

class HostileFiles : public testing::TestWithParam<const char*> {};

TEST_P(HostileFiles, EndInTimeAndLeaveNothing) {
    TempFolder folder;
    const auto seeds = seedsOf(GetParam());
    ASSERT_GE(seeds.size(), 3U);
    std::mt19937 random(seed);
    int decoded = 0;
    double longest = 0.0;
    const std::string image = folder.file("image");
    for (int i = 0; i < filesPerFormat; ++i) {
        const Bytes bytes = mutate(seeds, random);
        writeBytes(image, bytes);
        const auto start = std::chrono::steady_clock::now();
        const auto run =
            runRequest(folder, makeRequest("OpenFromFile", image, folder.file("answer")));
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        longest = std::max(longest, took.count());
        EXPECT_LT(took.count(), mostSeconds) << GetParam() << " seed " << seed << " file " << i;
        ASSERT_EQ(run.exitValue, run.response ? 1 : -1);
        if (run.response) {
            ++decoded;
            const auto& params = run.response->params;
            const std::string pixels =
                znString::IString(fieldText(run.response->pixelsPath)).toUtf8();
            ASSERT_EQ(std::filesystem::file_size(pixels),
                      std::uint64_t(params.width) * std::uint64_t(params.height) * 4);
            std::filesystem::remove(pixels);
        }
        if (!folder.leftovers().empty()) {
            FAIL() << GetParam() << " seed " << seed << " file " << i << " left "
                   << folder.leftovers()[0];
        }
    }
    RecordProperty("decoded", decoded);
    std::printf("%s: %d files, %d still decoded, longest %.2f s\n", GetParam(), filesPerFormat,
                decoded, longest);
}

INSTANTIATE_TEST_SUITE_P(Formats, HostileFiles,
                         testing::Values(".png", ".jp", ".gif", ".tif", ".bmp"),
                         [](const auto& format) { return std::string(format.param).substr(1); });

// Every real file, through the helper's own process.
TEST(RealFiles, DecodeOrAreRefused) {
    TempFolder folder;
    std::vector<std::filesystem::path> roots{std::filesystem::path(BRUSHWORK_TEST_DATA) /
                                             "pictures"};
    if (corpus()) roots.push_back(*corpus());
    int decoded = 0;
    int refused = 0;
    for (const auto& root : roots) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
            if (!entry.is_regular_file()) continue;
            const std::string path = entry.path().string();
            const std::string copy = folder.file("image");
            std::filesystem::copy_file(path, copy,
                                       std::filesystem::copy_options::overwrite_existing);
            std::filesystem::permissions(copy, std::filesystem::perms::owner_all);
            const auto run =
                runRequest(folder, makeRequest("OpenFromFile", copy, folder.file("answer")),
                           Where::OwnProcess);
            ASSERT_EQ(run.exitValue, run.response ? 1 : -1) << path;
            if (run.response) {
                const auto& params = run.response->params;
                EXPECT_EQ(takePixels(*run.response).size(),
                          std::size_t(params.width) * std::size_t(params.height) * 4)
                    << path;
            }
            ++(run.response ? decoded : refused);
            ASSERT_TRUE(folder.leftovers().empty()) << path;
        }
    }
    EXPECT_GE(decoded, 20);
    std::printf("%d decoded, %d refused\n", decoded, refused);
}

}  // namespace
}  // namespace brushwork
