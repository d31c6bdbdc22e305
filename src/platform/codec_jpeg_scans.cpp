#include "platform/codec_jpeg_scans.h"

#include <algorithm>

namespace brushwork::platform {

namespace {

constexpr int mostScans = 200;

std::uint64_t roundUp(std::uint64_t value, int step) {
    const auto unit = static_cast<std::uint64_t>(step);
    return (value + unit - 1) / unit * unit;
}

// How many coefficients of a block the current scan may touch.
int bandWidth(const jpeg_decompress_struct& info) {
    if (info.progressive_mode == 0) return DCTSIZE2;  // whatever the scan says
    return std::clamp(info.Se - info.Ss + 1, 1, DCTSIZE2);
}

}  // namespace

JpegScanGuard::JpegScanGuard() : jpeg_progress_mgr() {
    progress_monitor = [](j_common_ptr info) {
        static_cast<JpegScanGuard*>(info->progress)
            ->monitor(reinterpret_cast<j_decompress_ptr>(info));
    };
}

void JpegScanGuard::watch(j_decompress_ptr info, std::uint64_t fileBytes, std::uint64_t visitCost) {
    visitsLeft_ = ((std::uint64_t{1} << 24) + fileBytes * 24) / visitCost;
    coefficientsLeft_ = (std::uint64_t{1} << 25) + fileBytes * 64;
    info->progress = this;
}

// Called many times a scan; a scan is looked at once.
void JpegScanGuard::monitor(j_decompress_ptr info) {
    if (info->input_scan_number == scan_) return;
    scan_ = info->input_scan_number;
    for (int i = 0; i < info->comps_in_scan && info->Ss == 0; ++i) {
        components_ |= 1U << info->cur_comp_info[i]->component_index;
    }
    const std::uint64_t visits = std::uint64_t{info->MCUs_per_row} * info->MCU_rows_in_scan *
                                 static_cast<std::uint64_t>(info->blocks_in_MCU);
    const std::uint64_t coefficients =
        info->arith_code != 0 ? visits * static_cast<std::uint64_t>(bandWidth(*info)) : 0;
    if (scan_ > mostScans || visits > visitsLeft_ || coefficients > coefficientsLeft_) {
        failJpeg(jpegCommon(info), JpegFailure::Refused);
    }
    visitsLeft_ -= visits;
    coefficientsLeft_ -= coefficients;
}

bool JpegScanGuard::sawAllComponents(const jpeg_decompress_struct& info) const {
    return components_ == (1U << info.num_components) - 1;
}

bool jpegBlocksFit(const jpeg_decompress_struct& info, std::uint64_t fileBytes) {
    if (info.arith_code != 0) return true;
    std::uint64_t blocks = 0;
    for (int i = 0; i < info.num_components; ++i) {
        const jpeg_component_info& component = info.comp_info[i];
        blocks += std::uint64_t{component.width_in_blocks} * component.height_in_blocks;
    }
    const std::uint64_t bits = info.progressive_mode != 0 ? blocks : blocks * 2;
    return bits / 8 <= fileBytes;
}

std::uint64_t jpegCoefficientBytes(const jpeg_decompress_struct& info) {
    std::uint64_t blocks = 0;
    for (int i = 0; i < info.num_components; ++i) {
        const jpeg_component_info& component = info.comp_info[i];
        blocks += roundUp(component.width_in_blocks, component.h_samp_factor) *
                  roundUp(component.height_in_blocks, component.v_samp_factor);
    }
    return blocks * sizeof(JBLOCK);
}

}  // namespace brushwork::platform
