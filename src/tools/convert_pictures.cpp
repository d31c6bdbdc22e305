#include "tools/convert_pictures.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

#include "foundation/services/settings.h"

namespace brushwork::tools {

namespace {

Converted convert(const Conversion& conversion) {
    Converted result;
    OpenedPicture picture;
    result.failure = picture.open(conversion.input);
    if (!result.failure) result.failure = picture.straighten();
    if (!result.failure) result.failure = savePicture(picture, conversion.output, conversion.save);
    if (!result.failure && conversion.askBack) {
        // Formats round resolutions, or have none.
        result.failure = readPictureSize(conversion.output, result.written);
        result.written.format = conversion.save.format;
    }
    return result;
}

}  // namespace

Converted convertPicture(const Conversion& conversion) {
    Converted result;
    try {
        return convert(conversion);
    } catch (const std::bad_alloc&) {
        result.failure = {ExitLimit, "out of memory"};
    } catch (const std::exception& error) {
        result.failure = {ExitFailed, conversion.input + ": " + error.what()};
    }
    return result;
}

std::vector<Converted> convertPictures(
    const std::vector<Conversion>& conversions, int jobs,
    const std::function<void(std::size_t index, const Converted& result)>& done) {
    static_cast<void>(bridgeSettings());  // read while there is one thread
    std::vector<Converted> results(conversions.size());
    std::atomic<std::size_t> next{0};
    std::mutex telling;
    const auto work = [&] {
        for (std::size_t i = next++; i < conversions.size(); i = next++) {
            results[i] = convertPicture(conversions[i]);
            const std::lock_guard lock(telling);
            done(i, results[i]);
        }
    };
    std::vector<std::thread> others;
    const std::size_t wanted =
        std::min(conversions.size(), static_cast<std::size_t>(std::max(jobs, 1)));
    try {
        while (others.size() + 1 < wanted) others.emplace_back(work);
    } catch (const std::system_error&) {
        // Fewer helpers at once, then.
    }
    work();
    for (auto& thread : others) thread.join();
    return results;
}

}  // namespace brushwork::tools
