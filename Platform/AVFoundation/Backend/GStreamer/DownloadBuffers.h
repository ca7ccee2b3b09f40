#pragma once

#include <mutex>
#include <vector>

typedef struct _GstElement GstElement;

namespace flarebox {

/// The library's elements that keep in a temporary file what is loaded ahead of one video. A file has no name from the
/// moment in which it is made: it stays as long as it is open, and no process that ends meanwhile leaves it behind.
/// The library forgets elements that it makes while a video is taken down; their files are closed here.
class DownloadBuffers {
public:
    DownloadBuffers() = default;
    ~DownloadBuffers() { close(); }
    DownloadBuffers(const DownloadBuffers&) = delete;
    DownloadBuffers& operator=(const DownloadBuffers&) = delete;

    /// Does nothing for elements without a temporary file. Any thread.
    void add(GstElement& element);
    /// To be called when the library no longer makes any. Any thread.
    void close();

private:
    std::mutex mutex_;
    std::vector<GstElement*> elements_;
};

}  // namespace flarebox
