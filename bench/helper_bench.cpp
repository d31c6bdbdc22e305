// The helper on a 12-megapixel JPEG and PNG, beside the same libraries in process and beside
// `vips copy`. Wall time of the whole child process, writing included; peak resident memory.
#include <fcntl.h>
#include <png.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Needs <cstdio> before it.
#include <jpeglib.h>

#include "bench_clock.h"
#include "bridge/request_record.h"
#include "platform/imaging.h"
#include "platform/text_codec.h"

extern char** environ;

namespace {

using namespace brushwork;
using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t width = 4000;
constexpr std::int32_t height = 3000;

// Photo-like: smooth light, edges at several scales, and sensor noise.
class Scene final : public platform::RowSource {
  public:
    bool getRow(std::int32_t y, std::uint8_t* bgra) override {
        std::uint32_t noise = static_cast<std::uint32_t>(y) * 2654435761U + 12345U;
        for (std::int32_t x = 0; x < width; ++x) {
            const double light = 120.0 + 60.0 * std::sin(x * 0.0021 + y * 0.0007) +
                                 30.0 * std::sin(x * 0.031) * std::cos(y * 0.027) +
                                 (((x / 97) ^ (y / 61)) & 1 ? 18.0 : -18.0);
            for (int c = 0; c < 3; ++c) {
                noise = noise * 1664525U + 1013904223U;
                const double grain = static_cast<double>(noise >> 28) - 7.5;
                *bgra++ = static_cast<std::uint8_t>(
                    std::min(255.0, std::max(0.0, light + 12.0 * c * std::sin(y * 0.003) + grain)));
            }
            *bgra++ = 255;
        }
        return true;
    }
};

Bytes readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void makePicture(const std::string& path, const platform::Guid& format) {
    Scene scene;
    platform::EncodeRequest request;
    request.width = width;
    request.height = height;
    request.source = &scene;
    request.quality = 90;
    for (const auto& record : platform::imagingService().encoders())
        if (record.formatId == format &&
            platform::imagingService().saveFile(platform::fromUtf8(path), record.classId,
                                                request) != platform::ImagingStatus::Ok)
            std::exit(1);
}

// The libraries' own loops, as any program would write them: whole file in memory, B G R A out.
void decodeJpeg(const std::string& path, Bytes& out) {
    const Bytes file = readFile(path);
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, file.data(), file.size());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_EXT_BGRA;
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = out.data() + std::size_t{info.output_scanline} * width * 4;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
}

void decodePng(const std::string& path, Bytes& out) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_info(png, info);
    png_set_bgr(png);
    png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
    for (std::int32_t y = 0; y < height; ++y)
        png_read_row(png, out.data() + static_cast<std::size_t>(y) * width * 4, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
}

struct Child {
    int status = 0;
    long peakKib = 0;
};

Child runChild(const std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    for (const auto& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawnp(&child, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0)
        return {-1, 0};
    Child result;
    struct rusage usage {};
    wait4(child, &result.status, 0, &usage);
    result.peakKib = usage.ru_maxrss;
    return result;
}

long runHelper(const std::string& folder, const std::string& picture) {
    RequestRecord request;
    const auto set = [](const std::string& text) {
        return znString::IString(std::string_view(text));
    };
    bool good = request.setCommand(set("OpenFromFile")) && request.setImagePath(set(picture)) &&
                request.setResponsePath(set(folder + "/response")) &&
                writeRecord(set(folder + "/request"), request);
    const Child child = runChild({BRUSHWORK_HELPER, "/file", folder + "/request"});
    RequestRecord response;
    good = good && readRecord(request.responsePath, response);
    if (!good) {
        std::fprintf(stderr, "the helper failed on %s\n", picture.c_str());
        std::exit(1);
    }
    std::filesystem::remove(znString::IString(fieldText(response.pixelsPath)).toUtf8());
    return child.peakKib;
}

struct Peaks {
    long helper = 0;
    long vips = 0;
};

// A child starts out with its parent's memory on its account, so this must run while the parent is
// still small.
Peaks peaksOf(const std::string& folder, const std::string& picture, bool haveVips) {
    Peaks peaks;
    peaks.helper = runHelper(folder, picture);
    if (haveVips) peaks.vips = runChild({"vips", "copy", picture, folder + "/out.v"}).peakKib;
    return peaks;
}

void compare(const std::string& folder, const std::string& picture, const char* name, Peaks peaks,
             void (*decode)(const std::string&, Bytes&)) {
    Bytes out(std::size_t{width} * height * 4);
    bench::Rounds rounds;
    const auto inProcess = rounds.add("library in process", [&] { decode(picture, out); });
    const auto helper = rounds.add("helper process", [&] { runHelper(folder, picture); });
    const auto peer = rounds.add("vips copy", [&] {
        if (peaks.vips == 0) return;
        runChild({"vips", "copy", picture, folder + "/out.v"});
        std::filesystem::remove(folder + "/out.v");
    });
    rounds.run(10, 40);
    const double library = rounds.median(inProcess);
    const double own = rounds.median(helper);
    const auto mebibytes = [](long kib) { return static_cast<double>(kib) / 1024.0; };
    std::printf("%-5s library in process  %7.1f ms\n", name, library * 1e3);
    std::printf("%-5s helper process      %7.1f ms  %5.1f MiB   %.2f x the library's time\n", name,
                own * 1e3, mebibytes(peaks.helper), own / library);
    if (peaks.vips != 0)
        std::printf("%-5s vips copy           %7.1f ms  %5.1f MiB   the helper is %.2f x as fast\n",
                    name, rounds.median(peer) * 1e3, mebibytes(peaks.vips),
                    rounds.median(peer) / own);
}

}  // namespace

int main() {
    char pattern[] = "/tmp/brushwork-bench-XXXXXX";
    const std::string folder = mkdtemp(pattern);
    setenv("TMPDIR", folder.c_str(), 1);
    makePicture(folder + "/photo.jpg", platform::imageFormatJpeg);
    makePicture(folder + "/photo.png", platform::imageFormatPng);
    std::printf("%d x %d; bound: the entropy decoder (JPEG), inflate (PNG)\n", width, height);
    const bool haveVips = std::system("command -v vips >/dev/null 2>&1") == 0;
    const Peaks jpeg = peaksOf(folder, folder + "/photo.jpg", haveVips);
    const Peaks png = peaksOf(folder, folder + "/photo.png", haveVips);
    compare(folder, folder + "/photo.jpg", "JPEG", jpeg, decodeJpeg);
    compare(folder, folder + "/photo.png", "PNG", png, decodePng);
    std::filesystem::remove_all(folder);
    return 0;
}
