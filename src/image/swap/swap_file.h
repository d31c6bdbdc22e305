// A temporary file that keeps the pages which memory has no room for.
//
//     SwapFile file(SwapFile::fourChannels);
//     SwapRecord* record = file.write(pixels);  // null only if somebody ended the wait
//     file.read(*record, pixels);
//     file.free(record);
//
// The file is made with the first page and has no header: a page is some bytes at its record's
// offset, packed by run lengths or, where that saves too little, as they are. What is known of it
// stands in memory alone; it is of no use to anybody else and is deleted when the object closes it,
// or by the process's clean-up if a signal ends it (platform/process_limits).
//
// Not thread-safe: the callers hold the lock of the image library.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "image/swap/swap_place.h"
#include "image/swap/swap_record.h"
#include "platform/swap_io.h"

namespace brushwork {

// A page could not be written. Pages are never given up by the file itself: it waits and tries
// again, for as long as it takes somebody to make room on the disk.
struct SwapTrouble {
    std::uint32_t tries = 0;           // of this page so far, from 1
    std::chrono::milliseconds wait{};  // 1, 2, 4 ... up to a second
};
enum class SwapAnswer { Retry, GiveUp };
// Asked after each failed try, in place of the wait; it may sleep itself. Runs under the lock of
// the caller and must not use the file.
using SwapQuestion = std::function<SwapAnswer(const SwapTrouble&)>;

class SwapFile {
  public:
    struct Form {
        std::uint32_t objectSize;  // bytes of a page, a multiple of 4096
        bool planar;               // pixels of 4 bytes are taken apart into planes before packing
        bool encoded;              // packed by run lengths
    };
    static constexpr Form fourChannels = {65536, true, true};
    static constexpr Form oneChannel = {16384, false, true};
    static constexpr int mostReads = 10;

    // `directories` is asked each time the file is made. `failureFlag`, if there is one, is the
    // flag of a broken page table; while it isn't 0 each page written is told to the log.
    explicit SwapFile(const Form& form,
                      std::function<SwapDirectories()> directories = swapDirectories,
                      std::function<std::int32_t()> failureFlag = {});
    SwapFile(const SwapFile&) = delete;
    SwapFile& operator=(const SwapFile&) = delete;
    // Records that are still out must not be used any more.
    ~SwapFile();

    // Makes the file if it isn't there; a failure is told to the log. Each reading and writing does
    // this itself.
    bool open();
    // Closes and deletes the file.
    void close();
    void closeIfUnused();

    // Stores one page. The record is the caller's until free(). Null without memory for a record
    // and after the answer GiveUp; the page is then stored nowhere.
    [[nodiscard]] SwapRecord* write(const std::uint8_t* pixels);
    // Fills one page and answers how many of its bytes could be had, of the packed stream if it was
    // packed. Fewer than a page after ten tries; each was told to the log, and the bytes that
    // didn't come are 0.
    std::size_t read(const SwapRecord& record, std::uint8_t* pixels);
    // Takes the record back. With the last one the file starts anew at its begin, though it isn't
    // truncated.
    void free(SwapRecord* record);

    // Who is asked while the disk is full; an empty one takes back the default, which waits and
    // answers Retry.
    void setQuestion(SwapQuestion question) { question_ = std::move(question); }

    // Where the file is made from now on; one that is open stays.
    void setDirectories(std::function<SwapDirectories()> directories) {
        directories_ = std::move(directories);
    }

    [[nodiscard]] bool isOpen() const { return file_.isOpen(); }
    [[nodiscard]] const std::u16string& name() const { return name_; }
    [[nodiscard]] std::uint32_t recordCount() const { return recordCount_; }
    [[nodiscard]] std::uint64_t endOfFile() const { return endOfFile_; }
    // Pages that could not be read, and tries of writing that failed, since the object was made.
    [[nodiscard]] std::uint64_t failedReads() const { return failedReads_; }
    [[nodiscard]] std::uint64_t failedWrites() const { return failedWrites_; }

  private:
    struct Stored {
        const std::uint8_t* bytes;
        std::uint32_t size;
    };

    bool openIn(std::u16string_view directory, std::u16string_view prefix);
    [[nodiscard]] Stored stored(const std::uint8_t* pixels);
    [[nodiscard]] SwapRecord* allocate(std::uint32_t bytes);
    [[nodiscard]] bool ask(std::uint32_t tries);
    std::size_t readOnce(const SwapRecord& record, std::uint8_t* pixels);

    Form form_;
    std::function<SwapDirectories()> directories_;
    std::function<std::int32_t()> failureFlag_;
    SwapQuestion question_;
    platform::PositionedFile file_;
    std::u16string name_;
    std::uint32_t recordCount_ = 0;
    std::uint64_t endOfFile_ = 0;  // where the next new place begins
    SwapFreeLists freeLists_;
    std::unique_ptr<std::uint8_t[]> packets_, planes_;  // one page each, if needed
    std::uint64_t failedReads_ = 0, failedWrites_ = 0;
};

}  // namespace brushwork
