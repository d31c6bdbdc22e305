// JPEG files of every kind, written by libjpeg itself, as inputs for the tests of codec_jpeg.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>
// libjpeg's header needs the two above.
#include <jpeglib.h>

#include "codec_test_streams.h"

namespace brushwork::platform::test {

struct JpegKind {
    J_COLOR_SPACE stored = JCS_YCbCr;
    int horizontal = 1;  // sampling of the first component (and of black); the others have 1
    int vertical = 1;
    bool progressive = false;
    bool separateScans = false;  // one scan a component, not progressive
    bool arithmetic = false;
    bool adobe = false;  // of CMYK: with Adobe's marker; YCCK always has it
    int restartRows = 0;
    int quality = 90;
    int acRefinements = -1;  // progressive with a script of this many scans that change nothing
};

inline int jpegChannels(J_COLOR_SPACE stored) {
    if (stored == JCS_GRAYSCALE) return 1;
    return stored == JCS_CMYK || stored == JCS_YCCK ? 4 : 3;
}

namespace detail {

inline void setScans(jpeg_compress_struct& info, const JpegKind& kind,
                     std::vector<jpeg_scan_info>& scans) {
    if (kind.progressive && kind.acRefinements < 0) jpeg_simple_progression(&info);
    if (kind.separateScans) {
        for (int i = 0; i < info.num_components; ++i) scans.push_back({1, {i}, 0, 63, 0, 0});
    }
    if (kind.acRefinements >= 0) {
        jpeg_scan_info first{info.num_components, {0, 1, 2, 3}, 0, 0, 0, 0};
        scans.push_back(first);
        // Each coefficient starts at bit 10 and is refined down to bit 0, one scan a step.
        for (int c = 1, left = kind.acRefinements; c < 64 && left > 0; ++c) {
            for (int bit = 10; bit >= 0 && left > 0; --bit, --left) {
                scans.push_back({1, {0}, c, c, bit == 10 ? 0 : bit + 1, bit});
            }
        }
    }
    if (scans.empty()) return;
    info.scan_info = scans.data();
    info.num_scans = static_cast<int>(scans.size());
}

}  // namespace detail

// `pixels` holds width * height pixels of as many bytes as the picture has components, in the
// space that belongs to the stored one: grey, red-green-blue, or cyan-magenta-yellow-black.
inline Bytes makeJpeg(const JpegKind& kind, int width, int height, const Bytes& pixels) {
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &memory, &size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    const int channels = jpegChannels(kind.stored);
    info.input_components = channels;
    info.in_color_space = channels == 1 ? JCS_GRAYSCALE : channels == 3 ? JCS_RGB : JCS_CMYK;
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, kind.stored);
    if (kind.stored == JCS_CMYK) info.write_Adobe_marker = kind.adobe ? TRUE : FALSE;
    jpeg_set_quality(&info, kind.quality, TRUE);
    for (int i = 0; i < channels; ++i) {
        const bool full = i == 0 || i == 3;
        info.comp_info[i].h_samp_factor = full ? kind.horizontal : 1;
        info.comp_info[i].v_samp_factor = full ? kind.vertical : 1;
    }
    std::vector<jpeg_scan_info> scans;
    detail::setScans(info, kind, scans);
    info.arith_code = kind.arithmetic ? TRUE : FALSE;
    info.restart_in_rows = kind.restartRows;
    jpeg_start_compress(&info, TRUE);
    const std::size_t stride = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = const_cast<JSAMPROW>(pixels.data()) + info.next_scanline * stride;
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    Bytes file(memory, memory + size);
    std::free(memory);
    jpeg_destroy_compress(&info);
    return file;
}

}  // namespace brushwork::platform::test
