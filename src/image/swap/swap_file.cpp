#include "image/swap/swap_file.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstring>
#include <thread>
#include <utility>

#include "foundation/services/log.h"
#include "image/swap/run_length.h"
#include "platform/clean_up.h"
#include "platform/file_calls.h"
#include "platform/text_codec.h"

namespace brushwork {
namespace {

constexpr std::chrono::milliseconds longestWait{1000};

std::chrono::milliseconds waitAfter(std::uint32_t tries) {
    const std::uint32_t doublings = std::min<std::uint32_t>(tries - 1, 10);
    return std::min(longestWait, std::chrono::milliseconds(1 << doublings));
}

}  // namespace

SwapFile::SwapFile(const Form& form, std::function<SwapDirectories()> directories,
                   std::function<std::int32_t()> failureFlag)
    : form_(form),
      directories_(std::move(directories)),
      failureFlag_(std::move(failureFlag)),
      freeLists_(form.objectSize >> 10) {
    if (form.encoded) packets_.reset(new std::uint8_t[form.objectSize]);
    if (form.encoded && form.planar) planes_.reset(new std::uint8_t[form.objectSize]);
}

SwapFile::~SwapFile() {
    close();
}

bool SwapFile::openIn(std::u16string_view directory, std::u16string_view prefix) {
    for (int attempt = 1;; ++attempt) {
        std::u16string name = swapFileName(directory, prefix);
        if (name.empty()) {
            errno = ENAMETOOLONG;
            return false;
        }
        name_ = std::move(name);
        static_cast<void>(platform::unlinkFile(name_));
        errno = 0;
        // A file that somebody puts there in this moment is not taken for ours.
        const platform::EndingHold hold;
        platform::notePartialFile(name_);  // before it exists: no crash finds it unnamed
        if (file_.open(name_, platform::PositionedFile::Mode::CreateOwned)) break;
        const int error = errno;
        platform::dropPartialFile(name_);
        errno = error;
        if (error != EEXIST || attempt == 3) return false;
    }
    removeAbandonedSwapFiles(directory);
    return true;
}

bool SwapFile::open() {
    if (file_.isOpen()) return true;
    const SwapDirectories directories = directories_();
    if (openIn(directories.first, u"SID") || openIn(directories.second, u"SID") ||
        openIn(directories.last, u"SIDTMP"))
        return true;
    const int error = errno;
    log("SwapFile::Open: (%s) Error: %s", platform::toUtf8(name_).c_str(), std::strerror(error));
    errno = error;  // for the message of the write or read that asked
    return false;
}

void SwapFile::close() {
    if (!file_.isOpen()) return;
    file_.close();
    static_cast<void>(platform::unlinkFile(name_));
    platform::dropPartialFile(name_);
}

void SwapFile::closeIfUnused() {
    if (recordCount_ == 0) close();
}

SwapFile::Stored SwapFile::stored(const std::uint8_t* pixels) {
    const std::uint32_t size = form_.objectSize;
    if (!form_.encoded) return {pixels, size};
    const RunLengthKernels& kernels = runLengthKernels();
    const std::size_t packed =
        form_.planar ? kernels.encodePlanes(pixels, size, planes_.get(), packets_.get())
                     : kernels.encode(pixels, size, packets_.get());
    if (packed >= size) return {pixels, size};
    return {packets_.get(), static_cast<std::uint32_t>(packed)};
}

SwapRecord* SwapFile::allocate(std::uint32_t bytes) {
    SwapRecord* record = freeLists_.take(bytes);
    if (!record) {
        record = takeSwapRecord();
        if (!record) return nullptr;
        record->offset = endOfFile_;
        record->objectSize = form_.objectSize;
    }
    ++recordCount_;
    return record;
}

SwapRecord* SwapFile::write(const std::uint8_t* pixels) {
    if (const std::int32_t flag = failureFlag_ ? failureFlag_() : 0)
        log("SID: Paging Out %d\n", flag);
    const Stored bytes = stored(pixels);
    SwapRecord* record = allocate(bytes.size);
    if (!record) return nullptr;
    for (std::uint32_t tries = 1;; ++tries) {
        errno = 0;
        // Opened again each time: a directory may have become writable since.
        if (open() && file_.writeAt(record->offset, bytes.bytes, bytes.size)) break;
        ++failedWrites_;
        log("An error has been encountered while writing to\nan Image Swap File. The error "
            "is:\n%s\nTry to free up some disk space,\nand Press Yes to retry -- or to abort, "
            "press No\nSaving your canvas is recommended after this situation.",
            std::strerror(errno));
        if (!ask(tries)) {
            free(record);
            return nullptr;
        }
    }
    record->storedSize = bytes.size;
    // A place that was never freed is the one at the end.
    if (record->sizeClass == -1) endOfFile_ += bytes.size;
    return record;
}

bool SwapFile::ask(std::uint32_t tries) {
    const SwapTrouble trouble = {tries, waitAfter(tries)};
    if (question_) return question_(trouble) == SwapAnswer::Retry;
    std::this_thread::sleep_for(trouble.wait);
    return true;
}

std::size_t SwapFile::readOnce(const SwapRecord& record, std::uint8_t* pixels) {
    const std::size_t size = form_.objectSize;
    const bool packed = form_.encoded && record.storedSize != size;
    std::size_t came = 0;
    if (open())
        came = file_.readAt(record.offset, packed ? packets_.get() : pixels,
                            packed ? std::min<std::size_t>(record.storedSize, size) : size);
    if (!packed) {
        std::memset(pixels + came, 0, size - came);
        return came;
    }
    const RunLengthKernels& kernels = runLengthKernels();
    std::uint8_t* stream = form_.planar ? planes_.get() : pixels;
    const std::size_t done = kernels.decode(packets_.get(), came, stream, size);
    std::memset(stream + done, 0, size - done);
    if (form_.planar) kernels.joinPlanes(stream, size / 4, pixels);
    return done;
}

std::size_t SwapFile::read(const SwapRecord& record, std::uint8_t* pixels) {
    const std::size_t size = form_.objectSize;
    std::size_t done = 0;
    for (int attempt = 0; attempt < mostReads; ++attempt) {
        errno = 0;
        done = readOnce(record, pixels);
        if (done == size) return done;
        log("An error has been encountered while reading from\nan Image Swap File. The error "
            "is:\n%s\nBytesRead = %" PRIu64 ", ObjectSize = %" PRIu32 ", FilePos = %" PRIu64
            "\n,written = %" PRIu32
            "\nPress Yes to retry -- or to abort, press No\nSaving your canvas is recommended "
            "after this situation.",
            std::strerror(errno), std::uint64_t{done}, form_.objectSize, record.offset,
            record.storedSize);
    }
    ++failedReads_;
    return done;
}

void SwapFile::free(SwapRecord* record) {
    freeLists_.put(record);
    if (--recordCount_ > 0) return;
    endOfFile_ = 0;
    freeLists_.clear();
}

}  // namespace brushwork
