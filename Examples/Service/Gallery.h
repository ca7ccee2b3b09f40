#pragma once

#include "StoredFile.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace flarebox::examples {

/// The catalogue's pictures, each drawn when it is first asked for. Safe on any thread.
class Gallery {
public:
    /// The picture at a path such as "/media/icons/halo-one.png"; null when there is none, and for one that is not
    /// drawn yet after `close`.
    std::shared_ptr<const StoredFile> pictureAt(std::string_view path);

    /// Draws nothing more, so that whoever waits for a picture is free at once.
    void close() { closed_ = true; }
    void open() { closed_ = false; }

private:
    std::atomic<bool> closed_{false};
    std::mutex mutex_;
    std::map<std::string, std::shared_ptr<const StoredFile>, std::less<>> pictures_;
};

}  // namespace flarebox::examples
