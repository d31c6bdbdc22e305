// RequestRecord: the fixed 1800-byte record of request and response.
//
// Little-endian; strings are UTF-16 with a terminator inside a fixed field. Bytes behind a
// terminator mean nothing, so records are compared field by field and never as bytes.
#pragma once

#include <bit>
#include <cstddef>
#include <string_view>
#include <type_traits>

#include "brushwork/i_string.h"
#include "brushwork/image_file_params.h"

namespace brushwork {

struct RequestRecord {
    static constexpr std::size_t nameUnits = 50;
    static constexpr std::size_t pathUnits = 260;

    ImageFileParams params;
    char16_t command[nameUnits] = {};
    char16_t format[nameUnits] = {};
    char16_t responsePath[pathUnits] = {};
    char16_t pixelsPath[pathUnits] = {};
    char16_t imagePath[pathUnits] = {};

    void setSize(std::int32_t width, std::int32_t height);
    void setChannels(std::int32_t channels);
    void setQuality(bool hasQuality, std::int32_t quality);
    void setResolution(double x, double y);
    void setResolutionUnit(std::int32_t unit);

    // False, with the field as it was, if the text and its terminator don't fit.
    [[nodiscard]] bool setCommand(const znString::IString& text);
    [[nodiscard]] bool setFormat(const znString::IString& text);
    [[nodiscard]] bool setResponsePath(const znString::IString& text);
    [[nodiscard]] bool setPixelsPath(const znString::IString& text);
    [[nodiscard]] bool setImagePath(const znString::IString& text);
};

static_assert(std::endian::native == std::endian::little);
static_assert(std::is_trivially_copyable_v<RequestRecord>);
static_assert(sizeof(RequestRecord) == 1800);
static_assert(offsetof(RequestRecord, command) == 40);
static_assert(offsetof(RequestRecord, format) == 140);
static_assert(offsetof(RequestRecord, responsePath) == 240);
static_assert(offsetof(RequestRecord, pixelsPath) == 760);
static_assert(offsetof(RequestRecord, imagePath) == 1280);

// The text of a field: up to its terminator, or the whole field if there is none.
template <std::size_t Units>
[[nodiscard]] std::u16string_view fieldText(const char16_t (&field)[Units]) {
    const std::u16string_view whole(field, Units);
    return whole.substr(0, whole.find(u'\0'));
}

// True only if all 1800 bytes were read without an error. A longer file passes.
[[nodiscard]] bool readRecord(const znString::IString& path, RequestRecord& record);
// True only if all 1800 bytes went out without an error.
[[nodiscard]] bool writeRecord(const znString::IString& path, const RequestRecord& record);

}  // namespace brushwork
