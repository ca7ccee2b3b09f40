#include "DownloadBuffers.h"

#include <gst/gst.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace flarebox {
namespace {

constexpr const char* location = "temp-location";

void fileMade(GObject* element, GParamSpec*, gpointer) {
    gchar* path = nullptr;
    g_object_get(element, location, &path, nullptr);
    if (path) unlink(path);
    g_free(path);
}

/// An element whose start fails halfway, because the video is being taken down, has its file open already, and closes
/// it in no state that it goes through from there on.
void closeFile(GstElement& element) {
    GST_STATE_LOCK(&element);
    GST_ELEMENT_GET_CLASS(&element)->change_state(&element, GST_STATE_CHANGE_PAUSED_TO_READY);
    GST_STATE_UNLOCK(&element);
}

}  // namespace

void DownloadBuffers::add(GstElement& element) {
    if (!g_object_class_find_property(G_OBJECT_GET_CLASS(&element), location)) return;
    const std::lock_guard lock(mutex_);
    if (std::ranges::find(elements_, &element) != elements_.end()) return;
    elements_.push_back(static_cast<GstElement*>(gst_object_ref(&element)));
    g_signal_connect(&element, "notify::temp-location", G_CALLBACK(fileMade), nullptr);
}

void DownloadBuffers::close() {
    std::vector<GstElement*> elements;
    {
        const std::lock_guard lock(mutex_);
        elements = std::exchange(elements_, {});
    }
    for (GstElement* element : elements) {
        gst_element_set_state(element, GST_STATE_NULL);
        closeFile(*element);
        gst_object_unref(element);
    }
}

}  // namespace flarebox
